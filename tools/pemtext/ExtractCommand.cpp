#include "dictionary/DictionaryLine.h"
#include "dictionary/Utf8.h"
#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/Literals.h"
#include "tools/pemtext/TextForm.h"

#include <map>
#include <string>

namespace pemtext {

namespace {

struct Default {
    std::string text;
    std::string place;  // FILE:LINE
};

// "$$$/Path=default", as a whole in parentheses or not.
bool IsKeyWithDefault(std::string_view& text)
{
    if (text.starts_with("($$$/") && text.ends_with(')'))
        text = text.substr(1, text.size() - 2);
    return text.starts_with("$$$/") && text.find('=') != std::string_view::npos;
}

void Collect(const std::string& file, std::map<std::string, Default>& defaults)
{
    const std::string content = ReadInput(file);
    const bool isXml = content.find_first_not_of(" \t\r\n\xEF\xBB\xBF") != std::string_view::npos &&
                       content[content.find_first_not_of(" \t\r\n\xEF\xBB\xBF")] == '<';
    for (const Literal& literal : isXml ? LiteralsOfXml(content) : LiteralsOfCode(content)) {
        std::string_view text = literal.text;
        if (!IsKeyWithDefault(text))
            continue;
        const std::string place = file + ":" + std::to_string(literal.line);
        const std::size_t equals = text.find('=');
        const std::string key(text.substr(3, equals - 3));
        const std::string value(text.substr(equals + 1));
        const auto [known, isNew] = defaults.try_emplace(key, Default{value, place});
        if (!isNew && known->second.text != value)
            throw Failure(place + ": \"" + key + "\" has another default than at " +
                          known->second.place);
    }
}

}  // namespace

int RunExtract(const Arguments& arguments)
{
    std::map<std::string, Default> defaults;
    for (const std::string& file : arguments.Files())
        Collect(file, defaults);
    WriteOutput(arguments.Value("-o").value_or("-"), [&](std::ostream& out) {
        for (const auto& [key, entry] : defaults) {
            std::u16string value;
            if (!morvish_private::ConvertUtf8(entry.text, value))
                throw Failure(entry.place + ": the default is not well-formed UTF-8");
            out << RawTextLine(key, value);
        }
    });
    return kDone;
}

}  // namespace pemtext
