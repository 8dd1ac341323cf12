#include <kivcore/LastFailure.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

extern "C" const char* LastFailureAsCSeesIt();  // LastFailureFromC.c

namespace kivcore {
namespace {

constexpr std::size_t kMaxBytes = 1023;

std::string Kept(std::string_view text)
{
    SetLastFailureText(text);
    std::string kept = KivLastFailureText();
    SetLastFailureText({});
    return kept;
}

struct CutCase {
    const char* name;
    std::size_t asciiBytes;  // what stands before `tail`
    std::string_view tail;
    std::size_t keptBytes;
};

constexpr CutCase kCutCases[] = {
    {"fits", 1023, "", 1023},
    {"plain", 1024, "", 1023},
    {"two bytes fit", 1021, "\xC3\xA4", 1023},
    {"two bytes do not", 1022, "\xC3\xA4", 1022},
    {"three bytes fit", 1020, "\xE2\x82\xACx", 1023},
    {"three bytes, one too many", 1021, "\xE2\x82\xAC", 1021},
    {"three bytes, two too many", 1022, "\xE2\x82\xAC", 1022},
    {"four bytes, one too many", 1020, "\xF0\x9F\x98\x80", 1020},
    {"four bytes, two too many", 1021, "\xF0\x9F\x98\x80", 1021},
    {"four bytes, three too many", 1022, "\xF0\x9F\x98\x80", 1022},
    // Not a character: cut where the room ends.
    {"broken", 1018, "\x80\x80\x80\x80\x80\x80\x80\x80", 1023},
};

TEST(LastFailure, LongTextsAreCutAtACharactersEnd)
{
    for (const CutCase& row : kCutCases) {
        SCOPED_TRACE(row.name);
        const std::string text = std::string(row.asciiBytes, 'x') + std::string(row.tail);
        EXPECT_EQ(Kept(text), text.substr(0, row.keptBytes));
    }
    EXPECT_EQ(Kept(std::string(1000000, 'y')).size(), kMaxBytes);
}

TEST(LastFailure, IsEmptyAtFirstAndCanBeCleared)
{
    std::thread([] { EXPECT_STREQ(KivLastFailureText(), ""); }).join();
    SetLastFailureText("reason");
    EXPECT_STREQ(KivLastFailureText(), "reason");
    SetLastFailureText("");
    EXPECT_STREQ(KivLastFailureText(), "");
}

TEST(LastFailure, CHostsSeeTheSameText)
{
    SetLastFailureText("reason");
    EXPECT_STREQ(LastFailureAsCSeesIt(), "reason");
    SetLastFailureText({});
}

TEST(LastFailure, MayBeSetFromItself)
{
    SetLastFailureText("abcdef");
    SetLastFailureText(std::string_view(KivLastFailureText()).substr(2));
    EXPECT_STREQ(KivLastFailureText(), "cdef");
    SetLastFailureText({});
}

TEST(LastFailure, EachThreadHasItsOwn)
{
    SetLastFailureText("mine");
    std::thread([] {
        SetLastFailureText("theirs");
        EXPECT_STREQ(KivLastFailureText(), "theirs");
    }).join();
    EXPECT_STREQ(KivLastFailureText(), "mine");
    SetLastFailureText({});
}

struct Wordless : std::exception {
    const char* what() const noexcept override { return nullptr; }
};

struct Foreign {};

struct ExceptionCase {
    const char* name;
    std::function<void()> raise;
    const char* want;
};

TEST(LastFailure, TakesTheTextOfTheException)
{
    const ExceptionCase rows[] = {
        {"standard", [] { throw std::runtime_error("disk is full"); }, "disk is full"},
        {"standard, empty", [] { throw std::runtime_error(""); }, "unknown exception"},
        {"standard, null", [] { throw Wordless(); }, "unknown exception"},
        {"text", [] { throw std::string("a text"); }, "a text"},
        {"characters", [] { throw "characters"; }, "characters"},
        {"number", [] { throw 42; }, "unknown exception"},
        {"foreign", [] { throw Foreign(); }, "unknown exception"},
    };
    for (const ExceptionCase& row : rows) {
        SCOPED_TRACE(row.name);
        try {
            row.raise();
        } catch (...) {
            SetLastFailureFromCurrentException();
        }
        EXPECT_STREQ(KivLastFailureText(), row.want);
    }
    SetLastFailureText({});
}

TEST(LastFailure, OutsideOfACatchBlockTheExceptionIsUnknown)
{
    SetLastFailureFromCurrentException();
    EXPECT_STREQ(KivLastFailureText(), "unknown exception");
    SetLastFailureText({});
}

}  // namespace
}  // namespace kivcore
