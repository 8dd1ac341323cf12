#include "framework/kivmetadataui/src/DateText.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;
using kivxmp::Date;

namespace {

UString MonthName(int month)
{
    switch (month) {
        case 2:
            return DialogText("$$$/Kiv/Dialog/Month/2=February");
        case 4:
            return DialogText("$$$/Kiv/Dialog/Month/4=April");
        case 6:
            return DialogText("$$$/Kiv/Dialog/Month/6=June");
        case 9:
            return DialogText("$$$/Kiv/Dialog/Month/9=September");
        case 11:
            return DialogText("$$$/Kiv/Dialog/Month/11=November");
        default:
            return {};  // the others have all 31 days
    }
}

UString Ordinal(int day)
{
    switch (day) {
        case 29:
            return DialogText("$$$/Kiv/Dialog/Ordinal/29=29th");
        case 30:
            return DialogText("$$$/Kiv/Dialog/Ordinal/30=30th");
        default:
            return DialogText("$$$/Kiv/Dialog/Ordinal/31=31st");
    }
}

int LastDay(int year, int month)
{
    const std::chrono::year_month_day_last last =
        std::chrono::year(year) / month / std::chrono::last;
    return static_cast<int>(static_cast<unsigned>(last.day()));
}

/// The part of the text that is still to be read. A failed step leaves its text in `error`.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool IsAtEnd() const { return rest_.empty(); }
    char Next() const { return rest_.empty() ? '\0' : rest_.front(); }

    void SkipSpaces()
    {
        while (!rest_.empty() && rest_.front() == ' ') {
            rest_.remove_prefix(1);
        }
    }

    bool SkipOneOf(std::string_view characters)
    {
        if (rest_.empty() || characters.find(rest_.front()) == std::string_view::npos) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    bool SkipWord(std::string_view word)
    {
        if (rest_.size() < word.size() || !EqualsIgnoringCase(rest_.substr(0, word.size()), word)) {
            return false;
        }
        rest_.remove_prefix(word.size());
        return true;
    }

    /// The run of digits here, which may be empty.
    std::string_view TakeDigits()
    {
        const auto end = std::find_if(rest_.begin(), rest_.end(),
                                      [](char unit) { return unit < '0' || unit > '9'; });
        const std::string_view digits =
            rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
        rest_.remove_prefix(digits.size());
        return digits;
    }

    /// A number of `least` to `most` digits.
    bool TakeNumber(std::size_t least, std::size_t most, int& number)
    {
        const std::string_view digits = TakeDigits();
        if (digits.size() < least || digits.size() > most) {
            return false;
        }
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
        return true;
    }

private:
    std::string_view rest_;
};

UString NotADate()
{
    return DialogText(
        "$$$/Kiv/Dialog/Date/NotADate=This is not a date. Write it like 2024-05-17, or with a time "
        "like 2024-05-17 14:30 +02:00.");
}

UString NumberOf(int number)
{
    return NumberText(static_cast<std::size_t>(number));
}

UString CheckMonth(int month)
{
    if (month >= 1 && month <= 12) {
        return {};
    }
    return DialogText("$$$/Kiv/Dialog/Date/Month=There is no month ^0. Months run from 1 to 12.",
                      {NumberOf(month)});
}

UString CheckDay(int year, int month, int day)
{
    if (day < 1 || day > 31) {
        return DialogText("$$$/Kiv/Dialog/Date/Day=There is no day ^0. Days run from 1 to 31.",
                          {NumberOf(day)});
    }
    const int lastDay = LastDay(year, month);
    if (day <= lastDay) {
        return {};
    }
    if (month == 2 && day == 29) {
        return DialogText(
            "$$$/Kiv/Dialog/Date/LeapDay=The 29th of February does not exist in ^0. Last day: 28.",
            {NumberOf(year)});
    }
    return DialogText("$$$/Kiv/Dialog/Date/NoSuchDay=The ^0 of ^1 does not exist. Last day: ^2.",
                      {Ordinal(day), MonthName(month), NumberOf(lastDay)});
}

bool ReadDay(Reader& reader, Date& date, UString& error)
{
    constexpr std::string_view kSeparators = "-/.:";  // cameras write "2024:05:17"
    if (!reader.TakeNumber(4, 4, date.year)) {
        error = NotADate();
        return false;
    }
    int number = 0;
    if (!reader.SkipOneOf(kSeparators)) {
        return true;
    }
    if (!reader.TakeNumber(1, 2, number)) {
        error = NotADate();
        return false;
    }
    date.month = number;
    error = CheckMonth(number);
    if (!error.empty() || !reader.SkipOneOf(kSeparators)) {
        return error.empty();
    }
    if (!reader.TakeNumber(1, 2, number)) {
        error = NotADate();
        return false;
    }
    date.day = number;
    error = CheckDay(date.year, *date.month, number);
    return error.empty();
}

bool ReadTime(Reader& reader, Date& date, UString& error)
{
    int hour = 0;
    int minute = 0;
    if (!reader.TakeNumber(1, 2, hour) || !reader.SkipOneOf(":") ||
        !reader.TakeNumber(2, 2, minute)) {
        error = DialogText(
            "$$$/Kiv/Dialog/Date/Time=A time is written like 14:30 or 14:30:05, behind a whole "
            "day.");
        return false;
    }
    if (hour > 23) {
        error = DialogText("$$$/Kiv/Dialog/Date/Hour=There is no hour ^0. Hours run from 0 to 23.",
                           {NumberOf(hour)});
        return false;
    }
    int second = 0;
    const bool hasSecond = reader.SkipOneOf(":");
    if (hasSecond && !reader.TakeNumber(2, 2, second)) {
        error = NotADate();
        return false;
    }
    if (minute > 59 || second > 59) {
        error = DialogText("$$$/Kiv/Dialog/Date/Minute=Minutes and seconds run from 0 to 59.");
        return false;
    }
    date.hour = hour;
    date.minute = minute;
    if (!hasSecond) {
        return true;
    }
    date.second = second;
    if (reader.SkipOneOf(".,")) {
        date.fraction = reader.TakeDigits();
        if (date.fraction.empty()) {
            error = NotADate();
            return false;
        }
    }
    return true;
}

bool ReadZone(Reader& reader, Date& date, UString& error)
{
    if (reader.SkipWord("UTC") || reader.SkipWord("GMT") || reader.SkipWord("Z")) {
        date.zone = Date::Zone::kUtc;
        return true;
    }
    const bool isWest = reader.Next() == '-';
    int hours = 0;
    int minutes = 0;
    bool isRead = reader.SkipOneOf("+-");
    if (isRead) {
        const std::string_view digits = reader.TakeDigits();
        const bool isJoined = digits.size() == 4;
        const std::string_view hourDigits = isJoined ? digits.substr(0, 2) : digits;
        isRead = !hourDigits.empty() && hourDigits.size() <= 2;
        if (isRead) {
            std::from_chars(hourDigits.data(), hourDigits.data() + hourDigits.size(), hours);
        }
        if (isJoined) {
            std::from_chars(digits.data() + 2, digits.data() + 4, minutes);
        } else if (isRead && reader.SkipOneOf(":")) {
            isRead = reader.TakeNumber(2, 2, minutes);
        }
    }
    if (!isRead || hours > 23 || minutes > 59) {
        error = DialogText(
            "$$$/Kiv/Dialog/Date/Zone=A time zone is written like +02:00, -05:30 or UTC.");
        return false;
    }
    date.zone = Date::Zone::kOffset;
    date.offsetMinutes = (isWest ? -1 : 1) * (hours * 60 + minutes);
    date.negativeZero = isWest && date.offsetMinutes == 0;
    return true;
}

}  // namespace

UString ShowDate(const Date& date)
{
    std::string text = kivxmp::FormatDate(date);
    const std::size_t timeAt = text.find('T');
    if (timeAt == std::string::npos) {
        return Widen(text);
    }
    text[timeAt] = ' ';
    if (date.zone == Date::Zone::kUtc) {
        text.replace(text.size() - 1, 1, " UTC");
    } else if (date.zone == Date::Zone::kOffset) {
        text.insert(text.size() - 6, " ");
    }
    return Widen(text);
}

bool ReadDate(UStringView text, Date& date, UString& error)
{
    const std::string narrow = Narrow(Trimmed(text));
    Reader reader(narrow);
    Date read;
    if (!ReadDay(reader, read, error)) {
        return false;
    }
    const bool hasGap = reader.Next() == ' ' || reader.Next() == 'T' || reader.Next() == 't';
    if (read.day && hasGap) {
        reader.SkipOneOf("Tt");
        reader.SkipSpaces();
        if (!ReadTime(reader, read, error)) {
            return false;
        }
        reader.SkipSpaces();
        if (!reader.IsAtEnd() && !ReadZone(reader, read, error)) {
            return false;
        }
    }
    if (!reader.IsAtEnd() || !kivxmp::IsValid(read)) {
        error = NotADate();
        return false;
    }
    date = read;
    return true;
}

}  // namespace kivmetadataui
