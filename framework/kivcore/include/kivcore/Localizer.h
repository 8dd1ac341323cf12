// Turns keys into texts of the user's language. A key is "$$$/Path/Name=default text", UTF-8.

#pragma once

#include <string>
#include <string_view>

#include <kivcore/Export.h>
#include <kivcore/UString.h>

namespace kivcore::filesupport {
class Dir;
}

namespace kivcore::config {

/// Base of all localizers. Virtual operations stand in a fixed order.
class KIVCORE_API Localizer {
public:
    Localizer() = default;
    Localizer(const Localizer&) = delete;
    Localizer& operator=(const Localizer&) = delete;

    /// Takes the object out if it is the registered one.
    virtual ~Localizer();
    /// The text for `key` (UTF-8).
    virtual UString Localize(const std::string& key) = 0;
    /// Adds the texts of the dictionary file at `path`; a missing file is no error.
    virtual void LoadDictionary(const UString& path) = 0;

    /// True while a localizer is registered.
    static bool Initialized() noexcept;
    /// The registered localizer; throws std::logic_error where there is none.
    static Localizer* Get();
    /// Registers `localizer` without owning it; null takes the registered one out. A directory,
    /// where given, has "kiv_<language>.dict" loaded from it.
    static void Set(Localizer* localizer, const filesupport::Dir* dictionaryDir);
};

/// The text for `key` from the registered localizer. Without one, the key's own default: what
/// follows the first "=" of a "$$$/" key, without the closing parenthesis of a key that is wrapped
/// as "($$$/Path/Name=default text)". Where there is none, and for any other text, the text itself.
KIVCORE_API UString Localize(std::string_view key);

}  // namespace kivcore::config
