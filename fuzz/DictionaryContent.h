// What a dictionary holds, and that its look-ups find it.

#pragma once

#include "dictionary/Dictionary.h"

#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kivfuzz {

inline void Require(bool holds)
{
    if (!holds)
        std::abort();
}

struct Content {
    std::map<std::string, std::u16string> keyed;
    std::vector<std::u16string> bare;
    bool operator==(const Content&) const = default;
};

inline Content ContentOf(const morvish::Dictionary& dictionary)
{
    class Collector : public morvish::Dictionary::EntryVisitor {
    public:
        void Visit(std::string_view key, std::u16string_view value) override
        {
            Require(content.keyed.emplace(key, value).second);
        }
        void VisitBare(std::uint32_t /*index*/, std::u16string_view value) override
        {
            content.bare.emplace_back(value);
        }
        Content content;
    };
    Collector collector;
    dictionary.VisitEntries(collector);
    Require(collector.content.keyed.size() + collector.content.bare.size() ==
            dictionary.EntryCount());
    return collector.content;
}

// What is there is found, as far as a key can be written as one.
inline void CheckLookups(const morvish::Dictionary& dictionary, const Content& content)
{
    for (const auto& [key, value] : content.keyed) {
        if (key.find_first_of(std::string_view("=\0", 2)) != std::string::npos)
            continue;
        const std::string text = "$$$" + key + "=default";
        const char16_t* units = nullptr;
        std::size_t length = 0;
        Require(dictionary.RawLookup(text.c_str(), units, length));
        Require(std::u16string_view(units, length) == value);
        Require(dictionary.Lookup(text.c_str()).View() == value);
    }
}

}  // namespace kivfuzz
