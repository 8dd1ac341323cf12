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

/// What stands for a character that cannot stand for itself; empty if it can.
std::string Reference(unsigned char character)
{
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\t':
        case '\n':
        case '\r':
            return "&#" + std::to_string(character) + ";";
        default:
            // XML has no spelling at all for the other ones.
            return character < 0x20 ? "\uFFFD" : std::string();
    }
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
    // U+FFFE and U+FFFF are the only other characters that XML does not have.
    constexpr std::string_view kNoCharacters[] = {"\xEF\xBF\xBE", "\xEF\xBF\xBF"};
    std::string wellFormed;
    if (!string::IsWellFormedUTF8(text)) {
        wellFormed = string::UTF16to8(string::UTF8to16(text));
        text = wellFormed;
    }
    std::string escaped;
    escaped.reserve(text.size());
    while (!text.empty()) {
        const std::string_view head = text.substr(0, 3);
        if (head == kNoCharacters[0] || head == kNoCharacters[1]) {
            escaped += "\uFFFD";
            text.remove_prefix(3);
            continue;
        }
        const std::string reference = Reference(static_cast<unsigned char>(text.front()));
        if (reference.empty()) {
            escaped += text.front();
        } else {
            escaped += reference;
        }
        text.remove_prefix(1);
    }
    return escaped;
}

}  // namespace kivcore::xml
