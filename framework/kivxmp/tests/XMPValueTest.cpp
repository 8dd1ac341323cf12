#include <kivxmp/XMPValue.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kivxmp {
namespace {

struct DateCase {
    const char* text;
    const char* want;  // year|month|day|hour|minute|second|fraction|zone
};

std::string Show(const std::optional<int>& value)
{
    return value ? std::to_string(*value) : std::string();
}

std::string Show(const std::optional<Date>& date)
{
    if (!date) {
        return "no date";
    }
    std::string zone;
    if (date->zone == Date::Zone::kUtc) {
        zone = "Z";
    } else if (date->zone == Date::Zone::kOffset) {
        zone = std::to_string(date->offsetMinutes) + (date->negativeZero ? " west" : "");
    }
    return std::to_string(date->year) + "|" + Show(date->month) + "|" + Show(date->day) + "|" +
           Show(date->hour) + "|" + Show(date->minute) + "|" + Show(date->second) + "|" +
           date->fraction + "|" + zone;
}

constexpr DateCase kDates[] = {
    {"2023", "2023|||||||"},
    {"0000", "0|||||||"},
    {"2023-02", "2023|2||||||"},
    {"2023-02-28", "2023|2|28|||||"},
    {"2024-02-29", "2024|2|29|||||"},
    {"2000-02-29", "2000|2|29|||||"},
    {"2023-12-31T23:59", "2023|12|31|23|59|||"},
    {"2023-12-31T23:59Z", "2023|12|31|23|59|||Z"},
    {"2023-12-31T23:59:00", "2023|12|31|23|59|0||"},
    {"2023-12-31T23:59:01+01:00", "2023|12|31|23|59|1||60"},
    {"2023-12-31T23:59:01-09:30", "2023|12|31|23|59|1||-570"},
    {"2023-12-31T23:59:01-00:00", "2023|12|31|23|59|1||0 west"},
    {"2023-12-31T23:59:01+00:00", "2023|12|31|23|59|1||0"},
    {"2023-12-31T23:59:01.50Z", "2023|12|31|23|59|1|50|Z"},
    {"2023-12-31T23:59:01.123456789012345678901", "2023|12|31|23|59|1|123456789012345678901|"},

    // Days that do not exist stay texts.
    {"2023-02-29", "no date"},
    {"2023-02-31", "no date"},
    {"1900-02-29", "no date"},
    {"2023-04-31", "no date"},
    {"2023-00", "no date"},
    {"2023-13", "no date"},
    {"2023-01-00", "no date"},
    {"2023-01-32", "no date"},
    {"2023-01-01T24:00", "no date"},
    {"2023-01-01T23:60", "no date"},
    {"2023-01-01T23:59:60", "no date"},
    {"2023-01-01T23:59+24:00", "no date"},
    {"2023-01-01T23:59+01:60", "no date"},
    // Other spellings are other formats.
    {"", "no date"},
    {"20", "no date"},
    {"12023", "no date"},
    {"-2023", "no date"},
    {"2023-", "no date"},
    {"2023-1", "no date"},
    {"2023-01-", "no date"},
    {"2023-01-1", "no date"},
    {"2023:01:01 10:00:00", "no date"},
    {"2023-01-01 10:00", "no date"},
    {"2023-01-01T", "no date"},
    {"2023-01-01T10", "no date"},
    {"2023-01-01T10:00:", "no date"},
    {"2023-01-01T10:00:00.", "no date"},
    {"2023-01-01T10:00.5", "no date"},
    {"2023-01-01T10:00+1", "no date"},
    {"2023-01-01T10:00+0100", "no date"},
    {"2023-01-01T10:00z", "no date"},
    {"2023-01-01Z", "no date"},
    {"2023-01-01T10:00Z ", "no date"},
    {" 2023", "no date"},
};

TEST(XMPValue, Dates)
{
    for (const DateCase& row : kDates) {
        SCOPED_TRACE(row.text);
        const std::optional<Date> date = ParseDate(row.text);
        EXPECT_EQ(Show(date), row.want);
        if (date) {
            EXPECT_EQ(FormatDate(*date), row.text);
        }
    }
}

TEST(XMPValue, WhatIsNoDateIsNotWritten)
{
    const auto made = [](auto change) {
        Date date;
        date.year = 2023;
        change(date);
        return FormatDate(date);
    };
    EXPECT_EQ(made([](Date& date) { date.year = 10000; }), "");
    EXPECT_EQ(made([](Date& date) { date.year = -1; }), "");
    EXPECT_EQ(made([](Date& date) { date.day = 1; }), "");
    EXPECT_EQ(made([](Date& date) { date.zone = Date::Zone::kUtc; }), "");
    EXPECT_EQ(made([](Date& date) {
                  date.month = 2;
                  date.day = 29;
              }),
              "");
    EXPECT_EQ(made([](Date& date) {
                  date.month = 2;
                  date.day = 1;
                  date.hour = 1;
              }),
              "");
}

TEST(XMPValue, Integers)
{
    EXPECT_EQ(ParseInteger("0"), 0);
    EXPECT_EQ(ParseInteger("-12"), -12);
    EXPECT_EQ(ParseInteger("+12"), 12);
    EXPECT_EQ(ParseInteger("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(ParseInteger("-9223372036854775808"), INT64_MIN);
    for (const char* text :
         {"", "+", "-", "+-1", "1.0", " 1", "1 ", "0x1", "9223372036854775808"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ParseInteger(text), std::nullopt);
    }
    EXPECT_EQ(FormatInteger(INT64_MIN), "-9223372036854775808");
}

TEST(XMPValue, Reals)
{
    EXPECT_EQ(ParseReal("0"), 0.0);
    EXPECT_EQ(ParseReal("-1.5"), -1.5);
    EXPECT_EQ(ParseReal("+.5"), 0.5);
    EXPECT_EQ(ParseReal("5."), 5.0);
    for (const char* text : {"", "+", ".", "1e5", "inf", "nan", "1,5", " 1", "1.2.3", "0x1"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ParseReal(text), std::nullopt);
    }
    EXPECT_EQ(FormatReal(0.1), "0.1");
    EXPECT_EQ(FormatReal(-2.0), "-2");
    EXPECT_EQ(FormatReal(1e21), "1000000000000000000000");
    EXPECT_EQ(ParseReal(FormatReal(std::numeric_limits<double>::denorm_min())),
              std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(ParseReal(FormatReal(std::numeric_limits<double>::max())),
              std::numeric_limits<double>::max());
    EXPECT_EQ(FormatReal(std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(FormatReal(std::nan("")), "");
}

TEST(XMPValue, Rationals)
{
    EXPECT_EQ(ParseRational("1/250"), (Rational{1, 250}));
    EXPECT_EQ(ParseRational("-4294967295/4294967295"), (Rational{-4294967295, 4294967295}));
    EXPECT_EQ(ParseRational("0/0"), (Rational{0, 0}));
    for (const char* text : {"", "1", "1/", "/1", "1/2/3", "1.0/2", "1 / 2"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ParseRational(text), std::nullopt);
    }
    EXPECT_EQ(FormatRational({28, 10}), "28/10");
}

TEST(XMPValue, Booleans)
{
    EXPECT_EQ(ParseBoolean("True"), true);
    EXPECT_EQ(ParseBoolean("FALSE"), false);
    for (const char* text : {"", "1", "yes", "True ", "Tru"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ParseBoolean(text), std::nullopt);
    }
    EXPECT_EQ(FormatBoolean(true), "True");
    EXPECT_EQ(FormatBoolean(false), "False");
}

}  // namespace
}  // namespace kivxmp
