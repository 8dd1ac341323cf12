// Numbers as the user reads and writes them: whole numbers, decimal numbers with point or comma,
// fractions.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "framework/kivmetadataui/src/Fields.h"

#include <kivcore/UString.h>

namespace kivmetadataui {

/// What a field shows for the packet's value: a fraction of 1 and above that ends within four
/// decimals is shown as a decimal number ("28/10" as "2.8"), everything else as it is.
kivcore::UString ShowNumber(std::string_view value, NumberKind kind);

/// What the packet gets for a typed text ("2,8" gives "14/5" as a fraction); none if it is no
/// number of that kind.
std::optional<std::string> ReadNumber(kivcore::UStringView text, NumberKind kind);

/// What is wrong with a typed text, in words; empty where nothing is.
kivcore::UString CheckNumber(kivcore::UStringView text, const NumberLimits& limits);

/// "2.8" and the like: at most `decimals` of them, without zeros at the end. Empty for what is not
/// finite.
std::string ShortDecimal(double value, int decimals);

}  // namespace kivmetadataui
