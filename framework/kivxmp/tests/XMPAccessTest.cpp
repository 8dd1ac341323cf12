#include <kivxmp/XMPAccess.h>

#include <gtest/gtest.h>

#include "framework/kivxmp/tests/XmpTestSupport.h"

namespace kivxmp::testing {
namespace {

const char* const kContent =
    "<ex:t>1/2</ex:t><ex:u rdf:resource=\"u\"/><ex:l1><rdf:Bag><rdf:li>5</rdf:li></rdf:Bag></ex:l1>"
    "<ex:l><rdf:Seq><rdf:li>a</rdf:li><rdf:li>b</rdf:li></rdf:Seq></ex:l>"
    "<ex:m><rdf:Seq><rdf:li>a</rdf:li><rdf:li><rdf:Bag/></rdf:li></rdf:Seq></ex:m>"
    "<ex:s ex:b=\"1\"/><ex:r rdf:ID=\"r\"/><ex:e><rdf:Alt/></ex:e>"
    "<ex:f xml:lang=\"fr\">x</ex:f><ex:date>2023-02</ex:date><ex:no>2023-02-31</ex:no>"
    "<ex:a><rdf:Alt><rdf:li xml:lang=\"de\">G</rdf:li><rdf:li xml:lang=\"x-default\">D</rdf:li>"
    "<rdf:li>N</rdf:li></rdf:Alt></ex:a>";

std::string Text(const __XMPMeta__& meta, const char* path)
{
    return TextOf(meta.Find(path)).value_or("none");
}

TEST(XMPAccess, Texts)
{
    const auto meta = Parse(InDescription(kContent));
    struct Row {
        const char* path;
        const char* want;
    };
    constexpr Row kRows[] = {
        {"ex:t", "1/2"},     {"ex:u", "u"},          {"ex:l1", "5"},   {"ex:l", "none"},
        {"ex:m[2]", "none"}, {"ex:s", "none"},       {"ex:r", "none"}, {"ex:e", "none"},
        {"ex:a", "D"},       {"ex:missing", "none"},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(Text(*meta, row.path), row.want) << row.path;
    }
}

TEST(XMPAccess, Lists)
{
    const auto meta = Parse(InDescription(kContent));
    using Strings = std::vector<std::string>;
    EXPECT_EQ(ListOf(meta->Find("ex:l")), (Strings{"a", "b"}));
    EXPECT_EQ(ListOf(meta->Find("ex:t")), (Strings{"1/2"}));
    EXPECT_EQ(ListOf(meta->Find("ex:e")), Strings());
    EXPECT_EQ(ListOf(meta->Find("ex:m")), std::nullopt);
    EXPECT_EQ(ListOf(meta->Find("ex:s")), std::nullopt);
    EXPECT_EQ(ListOf(nullptr), std::nullopt);
}

TEST(XMPAccess, Languages)
{
    const auto meta = Parse(InDescription(kContent));
    using Texts = std::vector<LanguageText>;
    EXPECT_EQ(LanguagesOf(meta->Find("ex:a")), (Texts{{"de", "G"}, {"x-default", "D"}, {"", "N"}}));
    EXPECT_EQ(LanguagesOf(meta->Find("ex:t")), (Texts{{"x-default", "1/2"}}));
    EXPECT_EQ(LanguagesOf(meta->Find("ex:f")), (Texts{{"fr", "x"}}));
    EXPECT_EQ(LanguagesOf(meta->Find("ex:e")), Texts());
    EXPECT_EQ(LanguagesOf(meta->Find("ex:s")), std::nullopt);
    EXPECT_EQ(LanguagesOf(meta->Find("ex:m")), std::nullopt);
    EXPECT_EQ(LanguagesOf(nullptr), std::nullopt);
}

TEST(XMPAccess, OtherTypes)
{
    const auto meta = Parse(InDescription(kContent));
    EXPECT_EQ(RationalOf(meta->Find("ex:t")), (Rational{1, 2}));
    EXPECT_EQ(IntegerOf(meta->Find("ex:l1")), 5);
    EXPECT_EQ(RealOf(meta->Find("ex:l1")), 5.0);
    EXPECT_EQ(IntegerOf(meta->Find("ex:t")), std::nullopt);
    EXPECT_EQ(DateOf(meta->Find("ex:date"))->month, 2);
    EXPECT_EQ(DateOf(meta->Find("ex:no")), std::nullopt);
    EXPECT_EQ(Text(*meta, "ex:no"), "2023-02-31");
    EXPECT_EQ(BooleanOf(meta->Find("ex:t")), std::nullopt);
    EXPECT_EQ(BooleanOf(nullptr), std::nullopt);
}

TEST(XMPAccess, Json)
{
    const auto meta = Parse(InDescription(kContent));
    struct Row {
        const char* path;
        const char* want;
    };
    constexpr Row kRows[] = {
        {"ex:t", "\"1/2\""},
        {"ex:u", "\"u\""},
        {"ex:l", "[\"a\",\"b\"]"},
        {"ex:m", "[\"a\",[]]"},
        {"ex:s", "{\"ex:b\":\"1\"}"},
        {"ex:e", "[]"},
        {"ex:a", "[\"G\",\"D\",\"N\"]"},
        {"ex:missing", "null"},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(ToJson(*meta, meta->Find(row.path)), row.want) << row.path;
    }
    meta->Remove("ex:a[3]");
    EXPECT_EQ(ToJson(*meta, meta->Find("ex:a")), "{\"de\":\"G\",\"x-default\":\"D\"}");
    EXPECT_EQ(JsonString("\"\\/\b\f\n\r\t\x01\x1F\x7F\xC3\xBC"),
              "\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\x7F\xC3\xBC\"");
}

std::string Changes(const std::string& before, const std::string& after)
{
    std::string lines;
    for (const Change& change :
         Compare(*Parse(InDescription(before)), *Parse(InDescription(after)))) {
        lines += PrintChange(change) + "\n";
    }
    return lines;
}

TEST(XMPAccess, Comparisons)
{
    struct Row {
        const char* before;
        const char* after;
        const char* want;
    };
    constexpr Row kRows[] = {
        {"<ex:a>1</ex:a>", "<ex:a>1</ex:a>", ""},
        // Where and how a property is written does not matter.
        {"<ex:a>1</ex:a><ex:b/>", "<ex:b/><p:a xmlns:p=\"http://ex/\">1</p:a>", ""},
        {"<ex:a>1</ex:a>", "<ex:a>2</ex:a>", "ex:a\t\"1\"\t\"2\"\n"},
        {"<ex:a>1</ex:a><ex:c/>", "<ex:c/><ex:b>2</ex:b>",
         "ex:a\t\"1\"\tnull\nex:b\tnull\t\"2\"\n"},
        {"", "<ex:a><rdf:Bag><rdf:li>1</rdf:li></rdf:Bag></ex:a>", "ex:a\tnull\t[\"1\"]\n"},
        {"<ex:a><rdf:Seq><rdf:li>1</rdf:li></rdf:Seq></ex:a>",
         "<ex:a><rdf:Bag><rdf:li>1</rdf:li></rdf:Bag></ex:a>", "ex:a\t[\"1\"]\t[\"1\"]\n"},
        {"<ex:a ex:b=\"1\" ex:c=\"2\"/>", "<ex:a ex:d=\"3\" ex:b=\"4\"/>",
         "ex:a/ex:b\t\"1\"\t\"4\"\nex:a/ex:c\t\"2\"\tnull\nex:a/ex:d\tnull\t\"3\"\n"},
        {"", "<ex:a ex:b=\"1\"/>", "ex:a/ex:b\tnull\t\"1\"\n"},
        {"<ex:a ex:b=\"1\"/>", "<ex:a>1</ex:a>", "ex:a\t{\"ex:b\":\"1\"}\t\"1\"\n"},
        {"<ex:a ex:b=\"1\" ex:c=\"2\"/>", "<ex:a ex:c=\"2\" ex:b=\"1\"/>",
         "ex:a\t{\"ex:b\":\"1\",\"ex:c\":\"2\"}\t{\"ex:c\":\"2\",\"ex:b\":\"1\"}\n"},
        {"<ex:a><rdf:Alt><rdf:li xml:lang=\"de\">1</rdf:li><rdf:li xml:lang=\"fr\">2</rdf:li>"
         "</rdf:Alt></ex:a>",
         "<ex:a><rdf:Alt><rdf:li xml:lang=\"DE\">3</rdf:li><rdf:li xml:lang=\"it\">4</rdf:li>"
         "</rdf:Alt></ex:a>",
         "ex:a[@de]\t\"1\"\t\"3\"\nex:a[@fr]\t\"2\"\tnull\nex:a[@it]\tnull\t\"4\"\n"},
        {"<ex:a>1</ex:a>", "<ex:a><rdf:Alt><rdf:li xml:lang=\"de\">1</rdf:li></rdf:Alt></ex:a>",
         "ex:a\t\"1\"\t{\"de\":\"1\"}\n"},
        {"", "<ex:a><rdf:Alt><rdf:li xml:lang=\"de\">1</rdf:li></rdf:Alt></ex:a>",
         "ex:a[@de]\tnull\t\"1\"\n"},
        {"<ex:a>1</ex:a>", "<ex:a xml:lang=\"de\">1</ex:a>", "ex:a\t\"1\"\t\"1\"\n"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.after);
        EXPECT_EQ(Changes(row.before, row.after), row.want);
    }
}

}  // namespace
}  // namespace kivxmp::testing
