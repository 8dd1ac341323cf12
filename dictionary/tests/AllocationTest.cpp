// Counts allocations. A program of its own, because it replaces the global operator new.

#include "dictionary/DictionaryException.h"
#include "dictionary/DictionaryHandles.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::size_t allocations = 0;
std::size_t liveBytes = 0;
std::size_t allocationsLeft = SIZE_MAX;  // then they fail

// Stands before each block and keeps its size.
constexpr std::size_t kPrefix = alignof(std::max_align_t);

}  // namespace

void* operator new(std::size_t size)
{
    if (allocationsLeft == 0)
        throw std::bad_alloc();
    --allocationsLeft;
    auto* const block = static_cast<unsigned char*>(std::malloc(kPrefix + size));
    if (block == nullptr)
        throw std::bad_alloc();
    ++allocations;
    liveBytes += size;
    std::memcpy(block, &size, sizeof size);
    return block + kPrefix;
}

void operator delete(void* memory) noexcept
{
    if (memory == nullptr)
        return;
    unsigned char* const block = static_cast<unsigned char*>(memory) - kPrefix;
    std::size_t size = 0;
    std::memcpy(&size, block, sizeof size);
    liveBytes -= size;
    std::free(block);
}

void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

// Those of arrays too: a sanitizer's own would not come here.
void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete[](void* memory) noexcept
{
    operator delete(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

namespace morvish {
namespace {

TEST(Allocations, OfLookupsThatHit)
{
    for (const auto format : {Dictionary::Format::kText, Dictionary::Format::kBinary}) {
        Dictionary dictionary(format);
        for (int i = 0; i < 1000; ++i) {
            const std::string line = "$$$/Key/" + std::to_string(i) + "=text";
            dictionary.ParseLine(std::u16string(line.begin(), line.end()).c_str());
        }
        const char16_t* units = nullptr;
        std::size_t length = 0;
        std::size_t before = allocations;
        EXPECT_TRUE(dictionary.RawLookup("$$$/Key/500=default", units, length));
        EXPECT_FALSE(dictionary.RawLookup("$$$/Missing=default", units, length));
        EXPECT_EQ(allocations - before, 0u);

        before = allocations;
        DictionaryString* const handle = LookupString(dictionary, "$$$/Key/500=default");
        EXPECT_EQ(allocations - before, 0u);
        EXPECT_EQ(StringSizeUnits(*handle), 5u);
        ReleaseString(handle);

        before = allocations;
        EXPECT_EQ(dictionary.Lookup("$$$/Missing").LengthUnits(), 0u);
        EXPECT_EQ(allocations - before, 0u);
    }
}

// Handles of which many live at a time go to the heap, one allocation each; what was released
// serves again, also after a look-up that throws.
TEST(Allocations, OfHandles)
{
    Dictionary dictionary;
    dictionary.ParseLine(u"$$$/A=text");
    constexpr std::size_t kPlaces = 32;
    constexpr ConversionContext kUnknown = {kSelectorUtf8};
    ConverterHooks hooks;
    hooks.multibyteToWideSize = [](const ConversionContext&, const char*, std::size_t,
                                   std::size_t*) -> std::uint32_t { return kCodeHuh; };
    for (int round = 0; round < 3; ++round) {
        std::vector<DictionaryString*> handles;
        handles.reserve(2 * kPlaces);
        const std::size_t before = allocations;
        for (std::size_t i = 0; i < 2 * kPlaces; ++i) {
            handles.push_back(LookupString(dictionary, "$$$/A"));
            EXPECT_EQ(allocations - before, i < kPlaces ? 0 : i + 1 - kPlaces);
        }
        EXPECT_EQ(std::set<DictionaryString*>(handles.begin(), handles.end()).size(), 2 * kPlaces);
        const std::size_t liveBefore = liveBytes;
        for (DictionaryString* const handle : handles) {
            EXPECT_EQ(handle->View(), u"text");
            ReleaseString(handle);
        }
        EXPECT_EQ(liveBefore - liveBytes, kPlaces * sizeof(DictionaryString));
        SetConverterHooks(hooks);
        for (std::size_t i = 0; i < 2 * kPlaces; ++i)
            EXPECT_THROW(LookupString(dictionary, "$$$/B=x", &kUnknown), DictionaryException);
        SetConverterHooks({});
    }
}

TEST(Allocations, StringsKeepTheStoreUntilTheLastOneGoes)
{
    for (const auto format : {Dictionary::Format::kText, Dictionary::Format::kBinary}) {
        std::string text;
        for (int i = 0; i < 1000; ++i)
            text += "$$$/Key/" + std::to_string(i) + "=text\n";
        const std::size_t before = liveBytes;
        auto dictionary = std::make_unique<Dictionary>(format);
        dictionary->LoadFromMemory(text.data(), text.size());
        DictionaryString* const first = LookupString(*dictionary, "$$$/Key/1");
        DictionaryString* const second = LookupString(*dictionary, "$$$/Key/999");
        dictionary.reset();
        ReleaseString(first);
        EXPECT_EQ(second->View(), u"text");
        ReleaseString(second);
        EXPECT_EQ(liveBytes, before);
    }
}

// Each allocation of a load fails once.
TEST(Allocations, WhatWasReadBeforeMemoryRanOutCounts)
{
    std::string text;
    for (int i = 0; i < 300; ++i)
        text += "$$$/Key/" + std::to_string(i) + "=" + std::string(200, 'v') + "\n";
    std::size_t most = 0;
    bool complete = false;
    for (std::size_t left = 0; !complete; ++left) {
        ASSERT_LT(left, 1000u);
        Dictionary dictionary;
        dictionary.ParseLine(u"$$$/First=kept");
        allocationsLeft = left;
        try {
            dictionary.LoadFromMemory(text.data(), text.size());
            complete = true;
        } catch (const std::bad_alloc&) {
        }
        allocationsLeft = SIZE_MAX;
        EXPECT_EQ(dictionary.Lookup("$$$/First").View(), u"kept");
        const std::size_t read = dictionary.EntryCount() - 1;
        EXPECT_GE(read, most);
        most = read;
        const char16_t* units = nullptr;
        std::size_t length = 0;
        for (std::size_t i = 0; i < 300; ++i) {
            const std::string key = "$$$/Key/" + std::to_string(i);
            ASSERT_EQ(dictionary.RawLookup(key.c_str(), units, length), i < read) << left;
        }
        dictionary.ParseLine(u"$$$/Last=taken");
        EXPECT_EQ(dictionary.Lookup("$$$/Last").View(), u"taken");
    }
    EXPECT_EQ(most, 300u);
}

TEST(Allocations, LoadingTakesAFewForManyEntries)
{
    std::string text;
    for (int i = 0; i < 10000; ++i)
        text += "$$$/Key/" + std::to_string(i) + "=a text with #{copy} and ^C\n";
    Dictionary dictionary;
    const std::size_t before = allocations;
    dictionary.LoadFromMemory(text.data(), text.size());
    EXPECT_EQ(dictionary.EntryCount(), 10000u);
    EXPECT_LT(allocations - before, 200u);
}

TEST(Allocations, MemoryPerEntry)
{
    for (const std::size_t valueLength : {0u, 24u, 200u}) {
        for (const std::size_t count : {1000u, 3000u, 10000u, 16000u, 30000u, 100000u}) {
            SCOPED_TRACE(testing::Message() << count << " values of " << valueLength);
            const std::u16string value(valueLength, u'v');
            std::size_t keyAndValueBytes = 0;
            const std::size_t before = liveBytes;
            const auto dictionary = std::make_unique<Dictionary>();
            const std::size_t emptyBytes = liveBytes - before;
            for (std::size_t i = 0; i < count; ++i) {
                const std::string key = "/Menu/Item/" + std::to_string(i);
                const std::u16string line = std::u16string(key.begin(), key.end()) + u'=' + value;
                dictionary->ParseLine(line.c_str());
                keyAndValueBytes += key.size() + value.size() * sizeof(char16_t);
            }
            const std::size_t taken = liveBytes - before - emptyBytes - keyAndValueBytes;
            EXPECT_LE(taken, 128 * count)
                << static_cast<double>(taken) / static_cast<double>(count);
        }
    }
}

// A binary store, filled line by line and from an image.
TEST(Allocations, MemoryPerEntryOfABinaryStore)
{
    for (const std::size_t valueLength : {0u, 25u, 201u}) {
        for (const std::size_t count : {1000u, 3000u, 16000u, 30000u}) {
            SCOPED_TRACE(testing::Message() << count << " values of " << valueLength);
            std::size_t keyAndValueBytes = 0;
            std::size_t before = liveBytes;
            const auto inserted = std::make_unique<Dictionary>(Dictionary::Format::kBinary);
            const std::size_t emptyBytes = liveBytes - before;
            for (std::size_t i = 0; i < count; ++i) {
                const std::string key = "/Menu/Item/" + std::to_string(i);
                std::u16string line = std::u16string(key.begin(), key.end()) + u'=';
                line.append(valueLength, static_cast<char16_t>(u'A' + i % 26));
                line += std::u16string(key.begin(), key.end());  // no two values are equal
                inserted->ParseLine(line.c_str());
                keyAndValueBytes += key.size() + 2 * (valueLength + key.size());
            }
            std::size_t taken = liveBytes - before - emptyBytes - keyAndValueBytes;
            // The ends of the arena's blocks are left over too.
            EXPECT_LE(taken, 40 * count + keyAndValueBytes / 16)
                << "inserted: " << static_cast<double>(taken) / static_cast<double>(count);

            std::ostringstream image;
            inserted->Serialize(image, 0, false, morvish_private::ByteOrder::kLittle);
            const std::string bytes = image.str();
            before = liveBytes;
            const auto loaded = std::make_unique<Dictionary>();
            loaded->LoadFromMemory(bytes.data(), bytes.size());
            ASSERT_EQ(loaded->EntryCount(), count);
            taken = liveBytes - before - emptyBytes - keyAndValueBytes;
            EXPECT_LE(taken, 40 * count)
                << "loaded: " << static_cast<double>(taken) / static_cast<double>(count);
        }
    }
}

TEST(Allocations, AnImageTakesAFewForManyEntries)
{
    Dictionary text;
    for (int i = 0; i < 10000; ++i) {
        const std::string line = "/Menu/Item/" + std::to_string(i) + "=text";
        text.ParseLine(std::u16string(line.begin(), line.end()).c_str());
    }
    std::ostringstream image;
    text.Serialize(image, 0, false, morvish_private::ByteOrder::kBig);
    const std::string bytes = image.str();
    const std::size_t before = allocations;
    Dictionary loaded;
    loaded.LoadFromMemory(bytes.data(), bytes.size());
    EXPECT_EQ(loaded.EntryCount(), 10000u);
    EXPECT_LT(allocations - before, 30u);
}

}  // namespace
}  // namespace morvish
