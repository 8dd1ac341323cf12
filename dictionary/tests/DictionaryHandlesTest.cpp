#include "dictionary/DictionaryHandles.h"

#include "dictionary/DictionaryException.h"
#include "dictionary/tests/ImageSupport.h"
#include "dictionary/tests/TestSupport.h"

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <sstream>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

namespace morvish {
namespace {

using dictionary_test::Text;

TEST(DictionaryHandles, DictionariesLiveByHandle)
{
    Dictionary* const text = CreateDictionary();
    std::istringstream stream("$$$/A=x\n");
    LoadDictionaryFromStream(*text, &stream);
    EXPECT_EQ(Text(*text, "$$$/A"), u"x");
    EXPECT_TRUE(DictionaryIsValid(*text));
    LoadDictionaryFromStream(*text, nullptr);
    EXPECT_FALSE(DictionaryIsValid(*text));

    Dictionary* const binary = CreateDictionary(Dictionary::Format::kBinary);
    binary->ParseLine(u"$$$/B=y");
    EXPECT_EQ(binary->MajorVersion(), 2);
    Dictionary* const copy = CopyDictionary(*binary);
    EXPECT_EQ(Text(*copy, "$$$/B"), u"y");
    AssignDictionary(*copy, *text);
    EXPECT_EQ(copy->EntryCount(), 0u);

    DestroyDictionary(text);
    DestroyDictionary(binary);
    DestroyDictionary(copy);
    DestroyDictionary(nullptr);
}

TEST(DictionaryHandles, Images)
{
    Dictionary* const dictionary = CreateDictionary();
    std::istringstream stream(dictionary_test::Image().Text());
    LoadDictionaryFromStream(*dictionary, &stream);
    EXPECT_TRUE(DictionaryIsValid(*dictionary));
    Dictionary* const copy = CopyDictionary(*dictionary);
    Dictionary* const assigned = CreateDictionary();
    AssignDictionary(*assigned, *copy);
    DestroyDictionary(dictionary);

    DictionaryString* const byKey = LookupString(*copy, "$$$/A=x");
    DictionaryString* const byIndex = LookupStringByIndex(*assigned, 1);
    DestroyDictionary(copy);
    DestroyDictionary(assigned);
    EXPECT_EQ(*byKey, *byIndex);
    // Nothing ends the text in the image; a copy is ended.
    char16_t buffer[8] = u"-------";
    CopyString(*byKey, buffer, 8, OnTruncation::kThrow);
    EXPECT_EQ(std::u16string_view(buffer, 8), std::u16string_view(u"5\u00B0\0----\0", 8));
    ReleaseString(byKey);
    ReleaseString(byIndex);
}

TEST(DictionaryHandles, StringsLiveByHandle)
{
    Dictionary* const dictionary = CreateDictionary(Dictionary::Format::kBinary);
    dictionary->ParseLine(u"$$$/A=stored");
    DictionaryString* const stored = LookupString(*dictionary, "$$$/A=x");
    DictionaryString* const byDefault = LookupString(*dictionary, "$$$/B=x");
    DictionaryString* const nothing = LookupString(*dictionary, "$$/B=x");
    DictionaryString* const byIndex = LookupStringByIndex(*dictionary, 0);
    EXPECT_EQ(*stored, *byIndex);
    DestroyDictionary(dictionary);

    EXPECT_EQ(StringSizeUnits(*stored), 7u);
    EXPECT_EQ(StringSizeUnits(*byDefault), 2u);
    EXPECT_EQ(StringSizeUnits(*nothing), 1u);
    EXPECT_EQ(stored->View(), u"stored");
    for (DictionaryString* const string : {stored, byDefault, nothing, byIndex})
        ReleaseString(string);
    ReleaseString(nullptr);
}

// Handles may be taken and released on any thread, also on another one than they came from.
TEST(DictionaryHandles, StringsOfManyThreads)
{
    Dictionary* const dictionary = CreateDictionary();
    dictionary->ParseLine(u"$$$/A=text");
    constexpr std::size_t kHeld = 20;
    std::array<std::atomic<DictionaryString*>, kHeld> shared{};
    std::atomic<int> wrong = 0;
    const auto work = [&](const Dictionary& own) {
        for (std::size_t i = 0; i < 20000; ++i) {
            DictionaryString* const handle = LookupString(own, "$$$/A");
            wrong += handle->View() != u"text";
            ReleaseString(shared[i % kHeld].exchange(handle));
        }
    };
    // A dictionary belongs to one thread at a time.
    Dictionary* const other = CreateDictionary();
    other->ParseLine(u"$$$/A=text");
    std::thread first(work, std::cref(*dictionary));
    std::thread second(work, std::cref(*other));
    first.join();
    second.join();
    EXPECT_EQ(wrong, 0);
    for (std::atomic<DictionaryString*>& handle : shared)
        ReleaseString(handle.load());
    DestroyDictionary(dictionary);
    DestroyDictionary(other);
}

struct CopyCase {
    std::size_t capacity;
    std::u16string terminated;  // what the buffer holds after CopyString
    bool fits;
    std::u16string bare;  // after CopyStringUnits
    bool bareFits;
};

// Of "abc". The NUL that CopyString writes shows as '.'.
const CopyCase kCopyCases[] = {
    {0, u"", false, u"", false},       {1, u".", false, u"a", false},
    {2, u"a.", false, u"ab", false},   {3, u"ab.", false, u"abc", true},
    {4, u"abc.", true, u"abc_", true}, {5, u"abc._", true, u"abc__", true},
};

TEST(DictionaryHandles, CopyOut)
{
    DictionaryString string;
    string.Assign(u"abc", 3);
    for (const CopyCase& row : kCopyCases) {
        for (const bool terminated : {true, false}) {
            SCOPED_TRACE(row.capacity);
            const bool fits = terminated ? row.fits : row.bareFits;
            const auto copy = terminated ? CopyString : CopyStringUnits;
            for (const OnTruncation onTruncation : {OnTruncation::kIgnore, OnTruncation::kThrow}) {
                // Exactly as large as it is said to be.
                const auto buffer = std::make_unique<char16_t[]>(row.capacity);
                std::fill_n(buffer.get(), row.capacity, u'_');
                std::uint32_t code = 0;
                try {
                    copy(string, buffer.get(), row.capacity, onTruncation);
                } catch (const DictionaryException& exception) {
                    code = exception.Code();
                }
                EXPECT_EQ(code, !fits && onTruncation == OnTruncation::kThrow ? 0x42554646u : 0u);
                std::u16string got(buffer.get(), row.capacity);
                for (char16_t& unit : got)
                    unit = unit == 0 ? u'.' : unit;
                EXPECT_EQ(got, terminated ? row.terminated : row.bare);
            }
        }
    }
}

TEST(DictionaryHandles, CopyOutOfTheEmptyString)
{
    const DictionaryString empty;
    char16_t unit = u'_';
    EXPECT_NO_THROW(CopyStringUnits(empty, nullptr, 0, OnTruncation::kThrow));
    EXPECT_NO_THROW(CopyString(empty, &unit, 1, OnTruncation::kThrow));
    EXPECT_EQ(unit, 0);
    EXPECT_THROW(CopyString(empty, nullptr, 0, OnTruncation::kThrow), DictionaryException);
}

}  // namespace
}  // namespace morvish
