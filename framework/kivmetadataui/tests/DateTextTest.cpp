#include "framework/kivmetadataui/src/DateText.h"

#include <string>

#include "framework/kivmetadataui/src/Texts.h"

#include <gtest/gtest.h>
#include <kivxmp/XMPValue.h>

namespace kivmetadataui {
namespace {

/// What a typed text becomes in the packet, or the error in brackets.
std::string Read(const std::string& typed)
{
    kivxmp::Date date;
    kivcore::UString error;
    if (!ReadDate(Widen(typed), date, error)) {
        return "[" + Narrow(error) + "]";
    }
    EXPECT_TRUE(error.empty());
    return kivxmp::FormatDate(date);
}

struct DateCase {
    const char* typed;
    const char* want;
};

constexpr char kNotADate[] =
    "[This is not a date. Write it like 2024-05-17, or with a time like 2024-05-17 14:30 +02:00.]";

constexpr DateCase kDateCases[] = {
    {"2024", "2024"},
    {"2024-05", "2024-05"},
    {"2024-5-7", "2024-05-07"},
    {"2024/05/17", "2024-05-17"},
    {"2024.05.17", "2024-05-17"},
    {"2024:05:17 14:30:05", "2024-05-17T14:30:05"},
    {"  2024-05-17 14:30  ", "2024-05-17T14:30"},
    {"2024-05-17T14:30Z", "2024-05-17T14:30Z"},
    {"2024-05-17 9:30 utc", "2024-05-17T09:30Z"},
    {"2024-05-17 14:30:05.250 +02:00", "2024-05-17T14:30:05.250+02:00"},
    {"2024-05-17 14:30:05,5-0530", "2024-05-17T14:30:05.5-05:30"},
    {"2024-05-17 14:30 +2", "2024-05-17T14:30+02:00"},
    {"2024-05-17 14:30 -00:00", "2024-05-17T14:30-00:00"},
    {"2024-02-29", "2024-02-29"},
    {"0000", "0000"},
    // In words.
    {"2023-02-31", "[The 31st of February does not exist. Last day: 28.]"},
    {"2024-02-31", "[The 31st of February does not exist. Last day: 29.]"},
    {"2024-02-30", "[The 30th of February does not exist. Last day: 29.]"},
    {"2023-02-29", "[The 29th of February does not exist in 2023. Last day: 28.]"},
    {"1900-02-29", "[The 29th of February does not exist in 1900. Last day: 28.]"},
    {"2024-04-31", "[The 31st of April does not exist. Last day: 30.]"},
    {"2024-06-31", "[The 31st of June does not exist. Last day: 30.]"},
    {"2024-09-31", "[The 31st of September does not exist. Last day: 30.]"},
    {"2024-11-31", "[The 31st of November does not exist. Last day: 30.]"},
    {"2024-05-32", "[There is no day 32. Days run from 1 to 31.]"},
    {"2024-05-0", "[There is no day 0. Days run from 1 to 31.]"},
    {"2024-13", "[There is no month 13. Months run from 1 to 12.]"},
    {"2024-00-10", "[There is no month 0. Months run from 1 to 12.]"},
    {"2024-05-17 24:00", "[There is no hour 24. Hours run from 0 to 23.]"},
    {"2024-05-17 14:60", "[Minutes and seconds run from 0 to 59.]"},
    {"2024-05-17 14:30:60", "[Minutes and seconds run from 0 to 59.]"},
    {"2024-05-17 14", "[A time is written like 14:30 or 14:30:05, behind a whole day.]"},
    {"2024-05-17 14:30 Berlin", "[A time zone is written like +02:00, -05:30 or UTC.]"},
    {"2024-05-17 14:30 +24:00", "[A time zone is written like +02:00, -05:30 or UTC.]"},
    {"2024-05-17 14:30 +", "[A time zone is written like +02:00, -05:30 or UTC.]"},
    {"2024-05-17 14:30 +02:0", "[A time zone is written like +02:00, -05:30 or UTC.]"},
    {"2024-05-17 14:30 +02:00 x", kNotADate},
    {"2024-05-17 14:30:5", kNotADate},
    {"2024-05-17 14:30:05.", kNotADate},
    {"", kNotADate},
    {"yesterday", kNotADate},
    {"17.05.2024", kNotADate},
    {"202", kNotADate},
    {"20245", kNotADate},
    {"2024-", kNotADate},
    {"2024-05 14:30", kNotADate},
    {"2024-05-17x", kNotADate},
    {"2024-05-170", kNotADate},
    {"2024-05-1\xD9\xA7", kNotADate},
};

TEST(DateText, Reads)
{
    for (const DateCase& row : kDateCases) {
        SCOPED_TRACE(row.typed);
        EXPECT_EQ(Read(row.typed), row.want);
    }
}

constexpr DateCase kShowCases[] = {
    {"2024", "2024"},
    {"2024-05", "2024-05"},
    {"2024-05-17", "2024-05-17"},
    {"2024-05-17T14:30", "2024-05-17 14:30"},
    {"2024-05-17T14:30Z", "2024-05-17 14:30 UTC"},
    {"2024-05-17T14:30:05.250+02:00", "2024-05-17 14:30:05.250 +02:00"},
    {"2024-05-17T14:30:05-00:00", "2024-05-17 14:30:05 -00:00"},
};

// What is shown reads back as what it was.
TEST(DateText, ShowsAndReadsBack)
{
    for (const DateCase& row : kShowCases) {
        SCOPED_TRACE(row.typed);
        const auto date = kivxmp::ParseDate(row.typed);
        ASSERT_TRUE(date.has_value());
        const std::string shown = Narrow(ShowDate(*date));
        EXPECT_EQ(shown, row.want);
        EXPECT_EQ(Read(shown), row.typed);
    }
}

// A reader that runs past the end of a short text would show here under the sanitizers.
TEST(DateText, CutAtEveryLength)
{
    const std::string whole = "2024-05-17 14:30:05.25 +02:00";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        EXPECT_FALSE(Read(whole.substr(0, length)).empty());
    }
}

}  // namespace
}  // namespace kivmetadataui
