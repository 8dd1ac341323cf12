#include <kivxmp/XMPValue.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>

namespace kivxmp {
namespace {

bool IsDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

/// Reads values off the front of a text.
class Cursor {
public:
    explicit Cursor(std::string_view text) : rest_(text) {}

    bool AtEnd() const noexcept { return rest_.empty(); }

    bool Skip(char c) noexcept
    {
        if (rest_.empty() || rest_.front() != c) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    /// Exactly `count` digits; the next character may be another one.
    std::optional<int> Digits(std::size_t count) noexcept
    {
        if (rest_.size() < count) {
            return std::nullopt;
        }
        int value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            if (!IsDigit(rest_[i])) {
                return std::nullopt;
            }
            value = value * 10 + (rest_[i] - '0');
        }
        rest_.remove_prefix(count);
        return value;
    }

    std::string_view AllDigits() noexcept
    {
        std::size_t count = 0;
        while (count < rest_.size() && IsDigit(rest_[count])) {
            ++count;
        }
        const std::string_view digits = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return digits;
    }

private:
    std::string_view rest_;
};

constexpr int kMaxOffsetMinutes = 23 * 60 + 59;

bool ReadZone(Cursor& cursor, Date& date)
{
    if (cursor.Skip('Z')) {
        date.zone = Date::Zone::kUtc;
        return true;
    }
    const bool isWest = cursor.Skip('-');
    if (!isWest && !cursor.Skip('+')) {
        return true;  // no zone
    }
    const std::optional<int> hours = cursor.Digits(2);
    if (!hours || !cursor.Skip(':')) {
        return false;
    }
    const std::optional<int> minutes = cursor.Digits(2);
    if (!minutes || *hours > 23 || *minutes > 59) {
        return false;
    }
    date.zone = Date::Zone::kOffset;
    date.offsetMinutes = *hours * 60 + *minutes;
    date.negativeZero = isWest && date.offsetMinutes == 0;
    if (isWest) {
        date.offsetMinutes = -date.offsetMinutes;
    }
    return true;
}

bool ReadTime(Cursor& cursor, Date& date)
{
    date.hour = cursor.Digits(2);
    if (!date.hour || !cursor.Skip(':')) {
        return false;
    }
    date.minute = cursor.Digits(2);
    if (!date.minute) {
        return false;
    }
    if (cursor.Skip(':')) {
        date.second = cursor.Digits(2);
        if (!date.second) {
            return false;
        }
        if (cursor.Skip('.')) {
            date.fraction = cursor.AllDigits();
            if (date.fraction.empty()) {
                return false;
            }
        }
    }
    return ReadZone(cursor, date);
}

bool ReadDate(Cursor& cursor, Date& date)
{
    const std::optional<int> year = cursor.Digits(4);
    if (!year) {
        return false;
    }
    date.year = *year;
    if (!cursor.Skip('-')) {
        return true;
    }
    date.month = cursor.Digits(2);
    if (!date.month) {
        return false;
    }
    if (!cursor.Skip('-')) {
        return true;
    }
    date.day = cursor.Digits(2);
    if (!date.day) {
        return false;
    }
    return !cursor.Skip('T') || ReadTime(cursor, date);
}

bool InRange(const std::optional<int>& value, int lowest, int highest) noexcept
{
    return !value || (*value >= lowest && *value <= highest);
}

void AppendDigits(std::string& text, int value, int width)
{
    std::array<char, 12> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    const auto length = static_cast<int>(result.ptr - digits.data());
    text.append(static_cast<std::size_t>(length < width ? width - length : 0), '0');
    text.append(digits.data(), result.ptr);
}

template <class T>
std::string ToText(T value)
{
    std::array<char, 32> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    return std::string(digits.data(), result.ptr);
}

bool EqualsWord(std::string_view text, std::string_view lower) noexcept
{
    if (text.size() != lower.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != lower[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<Date> ParseDate(std::string_view text)
{
    Cursor cursor(text);
    Date date;
    if (!ReadDate(cursor, date) || !cursor.AtEnd() || !IsValid(date)) {
        return std::nullopt;
    }
    return date;
}

std::optional<std::int64_t> ParseInteger(std::string_view text)
{
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') {
            return std::nullopt;
        }
    }
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return value;
}

std::optional<double> ParseReal(std::string_view text)
{
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') {
            return std::nullopt;
        }
    }
    // from_chars would take "inf" and "nan", too.
    if (text.find_first_not_of("0123456789.-") != std::string_view::npos) {
        return std::nullopt;
    }
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return value;
}

std::optional<Rational> ParseRational(std::string_view text)
{
    const std::size_t slash = text.find('/');
    if (slash == std::string_view::npos) {
        return std::nullopt;
    }
    const std::optional<std::int64_t> numerator = ParseInteger(text.substr(0, slash));
    const std::optional<std::int64_t> denominator = ParseInteger(text.substr(slash + 1));
    if (!numerator || !denominator) {
        return std::nullopt;
    }
    return Rational{*numerator, *denominator};
}

std::optional<bool> ParseBoolean(std::string_view text)
{
    if (EqualsWord(text, "true")) {
        return true;
    }
    if (EqualsWord(text, "false")) {
        return false;
    }
    return std::nullopt;
}

bool IsValid(const Date& date) noexcept
{
    if (date.year < 0 || date.year > 9999 || !InRange(date.month, 1, 12) ||
        !InRange(date.hour, 0, 23) || !InRange(date.minute, 0, 59) ||
        !InRange(date.second, 0, 59)) {
        return false;
    }
    if ((date.day && !date.month) || (date.hour && !date.day) ||
        date.hour.has_value() != date.minute.has_value() || (date.second && !date.minute)) {
        return false;
    }
    if (!date.fraction.empty() &&
        (!date.second || date.fraction.find_first_not_of("0123456789") != std::string::npos)) {
        return false;
    }
    if (date.day) {
        const std::chrono::year_month_day day(
            std::chrono::year(date.year), std::chrono::month(static_cast<unsigned>(*date.month)),
            std::chrono::day(static_cast<unsigned>(*date.day)));
        if (*date.day < 1 || !day.ok()) {
            return false;
        }
    }
    if (date.zone == Date::Zone::kNone) {
        return true;
    }
    return date.hour.has_value() && date.offsetMinutes >= -kMaxOffsetMinutes &&
           date.offsetMinutes <= kMaxOffsetMinutes;
}

std::string FormatDate(const Date& date)
{
    std::string text;
    if (!IsValid(date)) {
        return text;
    }
    const auto part = [&text](const char* separator, const std::optional<int>& value) {
        if (value) {
            text += separator;
            AppendDigits(text, *value, 2);
        }
    };
    AppendDigits(text, date.year, 4);
    part("-", date.month);
    part("-", date.day);
    part("T", date.hour);
    part(":", date.minute);
    part(":", date.second);
    if (!date.fraction.empty()) {
        text += "." + date.fraction;
    }
    if (date.zone == Date::Zone::kUtc) {
        text += "Z";
    } else if (date.zone == Date::Zone::kOffset) {
        const bool isWest = date.offsetMinutes < 0;
        const int minutes = isWest ? -date.offsetMinutes : date.offsetMinutes;
        part(isWest || date.negativeZero ? "-" : "+", minutes / 60);
        part(":", minutes % 60);
    }
    return text;
}

std::string FormatInteger(std::int64_t value)
{
    return ToText(value);
}

std::string FormatReal(double value)
{
    if (!std::isfinite(value)) {
        return {};
    }
    // The longest is a denormal: a sign, "0.", 323 zeros and 17 digits.
    std::array<char, 400> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                      std::chars_format::fixed);
    return std::string(digits.data(), result.ptr);
}

std::string FormatRational(const Rational& value)
{
    return ToText(value.numerator) + "/" + ToText(value.denominator);
}

std::string FormatBoolean(bool value)
{
    return value ? "True" : "False";
}

}  // namespace kivxmp
