// The dialog's texts: keys resolved in the application's language, with values put in, and small
// helpers over UTF-16 text.

#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include <kivcore/UString.h>

namespace kivmetadataui {

/// The text of a "$$$/" key with "^0" to "^9" replaced by `values`. A value is not searched for
/// further "^n".
kivcore::UString DialogText(std::string_view key,
                            std::initializer_list<kivcore::UStringView> values = {});

/// UTF-8 in and out.
kivcore::UString Widen(std::string_view text);
std::string Narrow(kivcore::UStringView text);

kivcore::UString NumberText(std::size_t number);

/// Without white space at both ends.
kivcore::UStringView Trimmed(kivcore::UStringView text);

/// For comparing without regard to case: Latin, Greek and Cyrillic letters become small ones.
kivcore::UString FoldCase(kivcore::UStringView text);

/// The words of `text`, split at white space.
std::vector<kivcore::UString> Words(kivcore::UStringView text);

/// ASCII letters only.
bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept;

}  // namespace kivmetadataui
