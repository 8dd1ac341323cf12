#include "dictionary/Dictionary.h"

#include "dictionary/InputStreams.h"
#include "dictionary/KeyHash.h"
#include "dictionary/tests/TestSupport.h"

#include <set>
#include <sstream>

#include <gtest/gtest.h>

namespace morvish {
namespace {

using dictionary_test::BigEndian;
using dictionary_test::Entries;
using dictionary_test::EntriesOf;
using dictionary_test::ExactBlock;
using dictionary_test::LittleEndian;
using dictionary_test::LoadText;
using dictionary_test::Text;
using namespace std::string_literals;

TEST(Dictionary, VersionText)
{
    EXPECT_STREQ(kDictionaryVersionText, "5.9");
}

TEST(Dictionary, StartsEmptyAndValid)
{
    const Dictionary text;
    EXPECT_TRUE(text.Valid());
    EXPECT_EQ(text.EntryCount(), 0u);
    EXPECT_EQ(text.MajorVersion(), 0);
    EXPECT_EQ(text.MinorVersion(), 0);
    EXPECT_EQ(text.HeaderText(), nullptr);

    const Dictionary binary(Dictionary::Format::kBinary);
    EXPECT_TRUE(binary.Valid());
    EXPECT_EQ(binary.EntryCount(), 0u);
    EXPECT_EQ(binary.MajorVersion(), 2);
    EXPECT_EQ(binary.MinorVersion(), 7);
    EXPECT_EQ(binary.HeaderText(), nullptr);
}

struct LineCase {
    std::u16string line;
    bool valid;
    Entries want;
};

const LineCase kLineCases[] = {
    {u"\"$$$/A/B=x=y\"", true, {{"/A/B", u"x=y"}}},
    {u"$$$/A/B=plain", true, {{"/A/B", u"plain"}}},
    {u"\"$$$/A/B=open", true, {{"/A/B", u"open"}}},
    {u"\"/A=no dollars\"", true, {{"/A", u"no dollars"}}},
    {u"\"$$$/A\"", true, {{"/A", u""}}},
    {u"\"$$$/A=\"", true, {{"/A", u""}}},
    // What stands outside the quotes does not count.
    {u"before \"$$$/A=x\" after \"$$$/B=y\"", true, {{"/A", u"x"}}},
    {u"  \"$$$/A=x\"", true, {{"/A", u"x"}}},
    // An escaped quote ends nothing, also behind two backslashes.
    {u"\"$$$/A=a\\\"b\"", true, {{"/A", u"a\"b"}}},
    {u"\"$$$/A=a\\\\\"b\"", true, {{"/A", u"a\\\"b"}}},
    {u"\\\"$$$/A=x", true, {{"\\\"$$$/A", u"x"}}},
    {u"\\\"a\"$$$/A=x\"", true, {{"/A", u"x"}}},
    // The key takes no escapes; the value does.
    {u"$$$/A\\n^Q=a\\n^Q", true, {{"/A\\n^Q", u"a\n\""}}},
    {u"$$$/A=#{copy}#{copyyear}", true, {{"/A", u"\u00A92026"}}},
    // Only the low byte of a key's unit counts; one that becomes '=' or NUL is stored as it is.
    {u"$$$/\u00E9\u20AC=x", true, {{"/\xE9\xAC", u"x"}}},
    {u"$$$/a\u013D\u0100z=x", true, {{"/a=\0z"s, u"x"}}},
    {u"\uFEFF$$$/A=x", true, {{"\xFF$$$/A", u"x"}}},
    {u"\uFEFF\"$$$/A=x\"", true, {{"/A", u"x"}}},
    // Empty keys are keys.
    {u"\"\"", true, {{"", u""}}},
    {u"=v", true, {{"", u"v"}}},
    {u"$$$", true, {{"", u""}}},
    {u"$$$=v", true, {{"", u"v"}}},
    {u"", true, {{"", u""}}},
    // There are no comments: such a line defines an entry.
    {u"# note", true, {{"# note", u""}}},
    {u"// note = x", true, {{"// note ", u" x"}}},
    {u" $$/A=x", true, {{" $$/A", u"x"}}},
    // More than three dollars: the rest belongs to the key.
    {u"$$$$/A=x", true, {{"$/A", u"x"}}},
    // Too few.
    {u"\"$$/A=1\"", false, {}},
    {u"$/A=1", false, {}},
    {u"$", false, {}},
    {u"$$", false, {}},
    {u"\"$\"", false, {}},
    {u"$=$$$", false, {}},
};

TEST(Dictionary, Lines)
{
    for (const LineCase& row : kLineCases) {
        for (const auto format : {Dictionary::Format::kText, Dictionary::Format::kBinary}) {
            SCOPED_TRACE(testing::PrintToString(row.line));
            Dictionary dictionary(format);
            dictionary.ParseLine(row.line.c_str());
            EXPECT_EQ(EntriesOf(dictionary), row.want);
            EXPECT_EQ(dictionary.EntryCount(), row.want.size());
            EXPECT_EQ(dictionary.Valid(), row.valid);
        }
    }
}

TEST(Dictionary, RejectedLineDoesNotStopTheLoad)
{
    Dictionary dictionary;
    LoadText(dictionary, "$$$/A=1\n$$/B=2\n$$$/C=3\n");
    EXPECT_FALSE(dictionary.Valid());
    EXPECT_EQ(EntriesOf(dictionary), (Entries{{"/A", u"1"}, {"/C", u"3"}}));
}

TEST(Dictionary, LastDefinitionWins)
{
    for (const auto format : {Dictionary::Format::kText, Dictionary::Format::kBinary}) {
        Dictionary dictionary(format);
        LoadText(dictionary, "$$$/A=first\n$$$/B=b\n/A=second\n");
        EXPECT_EQ(Text(dictionary, "$$$/A"), u"second");
        EXPECT_EQ(dictionary.EntryCount(), 2u);
        // Over several loads too.
        LoadText(dictionary, "$$$/A=third\n");
        EXPECT_EQ(Text(dictionary, "$$$/A"), u"third");
        EXPECT_EQ(Text(dictionary, "$$$/B"), u"b");
        EXPECT_EQ(dictionary.EntryCount(), 2u);
    }
}

// Streams see their byte-order mark, blocks do not.
TEST(Dictionary, MarksOfTheEncoding)
{
    const auto fromMemory = [](const std::string& bytes) {
        Dictionary dictionary;
        LoadText(dictionary, bytes);
        return EntriesOf(dictionary);
    };
    const auto fromStream = [](const std::string& bytes) {
        Dictionary dictionary;
        std::istringstream stream(bytes);
        dictionary.LoadFromStream(&stream);
        EXPECT_TRUE(dictionary.Valid());
        return EntriesOf(dictionary);
    };
    const Entries plain = {{"/A", u"x"}};
    const Entries marked = {{"\xFF$$$/A", u"x"}};
    const Entries markOnly = {{"\xFF", u""}, {"/A", u"x"}};

    for (const bool big : {false, true}) {
        const auto encode = [&](const char16_t* text) {
            return big ? BigEndian(text) : LittleEndian(text);
        };
        EXPECT_EQ(fromMemory(encode(u"\uFEFF\"$$$/A=x\"")), plain);
        EXPECT_EQ(fromStream(encode(u"\uFEFF\"$$$/A=x\"")), plain);
        EXPECT_EQ(fromMemory(encode(u"\uFEFF$$$/A=x")), plain);
        EXPECT_EQ(fromStream(encode(u"\uFEFF$$$/A=x")), marked);
        // The mark alone on a line is skipped in a stream.
        EXPECT_EQ(fromStream(encode(u"\uFEFF\r\n$$$/A=x")), plain);
        EXPECT_EQ(fromMemory(encode(u"\uFEFF\r\n$$$/A=x\r\n\r\n")), plain);
        EXPECT_EQ(fromMemory(encode(u"\uFEFF\uFEFF\n$$$/A=x")), markOnly);
        EXPECT_EQ(fromStream(encode(u"\uFEFF\n\uFEFF\n$$$/A=x")), plain);
    }
    EXPECT_EQ(fromMemory("\xEF\xBB\xBF\"$$$/A=x\""), plain);
    EXPECT_EQ(fromStream("\xEF\xBB\xBF\"$$$/A=x\""), plain);
    EXPECT_EQ(fromMemory("\xEF\xBB\xBF$$$/A=x"), marked);
    EXPECT_EQ(fromStream("\xEF\xBB\xBF$$$/A=x"), marked);
    EXPECT_EQ(fromMemory("\xEF\xBB\xBF\r\n$$$/A=x"), markOnly);
    EXPECT_EQ(fromStream("\xEF\xBB\xBF\r\n$$$/A=x"), plain);
}

TEST(Dictionary, StreamIsReadFromItsStart)
{
    std::istringstream stream("$$$/A=x\n$$$/B=y\n");
    stream.seekg(8);
    Dictionary dictionary;
    dictionary.LoadFromStream(&stream);
    EXPECT_EQ(dictionary.EntryCount(), 2u);
}

TEST(Dictionary, NoSource)
{
    Dictionary nullStream;
    nullStream.LoadFromStream(nullptr);
    EXPECT_FALSE(nullStream.Valid());

    std::istringstream empty("");
    Dictionary emptyStream;
    emptyStream.LoadFromStream(&empty);
    EXPECT_TRUE(emptyStream.Valid());
    EXPECT_EQ(emptyStream.EntryCount(), 0u);

    struct {
        const void* block;
        std::size_t size;
    } const blocks[] = {{nullptr, 10}, {"abc", 0}, {"a", 1}};
    for (const auto& row : blocks) {
        Dictionary dictionary;
        dictionary.LoadFromMemory(row.block, row.size);
        EXPECT_FALSE(dictionary.Valid());
        EXPECT_EQ(dictionary.EntryCount(), 0u);
    }
}

TEST(Dictionary, BrokenUtf8EndsTheLoadSilently)
{
    for (const char* const broken : {"\xC0\xAF", "\xED\xA0\x80", "\xE2\x82", "\x80", "\xFF"}) {
        Dictionary dictionary;
        LoadText(dictionary, "$$$/A=1\n$$$/B=" + std::string(broken) + "\n$$$/C=3\n");
        EXPECT_TRUE(dictionary.Valid());
        EXPECT_EQ(EntriesOf(dictionary), (Entries{{"/A", u"1"}}));
    }
}

TEST(Dictionary, ImageWithoutAStoreLoadsNothing)
{
    const std::string image = "Pemtext Binary Format\x02\x07\x01\n$$$/A=1\n";
    for (const std::string& bytes : {image, image.substr(0, 21)}) {
        Dictionary memory;
        memory.ParseLine(u"$$$/Old=kept");
        LoadText(memory, bytes);
        EXPECT_FALSE(memory.Valid());
        EXPECT_EQ(EntriesOf(memory), (Entries{{"/Old", u"kept"}}));

        Dictionary stream;
        std::istringstream source(bytes);
        stream.LoadFromStream(&source);
        EXPECT_FALSE(stream.Valid());
        EXPECT_EQ(stream.EntryCount(), 0u);
        EXPECT_EQ(stream.MajorVersion(), 0);
    }

    // One byte short of the magic, and behind a byte-order mark, it is a line of text.
    Dictionary cut;
    LoadText(cut, image.substr(0, 20));
    EXPECT_TRUE(cut.Valid());
    EXPECT_EQ(EntriesOf(cut), (Entries{{"Pemtext Binary Forma", u""}}));
    Dictionary marked;
    std::istringstream source("\xFF\xFE" + image);
    marked.LoadFromStream(&source);
    EXPECT_TRUE(marked.Valid());
    EXPECT_EQ(marked.MajorVersion(), 0);
    EXPECT_EQ(marked.EntryCount(), 1u);
}

// A file cut anywhere gives the entries of its whole lines, at most one cut entry more, and is
// never read past its end.
TEST(Dictionary, CutAtEveryLength)
{
    const std::u16string sample =
        u"\"$$$/A=Hello\"\n\"$$$/B=#{mswindows}W\u00E4\u20AC\U0001F600\\n^Q\"\n# note\n"
        u"\"$$$/C=#{U+20AC}#{copy}#{comment}no\"\n";
    std::string utf8;
    for (const char16_t unit : std::u16string(sample)) {
        // The sample's few characters above ASCII, spelled out.
        if (unit < 0x80)
            utf8 += static_cast<char>(unit);
        else if (unit == 0xE4)
            utf8 += "\xC3\xA4";
        else if (unit == 0x20AC)
            utf8 += "\xE2\x82\xAC";
        else if (unit == 0xD83D)
            utf8 += "\xF0\x9F\x98\x80";
    }
    const Entries whole = {{"/A", u"Hello"},
                           {"/B", u"W\u00E4\u20AC\U0001F600\n\""},
                           {"# note", u""},
                           {"/C", u"\u20AC\u00A9"}};
    for (const std::string& bytes :
         {utf8, LittleEndian(u"\uFEFF" + sample), BigEndian(u"\uFEFF" + sample)}) {
        Entries last;
        for (std::size_t length = 2; length <= bytes.size(); ++length) {
            SCOPED_TRACE(length);
            const ExactBlock block(std::string_view(bytes).substr(0, length));
            Dictionary memory;
            memory.LoadFromMemory(block.Start(), block.Size());
            basic_irstream<char> own(block.Start(), block.Size());
            Dictionary ownStream;
            ownStream.LoadFromStream(&own);
            std::istringstream foreign(std::string(block.Start(), block.Size()));
            Dictionary foreignStream;
            foreignStream.LoadFromStream(&foreign);

            last = EntriesOf(memory);
            EXPECT_EQ(EntriesOf(ownStream), EntriesOf(foreignStream));
            Entries fromStream = EntriesOf(ownStream);
            // A lone quote behind the mark is an entry in both.
            fromStream.erase("\xFF");
            last.erase("\xFF");
            EXPECT_EQ(fromStream, last);
            EXPECT_LE(last.size(), 4u);
            if (length >= bytes.size() / 2) {
                EXPECT_EQ(last["/A"], u"Hello");
            }
        }
        EXPECT_EQ(last, whole);
    }
}

TEST(Dictionary, CopiesTakeTheBinaryPartOnly)
{
    Dictionary text;
    text.ParseLine(u"$$$/A=text");
    const Dictionary textCopy(text);
    EXPECT_EQ(textCopy.EntryCount(), 0u);
    EXPECT_EQ(textCopy.MajorVersion(), 0);
    EXPECT_EQ(Text(text, "$$$/A"), u"text");

    Dictionary binary(Dictionary::Format::kBinary);
    binary.ParseLine(u"$$$/A=binary");
    const Dictionary binaryCopy(binary);
    EXPECT_EQ(binaryCopy.MajorVersion(), 2);
    EXPECT_EQ(binaryCopy.MinorVersion(), 7);
    EXPECT_EQ(Text(binaryCopy, "$$$/A"), u"binary");
    // The store is shared, in both directions of time.
    binary.ParseLine(u"$$$/B=later");
    EXPECT_EQ(Text(binaryCopy, "$$$/B"), u"later");
    EXPECT_EQ(binaryCopy.Lookup("$$$/A"), binary.Lookup("$$$/A"));
}

TEST(Dictionary, Assignment)
{
    Dictionary text;
    text.ParseLine(u"$$$/A=text");
    text.ParseLine(u"$bad");
    Dictionary binary(Dictionary::Format::kBinary);
    binary.ParseLine(u"$$$/B=binary");

    // Onto itself: nothing.
    const Dictionary& same = text;
    text = same;
    EXPECT_EQ(Text(text, "$$$/A"), u"text");
    EXPECT_FALSE(text.Valid());

    text = binary;
    EXPECT_EQ(EntriesOf(text), (Entries{{"/B", u"binary"}}));
    EXPECT_EQ(text.MajorVersion(), 2);
    EXPECT_TRUE(text.Valid());
    EXPECT_EQ(text.TextStoreBytes(), 0u);

    const Dictionary other;
    text = other;
    EXPECT_EQ(text.EntryCount(), 0u);
    EXPECT_EQ(text.MajorVersion(), 0);
    // The binary store it shared is untouched, and it takes text again.
    EXPECT_EQ(Text(binary, "$$$/B"), u"binary");
    text.ParseLine(u"$$$/C=new");
    EXPECT_EQ(EntriesOf(text), (Entries{{"/C", u"new"}}));
    EXPECT_EQ(binary.EntryCount(), 1u);
}

TEST(Dictionary, EntriesStandByBucketNewestFirst)
{
    // "a", "c" and "b" lie in buckets 97, 99 and 98; "b\0" + one more samples into another bucket.
    Dictionary dictionary;
    for (const char16_t* const line : {u"c=1", u"a=2", u"b=3", u"a=4", u"=5"})
        dictionary.ParseLine(line);
    class Order : public Dictionary::EntryVisitor {
    public:
        void Visit(std::string_view key, std::u16string_view) override
        {
            keys += '[' + std::string(key) + ']';
        }
        std::string keys;
    };
    Order order;
    dictionary.VisitEntries(order);
    EXPECT_EQ(order.keys, "[][a][b][c]");

    // One bucket: only the sampled bytes count, the sixth of ten is not one of them.
    Dictionary crowded;
    for (const char16_t* const line : {u"/abcd0efgh=", u"/abcd1efgh=", u"/abcd2efgh="})
        crowded.ParseLine(line);
    crowded.ParseLine(u"/abcd0efgh=again");
    Order crowdedOrder;
    crowded.VisitEntries(crowdedOrder);
    EXPECT_EQ(crowdedOrder.keys, "[/abcd0efgh][/abcd2efgh][/abcd1efgh]");
}

// Keys that differ between the sampled bytes only share a bucket, and are told apart.
TEST(Dictionary, CrowdedBucketTellsKeysApart)
{
    Dictionary dictionary;
    LoadText(dictionary, "/abcd0efgh=zero\n/abcd1efgh=one\n");
    EXPECT_EQ(morvish_private::BucketHash("/abcd0efgh", 1021),
              morvish_private::BucketHash("/abcd1efgh", 1021));
    EXPECT_EQ(Text(dictionary, "/abcd0efgh"), u"zero");
    EXPECT_EQ(Text(dictionary, "/abcd1efgh"), u"one");
    EXPECT_EQ(Text(dictionary, "/abcd2efgh=none"), u"none");
}

constexpr int kManyKeys = 100000;

std::string NumberedKey(int number)
{
    const std::string digits = std::to_string(number);
    return "/Numbered/Key" + std::string(6 - digits.size(), '0') + digits + "/Label";
}

std::string NumberedLines(const char* value)
{
    std::string text;
    for (int i = 0; i < kManyKeys; ++i)
        text += "$$$" + NumberedKey(i) + '=' + value + std::to_string(i) + '\n';
    return text;
}

// Searches must not depend on the chains, which hold thousands of entries each here. What is
// counted is the slots that a search looks at.
TEST(Dictionary, NumberedKeysAreFoundInAFewSteps)
{
    std::set<std::uint32_t> buckets;
    for (int i = 0; i < kManyKeys; ++i)
        buckets.insert(morvish_private::BucketHash(NumberedKey(i), 1021));
    EXPECT_EQ(buckets.size(), 10u);

    Dictionary dictionary;
    LoadText(dictionary, NumberedLines("v"));
    ASSERT_EQ(dictionary.EntryCount(), 100000u);
    EXPECT_LT(dictionary.TextSearchCost().total, 3u * kManyKeys);
    EXPECT_LT(dictionary.TextSearchCost().longest, 200u);
    EXPECT_EQ(Text(dictionary, "$$$/Numbered/Key012345/Label"), u"v12345");

    // Replacing all of them neither adds entries nor lengthens searches.
    LoadText(dictionary, NumberedLines("new"));
    EXPECT_EQ(dictionary.EntryCount(), 100000u);
    EXPECT_LT(dictionary.TextSearchCost().total, 3u * kManyKeys);
    EXPECT_EQ(Text(dictionary, "$$$/Numbered/Key000000/Label"), u"new0");
    EXPECT_EQ(Text(dictionary, "$$$/Numbered/Key099999/Label"), u"new99999");
}

}  // namespace
}  // namespace morvish
