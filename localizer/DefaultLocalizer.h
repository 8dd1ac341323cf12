// The localizer that the library installs where the host has none: it answers from dictionary
// files, and where they lack a key from the default text in the key itself.

#pragma once

#include <kivcore/Localizer.h>
#include <kivcore/UString.h>

#include <memory>
#include <string>

namespace morvish {
class Dictionary;
}

namespace kivmetadataapi {

/// All calls come from the user-interface thread. Nothing is thrown but by the constructor.
class DefaultLocalizer : public kivcore::config::Localizer {
public:
    DefaultLocalizer();

    /// Takes itself out of the framework if it is the registered localizer.
    ~DefaultLocalizer() override;

    /// The text for `key`: "$$$/Path/Name=default", in UTF-8, possibly as a whole in parentheses.
    /// The dictionaries are asked for the key as it is, then for the key without parentheses with
    /// its default. With no dictionary loaded the default is the answer. A key that leads nowhere,
    /// and any other text, comes back as it is; broken UTF-8 shows as U+FFFD.
    kivcore::UString Localize(const std::string& key) override;

    /// Adds a dictionary file to what is loaded. One that cannot be opened is skipped.
    void LoadDictionary(const kivcore::UString& path) override;

private:
    kivcore::UString Translate(const std::string& key) const;

    std::unique_ptr<morvish::Dictionary> dictionary_;  // never null, never replaced
};

}  // namespace kivmetadataapi
