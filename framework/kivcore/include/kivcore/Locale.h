// The application's language. Languages are named "xx_YY"; BCP 47 tags and POSIX locale names are
// understood ("de", "de-DE", "de_DE.UTF-8" are all "de_DE"); what is no language tag is "en_US".

#pragma once

#include <string_view>
#include <vector>

#include <kivcore/Dir.h>
#include <kivcore/Export.h>
#include <kivcore/UString.h>

namespace kivcore {

class KIVCORE_API Locale {
public:
    Locale() = delete;

    static bool IsInitialized() noexcept;
    /// Sets the application's language. A second call before Reset changes nothing. `dictionaryDir`
    /// is where a framework application keeps its dictionaries; empty for none.
    static void Initialize(const UString& language, const filesupport::Dir& dictionaryDir);
    /// Back to no language; the last config::Terminate calls it.
    static void Reset() noexcept;
    /// The language as "xx_YY"; "en_US" before Initialize.
    static const UString& ApplicationLanguage();
    /// The folder given to Initialize.
    static filesupport::Dir DictionaryDir();

    /// "xx_YY" for any spelling of a language tag; a bare language takes its likely region
    /// (Unicode CLDR, likelySubtags).
    static UString Normalize(UStringView tag);
    /// Where to look for texts of `language`, best first: "de_AT", "de_DE", "de", "en_US".
    static std::vector<UString> FallbackChain(UStringView language);
    /// True for a language written from right to left.
    static bool IsRightToLeft(UStringView language);
};

}  // namespace kivcore
