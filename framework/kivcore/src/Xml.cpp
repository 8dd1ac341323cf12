#include <kivcore/Xml.h>

#include <algorithm>

#include <kivcore/StringConversion.h>

#include "framework/kivcore/src/ExpatParser.h"

namespace kivcore::xml {

namespace {

// Never destroyed: a host may leave without the last terminate.
std::unique_ptr<DocParserFactory>& Factory()
{
    static auto& factory = *new std::unique_ptr<DocParserFactory>();
    return factory;
}

struct EscapeRow {
    std::string_view character;
    std::string_view written;
};

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

constexpr EscapeRow kEscapeRows[] = {
    {"&", "&amp;"},
    {"<", "&lt;"},
    {">", "&gt;"},
    {"\"", "&quot;"},
    {"\t", "&#9;"},
    {"\n", "&#10;"},
    {"\r", "&#13;"},
    // U+FFFE and U+FFFF: XML has no spelling for them.
    {"\xEF\xBF\xBE", kReplacement},
    {"\xEF\xBF\xBF", kReplacement},
};

/// True for the first byte of what may have to be written in another way.
constexpr bool IsSpecial(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 || byte == '&' || byte == '<' || byte == '>' ||
           byte == '"' || byte == '\xEF';
}

/// The row for the character at the beginning of `text`; a row of its first byte where there is
/// none.
EscapeRow EscapeAt(std::string_view text)
{
    for (const EscapeRow& row : kEscapeRows) {
        if (text.starts_with(row.character)) {
            return row;
        }
    }
    // XML has no spelling for the other control characters either.
    const std::string_view first = text.substr(0, 1);
    return {first, static_cast<unsigned char>(first.front()) < 0x20 ? kReplacement : first};
}

}  // namespace

ParseError::~ParseError() = default;
DocHandler::~DocHandler() = default;
DocParser::~DocParser() = default;
DocParserFactory::~DocParserFactory() = default;

MSXMLParserFactory::MSXMLParserFactory() = default;
MSXMLParserFactory::~MSXMLParserFactory() = default;

std::unique_ptr<DocParser> MSXMLParserFactory::NewParser()
{
    return std::make_unique<ExpatParser>(Doctype::kAllowed);
}

const std::string* FindAttribute(const Attributes& attributes, std::string_view name)
{
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [name](const auto& pair) { return pair.first == name; });
    return found == attributes.end() ? nullptr : &found->second;
}

bool Initialized() noexcept
{
    return Factory() != nullptr;
}

void SetParserFactory(std::unique_ptr<DocParserFactory> factory)
{
    Factory() = std::move(factory);
}

void ResetParserFactory() noexcept
{
    Factory().reset();
}

std::unique_ptr<DocParser> NewParser()
{
    if (!Factory()) {
        throw std::logic_error("there is no XML parser factory");
    }
    return Factory()->NewParser();
}

std::string Escape(std::string_view text)
{
    std::string wellFormed;
    if (!string::IsWellFormedUTF8(text)) {
        wellFormed = string::UTF16to8(string::UTF8to16(text));
        text = wellFormed;
    }
    std::string escaped;
    escaped.reserve(text.size());
    for (;;) {
        const auto* const special = std::find_if(text.begin(), text.end(), IsSpecial);
        escaped.append(text.begin(), special);
        text.remove_prefix(static_cast<std::size_t>(special - text.begin()));
        if (text.empty()) {
            return escaped;
        }
        const EscapeRow row = EscapeAt(text);
        escaped += row.written;
        text.remove_prefix(row.character.size());
    }
}

}  // namespace kivcore::xml
