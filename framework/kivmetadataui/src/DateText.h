// Dates as the user reads and writes them: "2024-05-17 14:30:05.25 +02:00", as precise as they are
// known. The order is year, month, day in every language, so that nothing is ambiguous.

#pragma once

#include <kivcore/UString.h>
#include <kivxmp/XMPValue.h>

namespace kivmetadataui {

/// Requires a valid date.
kivcore::UString ShowDate(const kivxmp::Date& date);

/// Reads what ShowDate writes, and what people write for it: "/" or "." between year, month and
/// day, one digit for two, "T" before the time, "Z", "UTC" or "GMT", "+2" or "+0200" as the zone.
///
/// @param date   written on success only
/// @param error  written on failure only: what is wrong, in words
/// @return false if `text` is no date
bool ReadDate(kivcore::UStringView text, kivxmp::Date& date, kivcore::UString& error);

}  // namespace kivmetadataui
