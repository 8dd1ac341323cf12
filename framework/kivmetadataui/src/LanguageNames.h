// Language tags of language alternatives and the names that buttons and menus show for them.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <kivcore/UString.h>

namespace kivmetadataui {

inline constexpr std::string_view kDefaultLanguage = "x-default";

/// True for "de", "pt-BR", "x-default": subtags of 1 to 8 letters or digits, letters first.
bool IsLanguageTag(std::string_view tag) noexcept;

/// The usual letter case: "de-CH", "zh-Hant". Requires a language tag.
std::string TidyLanguageTag(std::string_view tag);

/// The language's own name, with the rest of the tag behind it in parentheses: "Deutsch",
/// "Português (BR)"; the tag itself where the language is not known. "x-default" is "Default" in
/// the application's language.
kivcore::UString LanguageLabel(std::string_view tag);

/// Languages that menus offer, sorted by tag.
std::vector<std::string> CommonLanguages();

}  // namespace kivmetadataui
