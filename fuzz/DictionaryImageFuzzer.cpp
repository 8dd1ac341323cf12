// Loads the input, behind a magic, as a binary dictionary from memory and from both kinds of
// stream, which must agree; then asks it for every key and number that it has, and writes it, which
// must give the same dictionary again.

#include "dictionary/Dictionary.h"
#include "dictionary/InputStreams.h"
#include "fuzz/DictionaryContent.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using kivfuzz::Content;
using kivfuzz::ContentOf;
using kivfuzz::Require;
using morvish::Dictionary;
using morvish_private::ByteOrder;

void CheckNumbers(const Dictionary& dictionary)
{
    for (std::uint32_t i = 0; i < dictionary.EntryCount(); ++i) {
        const char16_t* units = nullptr;
        std::size_t length = 0;
        Require(dictionary.RawLookupIndex(i, units, length));
        Require(std::u16string_view(units, length) == dictionary.LookupIndex(i).View());
    }
}

std::string Written(const Dictionary& dictionary, ByteOrder order)
{
    std::ostringstream out;
    const std::uint64_t bytes = dictionary.Serialize(out, 0, dictionary.StoreFlag() != 0, order);
    Require(bytes == out.str().size());
    return out.str();
}

void CheckWriting(const Dictionary& dictionary, const Content& content)
{
    for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
        const std::string bytes = Written(dictionary, order);
        Dictionary read;
        read.LoadFromMemory(bytes.data(), bytes.size());
        Require(read.Valid() && ContentOf(read) == content);
        Require(Written(read, order) == bytes);
    }
}

// The two sources treat differently what ends behind the length of its header text; a block of at
// most 24 bytes is no image.
bool SourcesMayDiffer(std::string_view bytes)
{
    const bool hasByteOrder = bytes.size() > 22 && bytes[21] >= 2 && bytes[22] >= 1;
    return bytes.size() <= 24 || bytes.size() == (hasByteOrder ? 29u : 28u);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string bytes(morvish::kImageMagic);
    bytes.append(reinterpret_cast<const char*>(data), size);
    // A block without a spare byte.
    const std::vector<char> block(bytes.begin(), bytes.end());

    Dictionary memory;
    memory.LoadFromMemory(block.data(), block.size());
    const Content content = ContentOf(memory);
    Require(memory.BinaryStoreBytes() < 8 * size + 16384);
    kivfuzz::CheckLookups(memory, content);
    CheckNumbers(memory);

    Dictionary own;
    morvish::basic_irstream<char> ownStream(block.data(), block.size());
    own.LoadFromStream(&ownStream);
    Dictionary foreign;
    std::istringstream foreignStream(bytes);
    foreign.LoadFromStream(&foreignStream);
    Require(ContentOf(own) == ContentOf(foreign));
    Require(own.Valid() == foreign.Valid());
    if (!SourcesMayDiffer(bytes)) {
        Require(ContentOf(own) == content);
        Require(own.Valid() == memory.Valid());
        Require(std::string_view(own.HeaderText() != nullptr ? own.HeaderText() : "-") ==
                (memory.HeaderText() != nullptr ? memory.HeaderText() : "-"));
    }

    CheckWriting(memory, content);
    // Once more over what is there: every key is replaced, a plain image is added.
    memory.LoadFromMemory(block.data(), block.size());
    Require(ContentOf(memory).keyed == content.keyed);
    memory.ParseLine(u"$$$/A=line");
    try {
        Written(memory, ByteOrder::kLittle);
    } catch (const std::length_error&) {
        Require(!ContentOf(memory).bare.empty());
    }
    return 0;
}
