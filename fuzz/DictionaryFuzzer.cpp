// Loads the input as a dictionary from memory and from both kinds of stream, which must agree, and
// asks it for every key it has and for the input itself.

#include "dictionary/Dictionary.h"
#include "dictionary/InputStreams.h"
#include "dictionary/Utf8.h"
#include "dictionary/ValuePasses.h"
#include "fuzz/DictionaryContent.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using kivfuzz::CheckLookups;
using kivfuzz::ContentOf;
using kivfuzz::Require;
using morvish::Dictionary;

// The same lines in every encoding: what UTF-8 gives, both orders of UTF-16 give too.
void CheckEncodings(const std::string& bytes)
{
    std::u16string text;
    if (!morvish_private::ConvertUtf8(bytes, text) ||
        text.find_first_of(std::u16string_view(u"\0\r\u2028\u2029\uFEFF", 5)) != text.npos)
        return;  // these end a line or a file in one encoding only
    std::string little = "\xFF\xFE";
    std::string big = "\xFE\xFF";
    for (const char16_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        little += {low, high};
        big += {high, low};
    }
    Dictionary dictionaries[3];
    dictionaries[0].LoadFromMemory((bytes + "\n\n").data(), bytes.size() + 2);
    dictionaries[1].LoadFromMemory(little.data(), little.size());
    dictionaries[2].LoadFromMemory(big.data(), big.size());
    for (const Dictionary& other : dictionaries) {
        Require(ContentOf(other) == ContentOf(dictionaries[0]));
        Require(other.Valid() == dictionaries[0].Valid());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);

    Dictionary memory;
    memory.LoadFromMemory(data, size);
    CheckLookups(memory, ContentOf(memory));
    if (!bytes.starts_with(morvish::kImageMagic))
        CheckEncodings(bytes);

    Dictionary own;
    morvish::basic_irstream<char> ownStream(data, size);
    own.LoadFromStream(&ownStream);
    Dictionary foreign(Dictionary::Format::kBinary);
    std::istringstream foreignStream(bytes);
    foreign.LoadFromStream(&foreignStream);
    Require(ContentOf(own) == ContentOf(foreign));
    Require(own.Valid() == foreign.Valid());
    CheckLookups(foreign, ContentOf(foreign));

    // The input as a key with a default, in every encoding.
    const std::string key = "$$$/Key/That/Is/Hardly/There=" + bytes;
    for (const std::uint32_t selector : {0u, 1u, 2u}) {
        const morvish::ConversionContext context{selector};
        memory.Lookup(key.c_str(), &context);
        memory.Lookup(bytes.c_str(), &context);
    }

    std::u16string value(size / 2, u'\0');
    for (std::size_t i = 0; i < value.size(); ++i)
        value[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
    Require(morvish_private::EscapeValue(value.data(), value.size()).size() <= value.size());
    Require(morvish_private::SubstituteMarkers(value.data(), value.size()).size() <= value.size());
    return 0;
}
