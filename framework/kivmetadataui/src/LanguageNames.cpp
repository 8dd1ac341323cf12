#include "framework/kivmetadataui/src/LanguageNames.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;

namespace {

struct LanguageRow {
    std::string_view tag;
    std::u16string_view name;
};

constexpr LanguageRow kLanguages[] = {
    {"ar", u"العربية"},       {"bg", u"Български"},    {"ca", u"Català"},
    {"cs", u"Čeština"},       {"da", u"Dansk"},        {"de", u"Deutsch"},
    {"el", u"Ελληνικά"},      {"en", u"English"},      {"es", u"Español"},
    {"et", u"Eesti"},         {"eu", u"Euskara"},      {"fa", u"فارسی"},
    {"fi", u"Suomi"},         {"fr", u"Français"},     {"ga", u"Gaeilge"},
    {"gl", u"Galego"},        {"he", u"עברית"},        {"hi", u"हिन्दी"},
    {"hr", u"Hrvatski"},      {"hu", u"Magyar"},       {"id", u"Indonesia"},
    {"is", u"Íslenska"},      {"it", u"Italiano"},     {"ja", u"日本語"},
    {"ko", u"한국어"},        {"lt", u"Lietuvių"},     {"lv", u"Latviešu"},
    {"ms", u"Melayu"},        {"nb", u"Norsk bokmål"}, {"nl", u"Nederlands"},
    {"nn", u"Norsk nynorsk"}, {"no", u"Norsk"},        {"pl", u"Polski"},
    {"pt", u"Português"},     {"ro", u"Română"},       {"ru", u"Русский"},
    {"sk", u"Slovenčina"},    {"sl", u"Slovenščina"},  {"sr", u"Српски"},
    {"sv", u"Svenska"},       {"th", u"ไทย"},          {"tr", u"Türkçe"},
    {"uk", u"Українська"},    {"vi", u"Tiếng Việt"},   {"zh", u"中文"},
};

bool IsLetter(char unit) noexcept
{
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z');
}

char Lower(char unit) noexcept
{
    return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit + 0x20) : unit;
}

char Upper(char unit) noexcept
{
    return unit >= 'a' && unit <= 'z' ? static_cast<char>(unit - 0x20) : unit;
}

}  // namespace

bool IsLanguageTag(std::string_view tag) noexcept
{
    std::size_t length = 0;
    bool isFirst = true;
    for (const char unit : tag) {
        if (unit == '-') {
            if (length == 0) {
                return false;
            }
            length = 0;
            isFirst = false;
            continue;
        }
        const bool isDigit = unit >= '0' && unit <= '9';
        if (++length > 8 || !(IsLetter(unit) || (isDigit && !isFirst))) {
            return false;
        }
    }
    return length != 0;
}

std::string TidyLanguageTag(std::string_view tag)
{
    std::string result(tag);
    std::transform(result.begin(), result.end(), result.begin(), Lower);
    // A region has two letters and a script four; what follows a single letter is private.
    std::size_t start = result.find('-');
    if (start == 1) {
        return result;
    }
    while (start != std::string::npos) {
        const std::size_t end = std::min(result.find('-', start + 1), result.size());
        const std::size_t length = end - start - 1;
        if (length == 1) {
            break;
        }
        if (length == 2) {
            result[start + 1] = Upper(result[start + 1]);
            result[start + 2] = Upper(result[start + 2]);
        } else if (length == 4 && IsLetter(result[start + 1])) {
            result[start + 1] = Upper(result[start + 1]);
        }
        start = end == result.size() ? std::string::npos : end;
    }
    return result;
}

UString LanguageLabel(std::string_view tag)
{
    if (EqualsIgnoringCase(tag, kDefaultLanguage)) {
        return DialogText("$$$/Kiv/Dialog/Language/Default=Default");
    }
    const std::size_t baseLength = std::min(tag.find('-'), tag.size());
    const std::string_view base = tag.substr(0, baseLength);
    const auto* const row = std::find_if(
        std::begin(kLanguages), std::end(kLanguages),
        [base](const LanguageRow& each) { return EqualsIgnoringCase(each.tag, base); });
    if (row == std::end(kLanguages)) {
        return Widen(tag);
    }
    UString label(row->name);
    if (baseLength < tag.size()) {
        label += u" (";
        label += Widen(tag.substr(baseLength + 1));
        label += u")";
    }
    return label;
}

std::vector<std::string> CommonLanguages()
{
    std::vector<std::string> tags;
    for (const LanguageRow& row : kLanguages) {
        tags.emplace_back(row.tag);
    }
    return tags;
}

}  // namespace kivmetadataui
