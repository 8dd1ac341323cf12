#include "framework/kivxmp/src/Encoding.h"

#include <gtest/gtest.h>

#include "framework/kivxmp/tests/XmpTestSupport.h"

namespace kivxmp {
namespace {

using testing::CodeThrownBy;
using testing::Dump;
using testing::DumpOf;
using testing::InDescription;
using testing::InWrapper;
using testing::Parse;

struct EncodingCase {
    const char* name;
    Encoding encoding;
};

constexpr EncodingCase kWide[] = {
    {"UTF-16, little end first", Encoding::kUtf16Le},
    {"UTF-16, big end first", Encoding::kUtf16Be},
    {"UTF-32, little end first", Encoding::kUtf32Le},
    {"UTF-32, big end first", Encoding::kUtf32Be},
};

const std::string kText = "a\xC3\xBC\xE2\x82\xAC\xF0\x9F\x8C\x8D";  // one of each length

TEST(Encoding, ThereAndBack)
{
    struct Row {
        Encoding encoding;
        std::string want;
    };
    using namespace std::string_literals;
    const Row rows[] = {
        {Encoding::kUtf16Le, "a\0\xFC\0\xAC\x20\x3C\xD8\x0D\xDF"s},
        {Encoding::kUtf16Be, "\0a\0\xFC\x20\xAC\xD8\x3C\xDF\x0D"s},
        {Encoding::kUtf32Le, "a\0\0\0\xFC\0\0\0\xAC\x20\0\0\x0D\xF3\x01\0"s},
        {Encoding::kUtf32Be, "\0\0\0a\0\0\0\xFC\0\0\x20\xAC\0\x01\xF3\x0D"s},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(static_cast<int>(row.encoding));
        EXPECT_EQ(EncodeFromUtf8(kText, row.encoding), row.want);
        EXPECT_EQ(EncodedBytes(kText, row.encoding), row.want.size());
        EXPECT_EQ(DecodeToUtf8(row.want, row.encoding), kText);
    }
    EXPECT_EQ(DecodeToUtf8("\xFC", Encoding::kLatin1), "\xC3\xBC");
    EXPECT_EQ(EncodeFromUtf8("\xC3\xBC", Encoding::kLatin1), "\xFC");
}

TEST(Encoding, Refused)
{
    using namespace std::string_literals;
    struct Row {
        Encoding encoding;
        std::string bytes;
    };
    const Row rows[] = {
        {Encoding::kUtf16Le, "a\0b"s},
        {Encoding::kUtf16Le, "\x3C\xD8"s},
        {Encoding::kUtf16Le, "\x3C\xD8\x3C\xD8"s},
        {Encoding::kUtf16Be, "\xDF\x0D"s},
        {Encoding::kUtf32Le, "a\0\0"s},
        {Encoding::kUtf32Le, "\0\xD8\0\0"s},
        {Encoding::kUtf32Be, "\0\x11\0\0"s},
        {Encoding::kAscii, "\x80"s},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(CodeThrownBy([&] { DecodeToUtf8(row.bytes, row.encoding); }), kKivXmpBadEncoding);
    }
    EXPECT_EQ(CodeThrownBy([] { EncodeFromUtf8("\xC4\x80", Encoding::kLatin1); }),
              kKivXmpBadEncoding);
}

TEST(Encoding, Detected)
{
    using namespace std::string_literals;
    struct Row {
        std::string bytes;
        Encoding want;
    };
    const Row rows[] = {
        {"", Encoding::kUtf8},
        {"<", Encoding::kUtf8},
        {"\xEF\xBB\xBF<?xml encoding='ISO-8859-1'?>", Encoding::kUtf8},
        {"\xFF\xFE<\0"s, Encoding::kUtf16Le},
        {"\xFE\xFF\0<"s, Encoding::kUtf16Be},
        {"\xFF\xFE\0\0<\0\0\0"s, Encoding::kUtf32Le},
        {"\0\0\xFE\xFF\0\0\0<"s, Encoding::kUtf32Be},
        {"<\0?\0"s, Encoding::kUtf16Le},
        {"\0<\0?"s, Encoding::kUtf16Be},
        {"<\0\0\0"s, Encoding::kUtf32Le},
        {"\0\0\0<"s, Encoding::kUtf32Be},
        {"<?xml version='1.0' encoding='ISO-8859-1'?>", Encoding::kLatin1},
        {"<?xml version=\"1.0\" encoding = \"us-ascii\"?>", Encoding::kAscii},
        {"<?xml version='1.0' encoding='UTF-16'?>", Encoding::kUtf8},
        {"<?xml version='1.0'?><a encoding='ISO-8859-1'/>", Encoding::kUtf8},
        {"<?xml-model encoding='ISO-8859-1'?>", Encoding::kUtf8},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(DetectEncoding(row.bytes), row.want);
    }
}

TEST(Encoding, XmlText)
{
    EXPECT_TRUE(IsXmlText("a\t\r\n" + kText));
    for (const std::string& text : {std::string(1, '\0'), std::string("\x01"), std::string("\x1F"),
                                    std::string("\xEF\xBF\xBE"), std::string("\xEF\xBF\xBF"),
                                    std::string("\xC3"), std::string("\xED\xA0\x80")}) {
        EXPECT_FALSE(IsXmlText(text));
    }
}

TEST(Encoding, WidePacketsKeepTheirs)
{
    const std::string before = InDescription("<ex:a>1</ex:a><ex:b>" + kText + "</ex:b>");
    const std::string after = InDescription("<ex:a>" + kText + "</ex:a><ex:b>" + kText + "</ex:b>");
    const std::string mark(testing::kMark);
    for (const EncodingCase& row : kWide) {
        for (const std::string& start : {std::string(), mark, std::string("<?xml version='1.0'?>"),
                                         mark + "<?xml version='1.0' encoding='UTF-16'?>"}) {
            SCOPED_TRACE(row.name + std::string(" ") + start);
            const std::string packet = EncodeFromUtf8(start + before, row.encoding);
            const auto meta = Parse(packet);
            EXPECT_EQ(Dump(*meta), "ex:a simple 1\nex:b simple " + kText + "\n");
            EXPECT_EQ(meta->Serialize(), packet);
            meta->SetText("ex:a", kText);
            EXPECT_EQ(meta->Serialize(), EncodeFromUtf8(start + after, row.encoding));
        }
        const std::string padded =
            EncodeFromUtf8(InWrapper(before, std::string(100, ' ')), row.encoding);
        const auto meta = Parse(padded);
        meta->SetText("ex:a", kText);
        EXPECT_EQ(meta->Serialize().size(), padded.size());
        meta->SetText("ex:a", std::string(200, 'x'));
        EXPECT_EQ(meta->Serialize().size(), padded.size() + 2048 + 99 * UnitBytes(row.encoding));
    }
}

TEST(Encoding, NarrowPacketsGetReferences)
{
    const std::string header = "<?xml version='1.0' encoding='ISO-8859-1'?>";
    const std::string packet = header + InDescription("<ex:a>\xFC</ex:a><ex:b>1</ex:b>");
    const auto meta = Parse(packet);
    EXPECT_EQ(Dump(*meta), "ex:a simple \xC3\xBC\nex:b simple 1\n");
    EXPECT_EQ(meta->Serialize(), packet);
    meta->SetText("ex:b", kText);
    EXPECT_EQ(meta->Serialize(),
              header + InDescription("<ex:a>\xFC</ex:a><ex:b>a\xFC&#x20AC;&#x1F30D;</ex:b>"));
    EXPECT_EQ(Dump(*Parse(meta->Serialize())), Dump(*meta));
    meta->SetText("ex:\xC4\x80", "1");  // a name cannot be written so
    EXPECT_EQ(CodeThrownBy([&] { meta->Serialize(); }), kKivXmpBadEncoding);

    EXPECT_EQ(
        DumpOf("<?xml version='1.0' encoding='us-ascii'?>" + InDescription("<ex:a>\xFC</ex:a>")),
        "error 8");
    EXPECT_EQ(DumpOf("<?xml version='1.0' encoding='windows-1252'?>" +
                     InDescription("<ex:a>\xFC</ex:a>")),
              "error 6");
}

}  // namespace
}  // namespace kivxmp
