// What the reader and the writer of property lists share: the names of the types, the limits, and
// the spelling of texts.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <kivcore/PropList.h>

namespace kivcore::proplist {

inline constexpr std::size_t kMaxFileBytes = std::size_t{16} * 1024 * 1024;
inline constexpr std::size_t kMaxNesting = 255;
inline constexpr std::string_view kRootName = "proplist";
inline constexpr std::string_view kVersion = "1";

/// Element names, by the value's place in PropValue::Variant.
inline constexpr std::string_view kTypeNames[] = {"bool", "int", "real", "text", "array", "list"};
static_assert(std::size(kTypeNames) == std::variant_size_v<PropValue::Variant>);

/// `text` as UTF-8 that XML can carry (its own special characters not yet escaped).
std::string SpellText(UStringView text);

/// Undoes SpellText; empty where a backslash begins no known sequence.
std::optional<UString> ReadText(std::string_view spelled);

}  // namespace kivcore::proplist
