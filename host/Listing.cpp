#include "host/Listing.h"

#include "include/kivmetadataapi.h"

#include <array>
#include <memory>

#include <kivxmp/kivxmp_file.h>

namespace kivhost {

namespace {

constexpr std::array kFormNames = {"simple", "uri", "struct", "bag", "seq", "alt", "raw"};
constexpr std::array kSourceNames = {"packet", "exif", "iim", "sidecar", "embedded"};

bool HoldsValue(KivXmpForm form)
{
    return form == kKivXmpSimple || form == kKivXmpUri || form == kKivXmpRaw;
}

struct Dump {
    std::ostream& out;
    std::string head;                        // of each line
    const __XMPMeta__* derivedOf = nullptr;  // null while the packet is dumped
    std::string tail = R"(,"source":"packet"})";
};

struct TextDeleter {
    void operator()(char* text) const { KivXmpFree(text); }
};

/// The end of the lines of the derived property at `path`.
std::string DerivedTail(const __XMPMeta__& meta, const char* path)
{
    KivXmpSource source = kKivXmpFromPacket;
    char* text = nullptr;
    KivXmpGetSource(&meta, path, &source, &text);
    const std::unique_ptr<char, TextDeleter> detail(text);
    return std::string(R"(,"source":")") + kSourceNames.at(source) + R"(","detail":)" +
           JsonString(text != nullptr ? text : "") + "}";
}

int DumpNode(void* context, const KivXmpNode* node)
{
    auto& dump = *static_cast<Dump*>(context);
    if (dump.derivedOf != nullptr && node->depth == 0) {
        dump.tail = DerivedTail(*dump.derivedOf, node->path);
    }
    std::ostream& out = dump.out;
    out << dump.head << R"("path":)" << JsonString(node->path) << R"(,"form":")"
        << kFormNames.at(node->form) << R"(","value":)";
    if (HoldsValue(node->form)) {
        out << JsonString({node->value, node->valueLength});
    } else {
        out << "null";
    }
    out << dump.tail << '\n';
    return 0;
}

void AppendUtf8(std::uint32_t code, std::string& text)
{
    const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | (code >> 6));
        append(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        append(0xE0 | (code >> 12));
        append(0x80 | ((code >> 6) & 0x3F));
        append(0x80 | (code & 0x3F));
    } else {
        append(0xF0 | (code >> 18));
        append(0x80 | ((code >> 12) & 0x3F));
        append(0x80 | ((code >> 6) & 0x3F));
        append(0x80 | (code & 0x3F));
    }
}

}  // namespace

std::string ToUtf8(const std::uint16_t* units)
{
    constexpr std::uint32_t kReplacement = 0xFFFD;
    std::string text;
    while (*units != 0) {
        std::uint32_t code = *units++;
        if (code >= 0xD800 && code < 0xDC00 && *units >= 0xDC00 && *units < 0xE000) {
            code = 0x10000 + ((code - 0xD800) << 10) + (*units++ - 0xDC00U);
        } else if (code >= 0xD800 && code < 0xE000) {
            code = kReplacement;
        }
        AppendUtf8(code, text);
    }
    return text;
}

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

void DumpTree(const __XMPMeta__& meta, std::string_view file, std::ostream& out)
{
    Dump dump = {out, file.empty() ? "{" : R"({"file":)" + JsonString(file) + ","};
    KivXmpWalk(&meta, &DumpNode, &dump);
    __XMPMeta__* derived = nullptr;
    if (KivXmpGetDerived(&meta, &derived) == kKivXmpOk) {
        dump.derivedOf = &meta;
        KivXmpWalk(derived, &DumpNode, &dump);
        KivXmpRelease(derived);
    }
}

void ListDefinitions(std::ostream& out)
{
    const auto* record = static_cast<const KIVMetadataRecord*>(GetGlobalKIVMetadataVector());
    for (std::size_t i = 0; i < GetGlobalKIVMetadataVectorSize(); ++i, ++record) {
        out << R"({"view":)" << JsonString(record->viewText) << R"(,"namespace":)"
            << JsonString(record->itemText) << R"(,"name":)" << JsonString(record->itemKeyText)
            << R"(,"label":)" << JsonString(ToUtf8(record->label)) << R"(,"editable":)"
            << (record->propertyFlag != 0 ? "true" : "false") << "}\n";
    }
}

}  // namespace kivhost
