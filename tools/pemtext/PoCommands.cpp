#include "dictionary/Utf8.h"
#include "tools/pemtext/Catalog.h"
#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/PoFile.h"
#include "tools/pemtext/TextForm.h"

#include <map>
#include <optional>
#include <string>

namespace pemtext {

namespace {

std::string ToUtf8(const Catalog& catalog, const CatalogEntry& entry)
{
    std::string text;
    if (!morvish_private::ConvertUtf16(entry.value, text) ||
        text.find('\0') != std::string_view::npos)
        throw Failure(catalog.File() + ":" + std::to_string(entry.line) +
                      ": a PO file cannot hold a NUL or half a character");
    return text;
}

// A msgctxt is text: the bytes of the key as the characters of their numbers.
std::string ToContext(const Catalog& catalog, const CatalogEntry& entry)
{
    std::string context = "$$$";
    for (const char byte : entry.key) {
        if (byte == '\0')
            throw Failure(catalog.File() + ":" + std::to_string(entry.line) +
                          ": a PO file cannot hold a key with a NUL");
        AppendUtf8(static_cast<unsigned char>(byte), context);
    }
    return context;
}

}  // namespace

int RunToPo(const Arguments& arguments)
{
    const std::string output = arguments.Required("-o");
    const Catalog base(arguments.Files()[0]);
    std::optional<Catalog> translation;
    if (arguments.Files().size() == 2)
        translation.emplace(arguments.Files()[1]);

    std::vector<PoMessage> messages;
    for (const CatalogEntry& entry : base.Entries()) {
        PoMessage message = {ToContext(base, entry), ToUtf8(base, entry), {}};
        const CatalogEntry* const translated = translation ? translation->Find(entry.key) : nullptr;
        if (translated != nullptr && !IsUntranslated(*translated))
            message.translation = ToUtf8(*translation, *translated);
        messages.push_back(std::move(message));
    }
    const std::string bytes = FormatPo(messages, arguments.Value("--language").value_or(""));
    WriteOutput(output, [&](std::ostream& out) { out << bytes; });
    return kDone;
}

int RunFromPo(const Arguments& arguments)
{
    const std::string output = arguments.Required("-o");
    const std::string& file = arguments.Files().front();
    std::map<std::string, std::u16string> entries;
    for (const PoMessage& message : ReadPo(file)) {
        std::u16string context;
        std::u16string value;
        if (!morvish_private::ConvertUtf8(message.key, context) ||
            !morvish_private::ConvertUtf8(message.translation, value))
            throw Failure(file + ": the message " + message.key + " is not well-formed UTF-8");
        if (context.starts_with(u"$$$"))
            context.erase(0, 3);
        std::string key;
        for (const char16_t unit : context) {
            if (unit > 0xFF)
                throw Failure(file + ": the msgctxt " + message.key + " is no key");
            key += static_cast<char>(unit);
        }
        entries[key] = value;
    }
    WriteOutput(output, [&](std::ostream& out) {
        for (const auto& [key, value] : entries)
            out << TextLine(key, value);
    });
    return kDone;
}

}  // namespace pemtext
