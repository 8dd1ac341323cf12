#include "framework/kivmetadata/src/Translations.h"

#include "framework/kivmetadata/src/DefinitionFile.h"
#include "framework/kivmetadata/src/Tracing.h"

#include <kivcore/Locale.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringConversion.h>

namespace kivmetadata {

using kivcore::UString;

UString LocalizerTexts::Text(const Element& element, const std::string& name) const
{
    const std::string_view key = element.Get(name);
    return key.empty() ? UString() : kivcore::config::Localize(key);
}

FolderTexts::FolderTexts(const kivcore::filesupport::Dir& folder)
{
    const UString& language = kivcore::Locale::ApplicationLanguage();
    for (const UString& name : kivcore::Locale::FallbackChain(language)) {
        const kivcore::filesupport::File file(folder, name + u".xml");
        ReadDefinitionFile(file, [this](std::string_view text, const std::string& sourceName) {
            texts_.push_back(ReadTranslations(text, sourceName));
        });
    }
}

UString FolderTexts::Text(const Element& element, const std::string& name) const
{
    const std::string_view identifier = element.Get(name + "-id");
    if (!identifier.empty()) {
        for (const auto& texts : texts_) {
            // An empty text is one that nobody has translated yet.
            const auto found = texts.find(identifier);
            if (found != texts.end() && !found->second.empty()) {
                return kivcore::string::UTF8to16(found->second);
            }
        }
    }
    return kivcore::string::UTF8to16(element.Get(name));
}

std::map<std::string, std::string, std::less<>> ReadTranslations(std::string_view text,
                                                                 const std::string& sourceName)
{
    const ElementReader reader(sourceName);
    const Element root = reader.Parse(text, "texts");
    reader.Expect(root, {}, {"text"});
    std::map<std::string, std::string, std::less<>> texts;
    for (const Element& child : root.children) {
        reader.ExpectText(child, {"id"});
        if (!texts.emplace(reader.Required(child, "id"), child.TrimmedText()).second) {
            reader.Fail(child, "'" + std::string(child.Get("id")) + "' is there already");
        }
    }
    return texts;
}

}  // namespace kivmetadata
