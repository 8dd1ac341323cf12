// Loads the input as a dictionary from memory and from both kinds of stream, which must agree, and
// asks it for every key it has and for the input itself.

#include "dictionary/Dictionary.h"
#include "dictionary/InputStreams.h"
#include "dictionary/ValuePasses.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using morvish::Dictionary;
using Entries = std::map<std::string, std::u16string>;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

class Collector : public Dictionary::EntryVisitor {
public:
    void Visit(std::string_view key, std::u16string_view value) override
    {
        Require(entries.emplace(key, value).second);
    }
    Entries entries;
};

Entries EntriesOf(const Dictionary& dictionary)
{
    Collector collector;
    dictionary.VisitEntries(collector);
    Require(collector.entries.size() == dictionary.EntryCount());
    return collector.entries;
}

// A look-up of what is there finds it, as far as a key can be written as one.
void CheckLookups(const Dictionary& dictionary, const Entries& entries)
{
    for (const auto& [key, value] : entries) {
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);

    Dictionary memory;
    memory.LoadFromMemory(data, size);
    const Entries entries = EntriesOf(memory);
    CheckLookups(memory, entries);

    Dictionary own;
    morvish::basic_irstream<char> ownStream(data, size);
    own.LoadFromStream(&ownStream);
    Dictionary foreign(Dictionary::Format::kBinary);
    std::istringstream foreignStream(bytes);
    foreign.LoadFromStream(&foreignStream);
    Require(EntriesOf(own) == EntriesOf(foreign));
    Require(own.Valid() == foreign.Valid());
    CheckLookups(foreign, EntriesOf(foreign));

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
