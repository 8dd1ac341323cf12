// Writing of dictionaries: images in both byte orders, the text export, and what can go wrong.

#include "dictionary/Dictionary.h"
#include "dictionary/tests/ImageSupport.h"

#include <ios>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>

#include <gtest/gtest.h>

namespace morvish {
namespace {

using dictionary_test::ByteOrder;
using dictionary_test::EntriesOf;
using dictionary_test::From;
using dictionary_test::Image;
using dictionary_test::LittleEndian;
using dictionary_test::LoadFrom;
using dictionary_test::Text;
using dictionary_test::Written;

using namespace std::string_literals;

constexpr ByteOrder kBothOrders[] = {ByteOrder::kLittle, ByteOrder::kBig};

TEST(ImageWriting, ByteByByte)
{
    Dictionary dictionary;
    for (const char16_t* const line : {u"$$$/B=5^D", u"$$$/A=5^D", u"a=x"})
        dictionary.ParseLine(line);
    EXPECT_EQ(Written(dictionary),
              "Pemtext Binary Format\x02\x07\x00\x00"
              "\x05\x00\x00\x00"
              "en_US"
              "\x00\x00\x00\x00Y"
              "\x03\x00\x00\x00\x03\x00\x00\x00\x03\x00\x00\x00"
              "\x05\x00\x00\x00\x06\x00\x00\x00"
              "\x00\x00\x00\x00\x01\x00\x00\x00\x03\x00\x00\x00"
              "\x01\x00\x02\x00\x02\x00"
              "\x00\x00\x00\x00\x01\x00\x00\x00\x01\x00\x00\x00"
              "\x01\x00\x02\x00\x02\x00"
              "a/A/B"
              "x\0005\000\xB0\x00"
              "\x61\x00\x24\x02\x25\x02"
              "\x01\x00\x00\x00\x01\x00\x00\x00\x01\x00\x00\x00"s);
    EXPECT_EQ(Written(dictionary, ByteOrder::kBig),
              "Pemtext Binary Format\x02\x07\x00\x01"
              "\x00\x00\x00\x05"
              "en_US"
              "\x00\x00\x00\x00Y"
              "\x00\x00\x00\x03\x00\x00\x00\x03\x00\x00\x00\x03"
              "\x00\x00\x00\x05\x00\x00\x00\x06"
              "\x00\x00\x00\x00\x00\x00\x00\x01\x00\x00\x00\x03"
              "\x00\x01\x00\x02\x00\x02"
              "\x00\x00\x00\x00\x00\x00\x00\x01\x00\x00\x00\x01"
              "\x00\x01\x00\x02\x00\x02"
              "a/A/B"
              "\000x\0005\000\xB0"
              "\x00\x61\x02\x24\x02\x25"
              "\x00\x00\x00\x01\x00\x00\x00\x01\x00\x00\x00\x01"s);
}

// Numbered keys (which crowd few buckets), equal and empty values, odd keys, replaced entries.
Dictionary ManyEntries()
{
    Dictionary dictionary(Dictionary::Format::kBinary);
    for (int i = 0; i < 3000; ++i) {
        const std::string line =
            "$$$/Menu/Item" + std::to_string(i) + "=value " + std::to_string(i % 700);
        dictionary.ParseLine(std::u16string(line.begin(), line.end()).c_str());
    }
    for (const char16_t* const line :
         {u"=empty key", u"$$$/Empty=", u"\u00FF\u0080=high bytes", u"$$$/Menu/Item7=again",
          u"$$$/Wide=\U0001F600#{D800}#{0}"}) {
        dictionary.ParseLine(line);
    }
    return dictionary;
}

TEST(ImageWriting, WriteReadWriteGivesTheSameBytes)
{
    const Dictionary original = ManyEntries();
    for (const ByteOrder order : kBothOrders) {
        const std::string first = Written(original, order);
        Dictionary read;
        LoadFrom(From::kForeignStream, read, first);
        EXPECT_TRUE(read.Valid());
        EXPECT_EQ(EntriesOf(read), EntriesOf(original));
        EXPECT_EQ(EntriesOf(read).size(), 3004u);
        EXPECT_TRUE(Written(read, order) == first);
        // Through the other order and back.
        Dictionary other;
        LoadFrom(From::kMemory, other,
                 Written(read, order == ByteOrder::kBig ? ByteOrder::kLittle : ByteOrder::kBig));
        EXPECT_TRUE(Written(other, order) == first);
    }
}

TEST(ImageWriting, BothOrdersAnswerAlike)
{
    const Dictionary original = ManyEntries();
    Dictionary little;
    Dictionary big;
    LoadFrom(From::kMemory, little, Written(original, ByteOrder::kLittle));
    LoadFrom(From::kMemory, big, Written(original, ByteOrder::kBig));
    for (const auto& [key, value] : EntriesOf(original)) {
        EXPECT_EQ(Text(little, key.c_str()), key.empty() ? u"" : value);
        EXPECT_EQ(Text(big, key.c_str()), key.empty() ? u"" : value);
    }
    for (std::uint32_t i = 0; i < little.EntryCount(); ++i)
        EXPECT_EQ(little.LookupIndex(i).View(), big.LookupIndex(i).View());
    EXPECT_EQ(Text(big, "$$$=default"), u"empty key");
}

TEST(ImageWriting, TextAndBinaryDictionariesWriteTheSameEntries)
{
    Dictionary text;
    Dictionary binary(Dictionary::Format::kBinary);
    for (int i = 0; i < 500; ++i) {
        const std::string line = "/Key" + std::to_string(i) + "=value";
        text.ParseLine(std::u16string(line.begin(), line.end()).c_str());
        binary.ParseLine(std::u16string(line.begin(), line.end()).c_str());
    }
    EXPECT_TRUE(Written(text) == Written(binary));
}

TEST(ImageWriting, EqualValuesAreStoredOnce)
{
    Dictionary dictionary;
    const std::u16string value(1000, u'v');
    for (int i = 0; i < 100; ++i) {
        const std::string key = "/Key" + std::to_string(i) + "=";
        dictionary.ParseLine((std::u16string(key.begin(), key.end()) + value).c_str());
    }
    EXPECT_LT(Written(dictionary).size(), 2 * value.size() + 100 * 30);
}

// What an image brought keeps its order; what comes later stands before it, newest first.
TEST(ImageWriting, OrderInsideABucket)
{
    // Runs of NUL bytes all hash to bucket 0.
    const auto keyOf = [](std::size_t length) { return std::string(length, '\0'); };
    Image image;
    image.keyPool = keyOf(5);
    image.keys = {{0, 1}, {0, 2}, {0, 3}};
    image.groups = {{0, 3}};
    image.groupCount = 1;
    Dictionary dictionary;
    LoadFrom(From::kMemory, dictionary, image.Text());
    dictionary.ParseLine(u"\u0100\u0100\u0100\u0100=four");
    dictionary.ParseLine(u"\u0100\u0100\u0100\u0100\u0100=five");
    dictionary.ParseLine(u"\u0100\u0100=two");
    Image later = image;
    later.keyPool = keyOf(8);
    later.keys = {{0, 6}, {0, 2}, {0, 7}};
    LoadFrom(From::kMemory, dictionary, later.Text());

    Dictionary read;
    LoadFrom(From::kMemory, read, Written(dictionary));
    class Lengths : public Dictionary::EntryVisitor {
    public:
        void Visit(std::string_view key, std::u16string_view) override
        {
            text += std::to_string(key.size());
        }
        std::string text;
    };
    Lengths lengths;
    read.VisitEntries(lengths);
    EXPECT_EQ(lengths.text, "6754123");
}

TEST(ImageWriting, HeaderTextAndStoreFlag)
{
    Image image;
    image.header = "fr_FR";
    image.storeFlag = 7;
    Dictionary dictionary;
    EXPECT_EQ(dictionary.StoreFlag(), 0);
    LoadFrom(From::kMemory, dictionary, image.Text());
    EXPECT_EQ(dictionary.StoreFlag(), 7);
    image.storeFlag = 1;  // anything but 0 is written as 1
    EXPECT_EQ(Written(dictionary), image.Text());
    // A load that fails leaves the flag.
    image.storeFlag = 0;
    image.identifier = 1;
    LoadFrom(From::kMemory, dictionary, image.Text());
    EXPECT_EQ(dictionary.StoreFlag(), 7);
}

TEST(ImageWriting, Modes)
{
    Dictionary dictionary;
    dictionary.ParseLine(u"$$$/A=1");
    const auto begins = [&](std::int32_t mode) {
        std::ostringstream out;
        const std::uint64_t written = dictionary.Serialize(out, mode, false, ByteOrder::kLittle);
        EXPECT_EQ(written, out.str().size());
        return out.str().substr(0, 2);
    };
    for (const std::int32_t mode : {0, 3})
        EXPECT_EQ(begins(mode), "Pe") << mode;
    for (const std::int32_t mode : {1, 2, 4, -1})
        EXPECT_EQ(begins(mode), "\xFF\xFE") << mode;

    std::ostringstream image;
    const std::uint64_t written = dictionary.SerializeLittleEndian(image, /*asImage=*/true, true);
    EXPECT_EQ(written, image.str().size());
    EXPECT_EQ(image.str().substr(21, 4), "\x02\x07\x01\x00"s);
    std::ostringstream text;
    dictionary.SerializeLittleEndian(text, /*asImage=*/false, true);
    EXPECT_EQ(text.str(), LittleEndian(u"\uFEFF\"/A=1"));
}

TEST(ImageWriting, TextExport)
{
    // Bucket by bucket ("a" 97, "ab" 139), no line ends; key bytes are widened without sign.
    for (const auto format : {Dictionary::Format::kText, Dictionary::Format::kBinary}) {
        Dictionary dictionary(format);
        for (const char16_t* const line : {u"ab=two\\nlines", u"a=\u20AC", u"\u00FF=high"})
            dictionary.ParseLine(line);
        std::ostringstream out;
        dictionary.Serialize(out, 1, false, ByteOrder::kLittle);
        EXPECT_EQ(out.str(), LittleEndian(u"\uFEFF\"a=\u20AC\"ab=two\nlines\"\u00FF=high"));
    }
}

TEST(ImageWriting, ExportInBigEndianOrder)
{
    Dictionary dictionary;
    dictionary.ParseLine(u"a=x");
    std::ostringstream out;
    dictionary.Serialize(out, 1, false, ByteOrder::kBig);
    EXPECT_EQ(out.str(), LittleEndian(u"\uFEFF\"a=") + "\0x"s);
}

TEST(ImageWriting, TextsTooLongForTheirFields)
{
    const std::u16string longest(65535, u'v');
    Dictionary fits;
    fits.ParseLine((u"/Key=" + longest).c_str());
    fits.ParseLine((longest + u"=value").c_str());
    Dictionary read;
    LoadFrom(From::kMemory, read, Written(fits));
    EXPECT_EQ(EntriesOf(read), EntriesOf(fits));

    for (const std::u16string& line : {u"/Key=" + longest + u"v", longest + u"v=value"}) {
        Dictionary dictionary;
        dictionary.ParseLine(line.c_str());
        std::ostringstream out;
        EXPECT_THROW(dictionary.Serialize(out, 0, false, ByteOrder::kLittle), std::length_error);
        EXPECT_EQ(out.str(), "");
        // The export has no such fields.
        EXPECT_GT(dictionary.Serialize(out, 1, false, ByteOrder::kLittle), 2 * line.size());
    }
}

TEST(ImageWriting, EntriesWithAndWithoutKeysDoNotMix)
{
    Image plain;
    plain.layout = 'N';
    Dictionary dictionary;
    LoadFrom(From::kMemory, dictionary, plain.Text());
    dictionary.ParseLine(u"$$$/A=1");
    EXPECT_EQ(dictionary.EntryCount(), 4u);
    EXPECT_EQ(dictionary.LookupIndex(3).View(), u"1");
    std::ostringstream out;
    EXPECT_THROW(dictionary.Serialize(out, 0, false, ByteOrder::kLittle), std::length_error);
    EXPECT_EQ(out.str(), "");
}

TEST(ImageWriting, EmptyStores)
{
    for (const char layout : {'Y', 'N'}) {
        Image image;
        image.layout = layout;
        image.count = image.secondCount = image.groupCount = 0;
        image.keys.clear();
        image.values.clear();
        image.groups.clear();
        image.keyPool.clear();
        image.valuePool.clear();
        Dictionary dictionary;
        LoadFrom(From::kMemory, dictionary, image.Text());
        EXPECT_TRUE(dictionary.Valid());
        EXPECT_EQ(Written(dictionary), image.Text());
        if (layout == 'Y') {
            EXPECT_EQ(Written(Dictionary()), image.Text());
        }
    }
}

// Takes so many bytes, then fails.
class FullBuffer : public std::streambuf {
public:
    explicit FullBuffer(std::streamsize room) : room_(room) {}

private:
    std::streamsize xsputn(const char*, std::streamsize count) override
    {
        const std::streamsize taken = std::min(count, room_);
        room_ -= taken;
        return taken;
    }

    std::streamsize room_;
};

TEST(ImageWriting, StreamThatThrows)
{
    FullBuffer buffer(100);
    std::ostream out(&buffer);
    out.exceptions(std::ios_base::badbit);
    testing::internal::CaptureStderr();
    const std::uint64_t written = ManyEntries().Serialize(out, 0, false, ByteOrder::kLittle);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Serialize2: Caught exception\n");
    EXPECT_EQ(written, 0u);
    EXPECT_TRUE(out.bad());
}

TEST(ImageWriting, StreamThatFailsQuietly)
{
    FullBuffer buffer(70000);
    std::ostream out(&buffer);
    testing::internal::CaptureStderr();
    const std::uint64_t written = ManyEntries().Serialize(out, 0, false, ByteOrder::kLittle);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(out.bad());
    EXPECT_GT(written, 0u);
    EXPECT_LE(written, 70000u);
}

}  // namespace
}  // namespace morvish
