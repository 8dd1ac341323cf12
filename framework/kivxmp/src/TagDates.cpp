#include "framework/kivxmp/src/TagDates.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>

namespace kivxmp::photo {

namespace {

constexpr int kSecondsADay = 24 * 60 * 60;

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool AreDigits(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

bool IsBlank(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c == ' ' || c == ':' || c == '\0'; });
}

int NumberOf(std::string_view digits)
{
    int number = 0;
    for (const char c : digits) {
        number = number * 10 + (c - '0');
    }
    return number;
}

std::string TwoDigits(int number)
{
    return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

struct Day {
    std::string text;
    bool isWhole = false;  // down to the day
};

/// Year, month and day in digits; an unknown part and what stands behind it are "00" or blank.
Day DayOf(std::string_view year, std::string_view month, std::string_view day)
{
    if (!AreDigits(year) || NumberOf(year) == 0) {
        return {};
    }
    Day result{std::string(year), false};
    if (IsBlank(month) || month == "00") {
        return result;
    }
    if (month.size() != 2 || !AreDigits(month) || NumberOf(month) > 12) {
        return {};
    }
    result.text += '-';
    result.text += month;
    if (IsBlank(day) || day == "00") {
        return result;
    }
    if (day.size() != 2 || !AreDigits(day) ||
        !std::chrono::year_month_day(std::chrono::year(NumberOf(year)),
                                     std::chrono::month(static_cast<unsigned>(NumberOf(month))),
                                     std::chrono::day(static_cast<unsigned>(NumberOf(day))))
             .ok()) {
        return {};
    }
    result.text += '-';
    result.text += day;
    result.isWhole = true;
    return result;
}

/// A second of 60 is a leap second.
bool IsTime(std::string_view hour, std::string_view minute, std::string_view second)
{
    return AreDigits(hour) && AreDigits(minute) && AreDigits(second) && NumberOf(hour) < 24 &&
           NumberOf(minute) < 60 && NumberOf(second) <= 60;
}

/// "+02:00" or "Z"; empty for what is no zone.
std::string ZoneOf(std::string_view sign, std::string_view hour, std::string_view minute)
{
    constexpr int kFarthestHour = 14;
    if ((sign != "+" && sign != "-") || !AreDigits(hour) || !AreDigits(minute) ||
        NumberOf(hour) > kFarthestHour || NumberOf(minute) > 59) {
        return {};
    }
    return std::string(sign) + std::string(hour) + ":" + std::string(minute);
}

std::string_view WithoutBlanks(std::string_view text)
{
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) {
        text.remove_suffix(1);
    }
    return text;
}

std::string ExifZone(std::string_view zone)
{
    zone = WithoutBlanks(zone);
    if (zone == "Z") {
        return "Z";
    }
    constexpr std::size_t kZoneBytes = 6;
    if (zone.size() != kZoneBytes || zone[3] != ':') {
        return {};
    }
    return ZoneOf(zone.substr(0, 1), zone.substr(1, 2), zone.substr(4, 2));
}

}  // namespace

std::string ExifDate(std::string_view date, std::string_view fraction, std::string_view zone)
{
    constexpr std::size_t kDayBytes = 10;
    constexpr std::size_t kMinuteBytes = 16;
    constexpr std::size_t kWholeBytes = 19;
    constexpr std::size_t kMaxFraction = 9;
    date = WithoutBlanks(date);
    // Some writers put other signs between the numbers.
    const auto isApart = [&](std::size_t at) { return date.size() <= at || !IsDigit(date[at]); };
    if (date.size() < 4 || date.size() > kWholeBytes || !isApart(4) || !isApart(7) ||
        !isApart(10) || !isApart(13) || !isApart(16)) {
        return {};
    }
    const auto part = [&](std::size_t at) {
        return date.substr(std::min(at, date.size())).substr(0, 2);
    };
    Day day = DayOf(date.substr(0, 4), part(5), part(8));
    if (!day.isWhole || IsBlank(date.substr(std::min(kDayBytes, date.size())))) {
        return day.text;
    }
    const std::string_view second =
        date.size() <= kMinuteBytes || IsBlank(date.substr(kMinuteBytes)) ? "" : part(17);
    if (!IsTime(part(11), part(14), second.empty() ? "00" : second)) {
        return {};
    }
    day.text += 'T';
    day.text += part(11);
    day.text += ':';
    day.text += part(14);
    if (!second.empty()) {
        day.text += ':';
        day.text += second;
        fraction = WithoutBlanks(fraction);
        if (AreDigits(fraction) && fraction.size() <= kMaxFraction) {
            day.text += '.';
            day.text += fraction;
        }
    }
    return day.text + ExifZone(zone);
}

std::string IimDate(std::string_view date, std::string_view time)
{
    constexpr std::size_t kDateBytes = 8;
    constexpr std::size_t kTimeBytes = 6;
    constexpr std::size_t kZonedBytes = 11;
    if (date.size() != kDateBytes || !AreDigits(date)) {
        return {};
    }
    Day day = DayOf(date.substr(0, 4), date.substr(4, 2), date.substr(6, 2));
    if (!day.isWhole || (time.size() != kTimeBytes && time.size() != kZonedBytes) ||
        !IsTime(time.substr(0, 2), time.substr(2, 2), time.substr(4, 2))) {
        return day.text;
    }
    day.text += 'T';
    day.text += time.substr(0, 2);
    day.text += ':';
    day.text += time.substr(2, 2);
    day.text += ':';
    day.text += time.substr(4, 2);
    return time.size() == kTimeBytes
               ? day.text
               : day.text + ZoneOf(time.substr(6, 1), time.substr(7, 2), time.substr(9, 2));
}

std::string GpsDate(std::string_view day, const std::vector<Ratio>& time)
{
    const std::string date = ExifDate(WithoutBlanks(day).substr(0, 10), "", "");
    constexpr std::size_t kWholeDate = 10;
    if (date.size() != kWholeDate || time.size() < 3) {
        return {};
    }
    // Any of the three may be a fraction; most are whole numbers.
    constexpr std::int64_t kMilli = 1000;
    constexpr std::int64_t kUnits[] = {3600, 60, 1};
    std::int64_t milliseconds = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const Ratio& ratio = time[i];
        if (ratio.denominator <= 0 || ratio.numerator < 0 ||
            ratio.numerator / ratio.denominator > kSecondsADay) {
            return {};
        }
        milliseconds += ratio.numerator * kUnits[i] * kMilli / ratio.denominator;
    }
    if (milliseconds >= kSecondsADay * kMilli) {
        return {};
    }
    const auto seconds = static_cast<int>(milliseconds / kMilli);
    std::string text = date + "T" + TwoDigits(seconds / 3600) + ":" + TwoDigits(seconds / 60 % 60) +
                       ":" + TwoDigits(seconds % 60);
    const auto fraction = static_cast<int>(milliseconds % kMilli);
    if (fraction != 0) {
        text += '.';
        text += static_cast<char>('0' + fraction / 100);
        text += TwoDigits(fraction % 100);
        text.erase(text.find_last_not_of('0') + 1);
    }
    return text + "Z";
}

}  // namespace kivxmp::photo
