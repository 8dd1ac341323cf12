#include "host/Listing.h"

#include "include/kivmetadataapi.h"

#include <kivcore/StringConversion.h>

#include <array>

namespace kivhost {

namespace {

constexpr std::array kFormNames = {"simple", "uri", "struct", "bag", "seq", "alt", "raw"};

bool HoldsValue(KivXmpForm form)
{
    return form == kKivXmpSimple || form == kKivXmpUri || form == kKivXmpRaw;
}

int DumpNode(void* context, const KivXmpNode* node)
{
    auto& out = *static_cast<std::ostream*>(context);
    out << R"({"path":)" << JsonString(node->path) << R"(,"form":")" << kFormNames.at(node->form)
        << R"(","value":)";
    if (HoldsValue(node->form)) {
        out << JsonString({node->value, node->valueLength});
    } else {
        out << "null";
    }
    out << "}\n";
    return 0;
}

}  // namespace

std::string JsonString(std::string_view text)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string json = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        switch (c) {
            case '"':
            case '\\':
                json += '\\';
                json += c;
                break;
            case '\n':
                json += "\\n";
                break;
            case '\r':
                json += "\\r";
                break;
            case '\t':
                json += "\\t";
                break;
            default:
                if (byte < 0x20) {
                    json += "\\u00";
                    json += kDigits[byte >> 4];
                    json += kDigits[byte & 15];
                } else {
                    json += c;
                }
        }
    }
    return json + "\"";
}

void DumpTree(const __XMPMeta__& meta, std::ostream& out)
{
    KivXmpWalk(&meta, &DumpNode, &out);
}

void ListDefinitions(std::ostream& out)
{
    const auto* record = static_cast<const KIVMetadataRecord*>(GetGlobalKIVMetadataVector());
    for (std::size_t i = 0; i < GetGlobalKIVMetadataVectorSize(); ++i, ++record) {
        const std::u16string_view label(reinterpret_cast<const char16_t*>(record->label));
        out << R"({"view":)" << JsonString(record->viewText) << R"(,"namespace":)"
            << JsonString(record->itemText) << R"(,"name":)" << JsonString(record->itemKeyText)
            << R"(,"label":)" << JsonString(kivcore::string::UTF16to8(label)) << R"(,"editable":)"
            << (record->propertyFlag != 0 ? "true" : "false") << "}\n";
    }
}

}  // namespace kivhost
