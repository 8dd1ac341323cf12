// What the dictionary tests share: blocks without a spare byte, the encodings of a sample, and a
// dictionary's content as one comparable value.

#pragma once

#include "dictionary/Dictionary.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace dictionary_test {

/// A copy on the heap of exactly the size of `bytes`, so that a sanitizer sees every byte read past
/// it.
class ExactBlock {
public:
    explicit ExactBlock(std::string_view bytes)
        : bytes_(std::make_unique_for_overwrite<char[]>(bytes.size())), size_(bytes.size())
    {
        std::copy(bytes.begin(), bytes.end(), bytes_.get());
    }

    const char* Start() const { return bytes_.get(); }
    const char* End() const { return bytes_.get() + size_; }
    std::size_t Size() const { return size_; }

private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_;
};

/// The same for units.
class ExactUnits {
public:
    explicit ExactUnits(std::u16string_view units)
        : units_(std::make_unique_for_overwrite<char16_t[]>(units.size())), size_(units.size())
    {
        std::copy(units.begin(), units.end(), units_.get());
    }

    const char16_t* Start() const { return units_.get(); }
    std::size_t Size() const { return size_; }

private:
    std::unique_ptr<char16_t[]> units_;
    std::size_t size_;
};

inline std::string LittleEndian(std::u16string_view text)
{
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

inline std::string BigEndian(std::u16string_view text)
{
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit >> 8);
        bytes += static_cast<char>(unit & 0xFF);
    }
    return bytes;
}

using Entries = std::map<std::string, std::u16string>;

/// All entries of the store in force.
inline Entries EntriesOf(const morvish::Dictionary& dictionary)
{
    class Collector : public morvish::Dictionary::EntryVisitor {
    public:
        void Visit(std::string_view key, std::u16string_view value) override
        {
            entries.emplace(key, value);
        }
        Entries entries;
    };
    Collector collector;
    dictionary.VisitEntries(collector);
    return collector.entries;
}

/// The text that a full lookup gives.
inline std::u16string Text(const morvish::Dictionary& dictionary, const char* key,
                           const morvish::ConversionContext* context = nullptr)
{
    return std::u16string(dictionary.Lookup(key, context).View());
}

/// Loads a text from a block of exactly its size.
inline void LoadText(morvish::Dictionary& dictionary, std::string_view text)
{
    const ExactBlock block(text);
    dictionary.LoadFromMemory(block.Start(), block.Size());
}

}  // namespace dictionary_test
