// Loading of binary images: their versions, headers and stores, whole and broken.

#include "dictionary/Dictionary.h"
#include "dictionary/KeyHash.h"
#include "dictionary/tests/ImageSupport.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

namespace morvish {
namespace {

using dictionary_test::ByteOrder;
using dictionary_test::Entries;
using dictionary_test::EntriesOf;
using dictionary_test::From;
using dictionary_test::Image;
using dictionary_test::kAllSources;
using dictionary_test::kImageEntries;
using dictionary_test::LoadFrom;
using dictionary_test::Text;
using dictionary_test::Written;

using namespace std::string_literals;

constexpr ByteOrder kBothOrders[] = {ByteOrder::kLittle, ByteOrder::kBig};

// A dictionary with an entry, which a failed load must keep.
class Loaded {
public:
    Loaded(From from, const std::string& bytes)
    {
        dictionary.ParseLine(u"$$$/Old=kept");
        LoadFrom(from, dictionary, bytes);
    }
    bool KeepsOld() const
    {
        return dictionary.MajorVersion() == 0 &&
               EntriesOf(dictionary) == Entries{{"/Old", u"kept"}};
    }

    Dictionary dictionary;
};

TEST(DictionaryImage, LoadsInBothOrdersFromEverySource)
{
    for (const ByteOrder order : kBothOrders) {
        for (const From from : kAllSources) {
            Image image;
            image.order = order;
            Dictionary dictionary;
            LoadFrom(from, dictionary, image.Text());
            EXPECT_TRUE(dictionary.Valid());
            EXPECT_EQ(dictionary.MajorVersion(), 2);
            EXPECT_EQ(dictionary.MinorVersion(), 7);
            EXPECT_STREQ(dictionary.HeaderText(), "en_US");
            EXPECT_EQ(dictionary.EntryCount(), 3u);
            EXPECT_EQ(EntriesOf(dictionary), kImageEntries);
            EXPECT_EQ(Text(dictionary, "$$$/B=default"), u"5\u00B0");
            EXPECT_EQ(Text(dictionary, "$$$/C=default"), u"default");
            EXPECT_EQ(dictionary.LookupIndex(0).View(), u"x");
            EXPECT_EQ(dictionary.LookupIndex(1).View(), u"5\u00B0");
            EXPECT_EQ(dictionary.LookupIndex(3).View(), u"");
            // One value, stored once.
            EXPECT_EQ(dictionary.Lookup("$$$/A"), dictionary.Lookup("$$$/B"));
        }
    }
}

TEST(DictionaryImage, StringsOutliveTheDictionary)
{
    DictionaryString kept;
    {
        Dictionary dictionary;
        LoadFrom(From::kMemory, dictionary, Image().Text());
        kept = dictionary.Lookup("$$$/A");
    }
    EXPECT_EQ(kept.View(), u"5\u00B0");
}

struct VersionCase {
    const char* name;
    std::uint32_t major;
    std::uint32_t minor;
    bool loads;
    bool valid;
};

constexpr VersionCase kVersionCases[] = {
    {"2.0 has no byte-order byte", 2, 0, true, true},
    {"2.1", 2, 1, true, true},
    {"2.7", 2, 7, true, true},
    {"2.127", 2, 127, true, true},
    {"2.-1: minor versions have a sign", 2, 255, false, true},
    {"1.0 has a loader, which fails", 1, 0, false, false},
    {"1.5 has a loader, which fails", 1, 5, false, false},
    {"1.1 is unknown", 1, 1, false, true},
    {"1.6 is unknown", 1, 6, false, true},
    {"0.0", 0, 0, false, true},
    {"3.0", 3, 0, false, true},
    {"3.7", 3, 7, false, true},
    {"-1.7: major versions have a sign", 255, 7, false, true},
};

TEST(DictionaryImage, Versions)
{
    for (const VersionCase& row : kVersionCases) {
        for (const From from : kAllSources) {
            SCOPED_TRACE(row.name);
            Image image;
            image.major = row.major;
            image.minor = row.minor;
            const Loaded loaded(from, image.Text());
            EXPECT_EQ(loaded.dictionary.Valid(), row.valid);
            EXPECT_EQ(loaded.dictionary.HeaderText() != nullptr, row.loads);
            if (row.loads) {
                EXPECT_EQ(loaded.dictionary.MinorVersion(), 7);
                EXPECT_EQ(EntriesOf(loaded.dictionary), kImageEntries);
            } else {
                EXPECT_TRUE(loaded.KeepsOld());
            }
        }
    }
}

// A stream that ends where version 3 has its byte-order byte has failed; with minor version 0 there
// is none to miss.
TEST(DictionaryImage, StreamOfVersion3)
{
    for (const auto& [tail, valid] : {std::pair{"\x03\x01\x00"s, false},
                                      {"\x03\x01\x00\x00"s, true},
                                      {"\x03\x00\x00"s, true}}) {
        const Loaded loaded(From::kForeignStream, "Pemtext Binary Format" + tail);
        EXPECT_EQ(loaded.dictionary.Valid(), valid);
        EXPECT_TRUE(loaded.KeepsOld());
    }
}

TEST(DictionaryImage, OnlyTheLowBitOfTheByteOrderCounts)
{
    for (const ByteOrder order : kBothOrders) {
        Image image;
        image.order = order;
        std::string bytes = image.Text();
        bytes[24] = static_cast<char>(bytes[24] | 0xFE);
        Dictionary dictionary;
        LoadFrom(From::kMemory, dictionary, bytes);
        EXPECT_EQ(EntriesOf(dictionary), kImageEntries);
    }
}

struct HeaderCase {
    const char* name;
    From from;
    std::string bytes;   // behind the byte-order byte
    const char* header;  // before the load it is "old"
};

const HeaderCase kHeaderCases[] = {
    {"no length", From::kMemory, "", "old"},
    {"no length", From::kForeignStream, "", "old"},
    {"cut length", From::kMemory, "\0\0\0"s, "old"},
    {"cut length", From::kForeignStream, "\0\0\0"s, "old"},
    // The length is the last thing in the block: the text is skipped, whatever its length.
    {"ends behind length 0", From::kMemory, "\0\0\0\0"s, "old"},
    {"ends behind length 2", From::kMemory, "\2\0\0\0"s, "old"},
    {"ends behind length 0", From::kForeignStream, "\0\0\0\0"s, ""},
    {"ends behind length 2", From::kForeignStream, "\2\0\0\0"s, "old"},
    {"cut text", From::kMemory, "\3\0\0\0de"s, "old"},
    {"cut text", From::kForeignStream, "\3\0\0\0de"s, "old"},
    {"huge length", From::kMemory,
     "\xFF\xFF\xFF\xFF"
     "de"s,
     "old"},
    {"huge length", From::kForeignStream,
     "\xFF\xFF\xFF\xFF"
     "de"s,
     "old"},
    // The text stays when the store behind it fails.
    {"no store", From::kMemory, "\2\0\0\0de"s, "de"},
    {"no store", From::kForeignStream, "\2\0\0\0de"s, "de"},
    {"NUL ends the text", From::kMemory, "\4\0\0\0d\0ef"s, "d"},
};

TEST(DictionaryImage, BrokenHeaders)
{
    for (const HeaderCase& row : kHeaderCases) {
        SCOPED_TRACE(row.name);
        Image old;
        old.header = "old";
        Dictionary dictionary;
        LoadFrom(From::kMemory, dictionary, old.Text());
        LoadFrom(row.from, dictionary, "Pemtext Binary Format\x02\x07\x00\x00"s + row.bytes);
        EXPECT_FALSE(dictionary.Valid());
        EXPECT_STREQ(dictionary.HeaderText(), row.header);
        EXPECT_EQ(EntriesOf(dictionary), kImageEntries);
    }
}

TEST(DictionaryImage, EmptyHeaderTextIsPresent)
{
    Image image;
    image.header = "";
    Dictionary dictionary;
    LoadFrom(From::kMemory, dictionary, image.Text());
    EXPECT_TRUE(dictionary.Valid());
    EXPECT_STREQ(dictionary.HeaderText(), "");
    EXPECT_EQ(Written(dictionary), image.Text());
}

TEST(DictionaryImage, SmallBlocksAreNoImages)
{
    for (std::size_t size = 21; size <= 24; ++size) {
        const std::string bytes = "Pemtext Binary Format\x03\x07\x00"s.substr(0, size);
        EXPECT_FALSE(Loaded(From::kMemory, bytes).dictionary.Valid()) << size;
        EXPECT_TRUE(Loaded(From::kMemory, bytes).KeepsOld()) << size;
    }
    EXPECT_TRUE(Loaded(From::kMemory, "Pemtext Binary Format\x03\x07\x00\x00"s).dictionary.Valid());
}

TEST(DictionaryImage, CutAnywhereLoadsNothing)
{
    const auto cutAnywhere = [](const Image& image) {
        const std::string whole = image.Text();
        for (std::size_t size = 21; size < whole.size(); ++size) {
            for (const From from : kAllSources) {
                SCOPED_TRACE(size);
                const Loaded loaded(from, whole.substr(0, size));
                EXPECT_FALSE(loaded.dictionary.Valid());
                EXPECT_TRUE(loaded.KeepsOld());
            }
        }
    };
    Image image;
    for (const char layout : {'Y', 'N'}) {
        image.layout = layout;
        for (const ByteOrder order : kBothOrders) {
            image.order = order;
            image.minor = 7;
            cutAnywhere(image);
        }
        image.order = ByteOrder::kLittle;
        image.minor = 0;
        cutAnywhere(image);
    }
}

TEST(DictionaryImage, BytesBehindTheImageAreIgnored)
{
    for (const From from : kAllSources) {
        Dictionary dictionary;
        LoadFrom(from, dictionary, Image().Text() + "more");
        EXPECT_TRUE(dictionary.Valid());
        EXPECT_EQ(EntriesOf(dictionary), kImageEntries);
    }
}

struct StoreCase {
    const char* name;
    std::function<void(Image&)> change;
    bool loads;
};

const StoreCase kStoreCases[] = {
    {"identifier", [](Image& image) { image.identifier = 1; }, false},
    {"identifier", [](Image& image) { image.identifier = 0x80000000; }, false},
    {"layout", [](Image& image) { image.layout = 'y'; }, false},
    {"layout", [](Image& image) { image.layout = 0; }, false},
    {"the second count says nothing", [](Image& image) { image.secondCount = 77; }, true},
    {"one entry too many", [](Image& image) { image.count = 4; }, false},
    {"one entry too few", [](Image& image) { image.count = 2; }, false},
    {"count times 12 overflows", [](Image& image) { image.count = 0x15555556; }, false},
    {"largest count", [](Image& image) { image.count = 0xFFFFFFFF; }, false},
    {"no group", [](Image& image) { image.groupCount = 0; }, false},
    {"one group too few", [](Image& image) { image.groupCount = 2; }, false},
    {"one group too many", [](Image& image) { image.groupCount = 4; }, false},
    {"largest group count", [](Image& image) { image.groupCount = 0xFFFFFFFF; }, false},
    {"key pool too small", [](Image& image) { image.keyPoolBytes = 4; }, false},
    {"key pool too large", [](Image& image) { image.keyPoolBytes = 6; }, false},
    {"largest key pool", [](Image& image) { image.keyPoolBytes = 0xFFFFFFFF; }, false},
    {"odd value pool", [](Image& image) { image.valuePoolBytes = 5; }, false},
    {"odd value pool",
     [](Image& image) {
         image.valuePoolBytes = 7;
         image.groups.push_back({0, 0});
     },
     false},
    {"largest value pool", [](Image& image) { image.valuePoolBytes = 0xFFFFFFFE; }, false},
    {"key beyond its pool",
     [](Image& image) {
         image.keys[2] = {4, 2};
     },
     false},
    {"key offset wraps",
     [](Image& image) {
         image.keys[2] = {0xFFFFFFFE, 2};
     },
     false},
    {"empty key behind the pool",
     [](Image& image) {
         image.keys[0] = {6, 0};
         image.groups[0].bucket = 0;
     },
     false},
    {"empty key at the pool's end",
     [](Image& image) {
         image.keys[0] = {5, 0};
         image.groups[0].bucket = 0;
     },
     true},
    {"value beyond its pool",
     [](Image& image) {
         image.values[0] = {2, 2};
     },
     false},
    {"value offset wraps",
     [](Image& image) {
         image.values[0] = {0xFFFFFFFF, 1};
     },
     false},
    {"empty value behind the pool",
     [](Image& image) {
         image.values[0] = {4, 0};
     },
     false},
    {"empty value at the pool's end",
     [](Image& image) {
         image.values[0] = {3, 0};
     },
     true},
    {"values overlap",
     [](Image& image) {
         image.values[0] = {0, 3};
     },
     true},
    {"key of another group", [](Image& image) { image.groups[0].bucket = 98; }, false},
    {"groups out of order",
     [](Image& image) {
         std::swap(image.groups[0], image.groups[1]);
         std::swap(image.keys[0], image.keys[1]);
     },
     false},
    {"the same group twice",
     [](Image& image) {
         image.groups[1].bucket = 97;
         image.keys[1] = {0, 1};
     },
     false},
    {"group 1021", [](Image& image) { image.groups[2].bucket = 1021; }, false},
    {"empty group", [](Image& image) { image.groups[0].size = 0; }, false},
    {"empty group in front",
     [](Image& image) {
         image.groups.insert(image.groups.begin(), {5, 0});
         image.groupCount = 4;
     },
     false},
    {"groups hold too many", [](Image& image) { image.groups[2].size = 2; }, false},
    {"group sizes wrap", [](Image& image) { image.groups[1].size = 0xFFFFFFFF; }, false},
    {"pool that nobody uses", [](Image& image) { image.valuePool += u"unused"; }, true},
};

TEST(DictionaryImage, StoreFields)
{
    for (const StoreCase& row : kStoreCases) {
        for (const ByteOrder order : kBothOrders) {
            for (const From from : kAllSources) {
                SCOPED_TRACE(row.name);
                Image image;
                image.order = order;
                row.change(image);
                const Loaded loaded(from, image.Text());
                EXPECT_EQ(loaded.dictionary.Valid(), row.loads);
                if (row.loads)
                    EXPECT_EQ(loaded.dictionary.EntryCount(), 3u);
                else
                    EXPECT_TRUE(loaded.KeepsOld());
            }
        }
    }
}

// Every byte of an image set to values that are wrong in most fields: it is never read past its
// end, all sources agree, and what does not load leaves what was there.
TEST(DictionaryImage, EveryByteMutated)
{
    const std::string whole = Image().Text();
    for (std::size_t at = 21; at < whole.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF, whole[at] + 1, whole[at] ^ 0x20}) {
            SCOPED_TRACE(testing::Message() << at << " is " << value);
            std::string changed = whole;
            changed[at] = static_cast<char>(value);
            const Loaded memory(From::kMemory, changed);
            const Loaded stream(From::kForeignStream, changed);
            EXPECT_EQ(memory.dictionary.Valid(), stream.dictionary.Valid());
            EXPECT_EQ(EntriesOf(memory.dictionary), EntriesOf(stream.dictionary));
            if (memory.dictionary.MajorVersion() == 0)
                EXPECT_TRUE(memory.KeepsOld());
            else
                EXPECT_EQ(memory.dictionary.EntryCount(), 3u);
        }
    }
}

// What an image claims is compared with what is there before anything is allocated for it: this
// would need 36 GB.
TEST(DictionaryImage, ClaimsCostNothing)
{
    Image image;
    image.count = 0xC0000000;
    image.keyPoolBytes = 0xFFFFFFFF;
    image.valuePoolBytes = 0xFFFFFFFE;
    for (const From from : kAllSources) {
        const Loaded loaded(from, image.Text() + std::string(1000, '\0'));
        EXPECT_FALSE(loaded.dictionary.Valid());
        EXPECT_LT(loaded.dictionary.BinaryStoreBytes(), 1000u);
    }
}

// Values and keys that share room in an image share it in memory.
TEST(DictionaryImage, SharedRoomIsNotMultiplied)
{
    constexpr std::uint32_t kCount = 2000;
    Image image;
    image.count = kCount;
    image.groupCount = 1;
    image.keyPool = std::string(60000 + kCount, '\0');  // any run of it hashes to 0
    image.valuePool = std::u16string(60000, u'v');
    image.keys.clear();
    for (std::uint32_t i = 0; i < kCount; ++i)
        image.keys.push_back({i, 60000 - i});
    image.values.assign(kCount, {0, 60000});
    image.groups = {{0, kCount}};
    const std::string bytes = image.Text();
    Dictionary dictionary;
    LoadFrom(From::kMemory, dictionary, bytes);
    EXPECT_TRUE(dictionary.Valid());
    EXPECT_EQ(dictionary.EntryCount(), kCount);
    EXPECT_LT(dictionary.BinaryStoreBytes(), 3 * bytes.size());
}

TEST(DictionaryImage, TextLoadedBeforeIsNoLongerFound)
{
    Dictionary dictionary;
    dictionary.ParseLine(u"$$$/Old=old");
    LoadFrom(From::kMemory, dictionary, Image().Text());
    EXPECT_EQ(Text(dictionary, "$$$/Old=default"), u"default");
    EXPECT_EQ(EntriesOf(dictionary), kImageEntries);
}

TEST(DictionaryImage, LaterEntriesReplaceAndKeepTheirNumbers)
{
    // "a" twice in one image: one entry, under the first number.
    Image twice;
    twice.keys = {{0, 1}, {0, 1}, {3, 2}};
    twice.groups = {{97, 2}, {549, 1}};
    twice.groupCount = 2;
    Dictionary dictionary;
    LoadFrom(From::kMemory, dictionary, twice.Text());
    EXPECT_TRUE(dictionary.Valid());
    EXPECT_EQ(dictionary.EntryCount(), 2u);
    EXPECT_EQ(dictionary.LookupIndex(0).View(), u"5\u00B0");
    EXPECT_EQ(Text(dictionary, "a"), u"5\u00B0");
    const DictionaryString old = dictionary.Lookup("a");

    // A second image: "a" and "/B" again, "/A" new.
    LoadFrom(From::kForeignStream, dictionary, Image().Text());
    EXPECT_EQ(dictionary.EntryCount(), 3u);
    EXPECT_EQ(dictionary.LookupIndex(0).View(), u"x");
    EXPECT_EQ(old.View(), u"5\u00B0");
    EXPECT_EQ(EntriesOf(dictionary), kImageEntries);

    // And lines, one key over and over.
    for (const char16_t* const line : {u"$$$/A=1", u"$$$/A=2", u"$$$/N=new", u"$$$/A=3\\n"})
        dictionary.ParseLine(line);
    EXPECT_EQ(EntriesOf(dictionary),
              (Entries{{"a", u"x"}, {"/A", u"3\n"}, {"/B", u"5\u00B0"}, {"/N", u"new"}}));
    EXPECT_EQ(dictionary.LookupIndex(2).View(), u"3\n");
    EXPECT_EQ(dictionary.LookupIndex(3).View(), u"new");
}

TEST(DictionaryImage, PlainImagesAnswerByNumber)
{
    for (const ByteOrder order : kBothOrders) {
        Image image;
        image.order = order;
        image.layout = 'N';
        image.groupCount = 99;  // says nothing
        Dictionary dictionary;
        LoadFrom(From::kMemory, dictionary, image.Text());
        EXPECT_TRUE(dictionary.Valid());
        EXPECT_EQ(dictionary.EntryCount(), 3u);
        EXPECT_TRUE(EntriesOf(dictionary).empty());  // no keys
        EXPECT_EQ(dictionary.LookupIndex(1).View(), u"5\u00B0");
        EXPECT_EQ(Text(dictionary, "a"), u"");
        const char16_t* units = nullptr;
        std::size_t length = 0;
        EXPECT_FALSE(dictionary.RawLookup("a", units, length));
        EXPECT_TRUE(dictionary.RawLookupIndex(0, units, length));
        EXPECT_EQ(std::u16string_view(units, length), u"x");

        image.groupCount = 0;
        EXPECT_EQ(Written(dictionary, order), image.Text());
    }
}

TEST(DictionaryImage, CopiesShareStoreAndHeader)
{
    Image image;
    image.header = "de_DE";
    Dictionary dictionary;
    LoadFrom(From::kMemory, dictionary, image.Text());
    const Dictionary copy(dictionary);
    EXPECT_STREQ(copy.HeaderText(), "de_DE");
    EXPECT_NE(copy.HeaderText(), dictionary.HeaderText());
    EXPECT_EQ(copy.Lookup("a"), dictionary.Lookup("a"));
    dictionary.ParseLine(u"$$$/New=new");
    EXPECT_EQ(Text(copy, "$$$/New"), u"new");
}

TEST(DictionaryImage, FallbackByKeyAndNumber)
{
    Dictionary image;
    LoadFrom(From::kMemory, image, Image().Text());
    Dictionary empty(Dictionary::Format::kBinary);
    const Dictionary text;
    Dictionary::SetFallback(&image);
    EXPECT_EQ(Text(empty, "$$$/A=default"), u"5\u00B0");
    EXPECT_EQ(Text(text, "$$$/A=default"), u"5\u00B0");
    EXPECT_EQ(empty.LookupIndex(0).View(), u"x");
    EXPECT_EQ(text.LookupIndex(0).View(), u"");
    Dictionary::SetFallback(nullptr);
    EXPECT_EQ(empty.LookupIndex(0).View(), u"");
}

TEST(DictionaryImage, ALoadThatFailsLeavesTheVersion)
{
    Image image;
    image.identifier = 1;
    Dictionary dictionary;
    LoadFrom(From::kMemory, dictionary, image.Text());
    EXPECT_EQ(dictionary.MajorVersion(), 0);
    EXPECT_STREQ(dictionary.HeaderText(), "en_US");
    dictionary.ParseLine(u"$$$/A=text");
    EXPECT_EQ(EntriesOf(dictionary), (Entries{{"/A", u"text"}}));
}

TEST(DictionaryImage, StreamsThatCannotSeekGiveNothing)
{
    class Sequential : public std::streambuf {
    public:
        explicit Sequential(std::string bytes) : bytes_(std::move(bytes))
        {
            setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
        }

    private:
        std::string bytes_;
    };
    Sequential buffer(Image().Text());
    std::istream stream(&buffer);
    Dictionary dictionary;
    dictionary.LoadFromStream(&stream);
    EXPECT_EQ(dictionary.MajorVersion(), 0);
    EXPECT_EQ(dictionary.EntryCount(), 0u);
}

}  // namespace
}  // namespace morvish
