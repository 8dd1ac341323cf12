// Where the texts of definitions come from.

#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivmetadata/src/Element.h"

#include <kivcore/Dir.h>
#include <kivcore/UString.h>

namespace kivmetadata {

/// Gives the text of an attribute in the application's language.
class TextSource {
public:
    virtual ~TextSource() = default;
    /// The text for the attribute `name` of `element`; empty where it has none.
    virtual kivcore::UString Text(const Element& element, const std::string& name) const = 0;
};

/// Texts of built-in definitions: keys of the application's localizer.
class LocalizerTexts : public TextSource {
public:
    kivcore::UString Text(const Element& element, const std::string& name) const override;
};

/// Texts of one folder of custom definitions. An attribute `label` may have a `label-id` beside it,
/// whose text in "loc/xx_YY.xml" goes first where there is one: by the fallback of the
/// application's language. These texts never reach the localizer.
class FolderTexts : public TextSource {
public:
    /// Reads the files of `folder` that the application's language asks for. A broken one is left
    /// out and traced.
    explicit FolderTexts(const kivcore::filesupport::Dir& folder);

    kivcore::UString Text(const Element& element, const std::string& name) const override;

private:
    std::vector<std::map<std::string, std::string, std::less<>>> texts_;  // best language first
};

/// The texts of one translation file by identifier, without white space around them. Throws
/// kivcore::xml::ParseError.
std::map<std::string, std::string, std::less<>> ReadTranslations(std::string_view text,
                                                                 const std::string& sourceName);

}  // namespace kivmetadata
