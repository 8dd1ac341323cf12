#include "framework/kivxmp/src/XmlName.h"

#include <memory>
#include <string>
#include <type_traits>

#include <expat.h>

namespace kivxmp {
namespace {

using ParserHandle = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

/// Which letters beyond ASCII are names depends on the edition of XML, so the parser is asked.
bool ParserTakes(std::string_view name)
{
    const ParserHandle parser(XML_ParserCreate("UTF-8"), &XML_ParserFree);
    const std::string document = "<" + std::string(name) + "/>";
    return parser != nullptr && XML_Parse(parser.get(), document.data(),
                                          static_cast<int>(document.size()), 1) == XML_STATUS_OK;
}

constexpr std::size_t kMaxNameBytes = 4096;

}  // namespace

bool IsXmlName(std::string_view text)
{
    if (text.empty() || text.size() > kMaxNameBytes) {
        return false;
    }
    bool isAscii = true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool isLetter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        const bool isLater = (c >= '0' && c <= '9') || c == '-' || c == '.';
        const bool isHigh = static_cast<unsigned char>(c) >= 0x80;
        if (!isLetter && !isHigh && (i == 0 || !isLater)) {
            return false;
        }
        isAscii = isAscii && !isHigh;
    }
    return isAscii || ParserTakes(text);
}

}  // namespace kivxmp
