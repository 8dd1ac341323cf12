// Typed values as XMP writes them. Which type a property has is known from its schema definition;
// a packet holds texts. What does not read as the type stays a text.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <kivxmp/Export.h>

namespace kivxmp {

/// A date with the precision it was written in:
/// YYYY, YYYY-MM, YYYY-MM-DD, or with Thh:mm, Thh:mm:ss or Thh:mm:ss.s and a zone or none.
struct Date {
    int year = 0;               ///< 0 to 9999
    std::optional<int> month;   ///< 1 to 12
    std::optional<int> day;     ///< needs a month
    std::optional<int> hour;    ///< needs a day; 0 to 23
    std::optional<int> minute;  ///< there with the hour
    std::optional<int> second;  ///< 0 to 59
    std::string fraction;       ///< digits behind the point, as written; needs a second
    enum class Zone { kNone, kUtc, kOffset };
    Zone zone = Zone::kNone;    ///< kUtc is written "Z", kOffset "+hh:mm" or "-hh:mm"
    int offsetMinutes = 0;      ///< east of Greenwich; -1439 to 1439
    bool negativeZero = false;  ///< the offset was written "-00:00"
    bool operator==(const Date&) const = default;
};

struct Rational {
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;  ///< 0 is kept: cameras write "0/0" for "unknown"
    bool operator==(const Rational&) const = default;
};

/// Each takes the whole text, white space included, and gives nothing for what is not of its type.
/// A day that its month does not have (2023-02-31) is no date.
KIVXMP_API std::optional<Date> ParseDate(std::string_view text);
KIVXMP_API std::optional<std::int64_t> ParseInteger(std::string_view text);
/// Digits with an optional sign and point; no exponent.
KIVXMP_API std::optional<double> ParseReal(std::string_view text);
/// "numerator/denominator".
KIVXMP_API std::optional<Rational> ParseRational(std::string_view text);
/// "True" and "False" in any letter case.
KIVXMP_API std::optional<bool> ParseBoolean(std::string_view text);

/// True if the fields are in their ranges and those in front of a given one are given.
KIVXMP_API bool IsValid(const Date& date) noexcept;
/// Requires IsValid; gives an empty text otherwise.
KIVXMP_API std::string FormatDate(const Date& date);
KIVXMP_API std::string FormatInteger(std::int64_t value);
/// The shortest digits that read back as `value`, without exponent; empty for what is not finite.
KIVXMP_API std::string FormatReal(double value);
KIVXMP_API std::string FormatRational(const Rational& value);
KIVXMP_API std::string FormatBoolean(bool value);

}  // namespace kivxmp
