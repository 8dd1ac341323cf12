#include "framework/kivmetadataui/src/NumberValue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>

#include "framework/kivmetadataui/src/Texts.h"

#include <kivxmp/XMPValue.h>

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;
using kivxmp::Rational;

namespace {

/// Digits around at most one point or comma, with an optional sign.
struct Decimal {
    bool isNegative = false;
    std::string whole;
    std::string fraction;
};

bool IsDigits(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char unit) { return unit >= '0' && unit <= '9'; });
}

std::optional<Decimal> ReadDecimal(std::string_view text)
{
    Decimal decimal;
    if (text.starts_with("\xE2\x88\x92")) {  // the typographic minus
        decimal.isNegative = true;
        text.remove_prefix(3);
    } else if (text.starts_with('-') || text.starts_with('+')) {
        decimal.isNegative = text.front() == '-';
        text.remove_prefix(1);
    }
    const std::size_t pointAt = std::min(text.find_first_of(".,"), text.size());
    decimal.whole = text.substr(0, pointAt);
    if (pointAt < text.size()) {
        decimal.fraction = text.substr(pointAt + 1);
    }
    const bool hasDigits = !decimal.whole.empty() || !decimal.fraction.empty();
    if (!hasDigits || !IsDigits(decimal.whole) || !IsDigits(decimal.fraction)) {
        return std::nullopt;
    }
    return decimal;
}

std::string PrintDecimal(const Decimal& decimal)
{
    std::string text = decimal.isNegative ? "-" : "";
    text += decimal.whole.empty() ? "0" : decimal.whole;
    if (!decimal.fraction.empty()) {
        text += '.';
        text += decimal.fraction;
    }
    return text;
}

std::optional<Rational> ToRational(const Decimal& decimal)
{
    std::string digits = decimal.whole + decimal.fraction;
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 1));
    constexpr std::size_t kMostDigits = 18;  // what 64 bits hold
    if (digits.size() > kMostDigits || decimal.fraction.size() > kMostDigits) {
        return std::nullopt;
    }
    Rational value;
    std::from_chars(digits.data(), digits.data() + digits.size(), value.numerator);
    for (std::size_t i = 0; i < decimal.fraction.size(); ++i) {
        value.denominator *= 10;
    }
    const std::int64_t common = std::gcd(value.numerator, value.denominator);
    value.numerator /= common;
    value.denominator /= common;
    if (decimal.isNegative) {
        value.numerator = -value.numerator;
    }
    return value;
}

std::optional<double> ToDouble(std::string_view value, NumberKind kind)
{
    if (kind == NumberKind::kRational) {
        const std::optional<Rational> rational = kivxmp::ParseRational(value);
        if (!rational || rational->denominator == 0) {
            return std::nullopt;
        }
        return static_cast<double>(rational->numerator) /
               static_cast<double>(rational->denominator);
    }
    return kivxmp::ParseReal(value);
}

}  // namespace

std::string ShortDecimal(double value, int decimals)
{
    char buffer[400];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value,
                                      std::chars_format::fixed, std::clamp(decimals, 0, 17));
    if (!std::isfinite(value) || result.ec != std::errc()) {
        return {};
    }
    std::string text(buffer, result.ptr);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.')) {
            text.pop_back();
        }
    }
    return text == "-0" ? "0" : text;
}

UString ShowNumber(std::string_view value, NumberKind kind)
{
    if (kind != NumberKind::kRational) {
        return Widen(value);
    }
    const std::optional<Rational> rational = kivxmp::ParseRational(value);
    constexpr std::int64_t kDecimals = 10'000;
    constexpr std::int64_t kMost = INT64_MAX / kDecimals;
    if (!rational || rational->denominator <= 0 || rational->numerator > kMost ||
        rational->numerator < -kMost ||
        rational->numerator * kDecimals % rational->denominator != 0) {
        return Widen(value);
    }
    const std::int64_t size = std::abs(rational->numerator);
    if (size < rational->denominator && size != 0) {
        return Widen(value);  // "1/250" says more than 0.004
    }
    return Widen(ShortDecimal(
        static_cast<double>(rational->numerator) / static_cast<double>(rational->denominator), 4));
}

std::optional<std::string> ReadNumber(UStringView text, NumberKind kind)
{
    const std::string narrow = Narrow(Trimmed(text));
    if (kind == NumberKind::kRational && narrow.find('/') != std::string::npos) {
        const std::optional<Rational> rational = kivxmp::ParseRational(narrow);
        if (!rational || rational->denominator == 0) {
            return std::nullopt;
        }
        return narrow;
    }
    const std::optional<Decimal> decimal = ReadDecimal(narrow);
    if (!decimal) {
        return std::nullopt;
    }
    switch (kind) {
        case NumberKind::kInteger: {
            const std::optional<std::int64_t> integer =
                kivxmp::ParseInteger(PrintDecimal(*decimal));
            return integer ? std::optional(kivxmp::FormatInteger(*integer)) : std::nullopt;
        }
        case NumberKind::kReal:
            return PrintDecimal(*decimal);
        case NumberKind::kRational:
            break;
    }
    const std::optional<Rational> rational = ToRational(*decimal);
    return rational ? std::optional(kivxmp::FormatRational(*rational)) : std::nullopt;
}

UString CheckNumber(UStringView text, const NumberLimits& limits)
{
    const std::optional<std::string> value = ReadNumber(text, limits.kind);
    if (!value) {
        switch (limits.kind) {
            case NumberKind::kInteger:
                return DialogText(
                    "$$$/Kiv/Dialog/Number/NotInteger=This is not a whole number. Write digits "
                    "only, like 3.");
            case NumberKind::kReal:
                return DialogText(
                    "$$$/Kiv/Dialog/Number/NotReal=This is not a number. Write it like 3 or 2.8.");
            case NumberKind::kRational:
                break;
        }
        return DialogText(
            "$$$/Kiv/Dialog/Number/NotRational=This is not a number. Write it like 2.8 or 1/250.");
    }
    const bool hasLimits = limits.minimum != 0 || limits.maximum != 0;
    const std::optional<double> number = ToDouble(*value, limits.kind);
    if (!hasLimits || !number || (*number >= limits.minimum && *number <= limits.maximum)) {
        return {};
    }
    return DialogText(
        "$$$/Kiv/Dialog/Number/Range=The value must lie between ^0 and ^1.",
        {Widen(ShortDecimal(limits.minimum, 4)), Widen(ShortDecimal(limits.maximum, 4))});
}

}  // namespace kivmetadataui
