#include <kivcore/Trace.h>

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "framework/kivcore/tests/Environment.h"

namespace kivcore::debug {
namespace {

/// One line for each message.
class TraceTest : public ::testing::Test {
protected:
    void SetUp() override { sink_ = Listen(); }
    void TearDown() override
    {
        RemoveTraceSink(sink_);
        for (const char* const channel : {"*", "kivtest", "kivtest.Part"}) {
            SetTraceLevel(channel, -1);
        }
    }

    int Listen()
    {
        return AddTraceSink([this](int level, const char* channel, std::string_view text) {
            lines_.push_back(std::to_string(level) + " " + channel + " " + std::string(text));
        });
    }

    std::vector<std::string> lines_;
    int sink_ = 0;
};

TEST_F(TraceTest, ChannelsAreOffAtFirst)
{
    for (const int level : {-1, 0, 6}) {
        EXPECT_FALSE(TraceEnabled("kivtest", level, false));
        Trace(level, "kivtest", "unheard");
    }
    EXPECT_TRUE(lines_.empty());
}

TEST_F(TraceTest, AChannelIsOnUpToItsLevel)
{
    SetTraceLevel("kivtest", 3);
    EXPECT_TRUE(TraceEnabled("kivtest", 0, false));
    EXPECT_TRUE(TraceEnabled("kivtest", 3, false));
    EXPECT_FALSE(TraceEnabled("kivtest", 4, false));
    EXPECT_FALSE(TraceEnabled("kivtest.Part", 0, false));
    EXPECT_FALSE(TraceEnabled(nullptr, 0, false));
    Trace(3, "kivtest", "text\r\n");
    Trace(4, "kivtest", "too deep");
    Trace(0, nullptr, "nowhere");
    EXPECT_EQ(lines_, std::vector<std::string>{"3 kivtest text\r\n"});

    SetTraceLevel("kivtest", -1);
    EXPECT_FALSE(TraceEnabled("kivtest", 0, false));
    EXPECT_FALSE(TraceEnabled("kivtest", -1, false));
}

TEST_F(TraceTest, TheStarStandsForChannelsThatAreNotNamed)
{
    SetTraceLevel("*", 5);
    SetTraceLevel("kivtest", 1);
    EXPECT_TRUE(TraceEnabled("anything", 5, false));
    EXPECT_FALSE(TraceEnabled("anything", 6, false));
    EXPECT_FALSE(TraceEnabled("kivtest", 2, false));
    SetTraceLevel("kivtest", -1);
    EXPECT_FALSE(TraceEnabled("kivtest", 0, false));
}

TEST_F(TraceTest, TheCountMovesWithEveryChangeAndIsNeverZero)
{
    std::uint32_t before = TraceChangeCount();
    EXPECT_NE(before, 0U);
    const auto moved = [&before] {
        const std::uint32_t now = TraceChangeCount();
        const bool result = now != before && now != 0;
        before = now;
        return result;
    };
    SetTraceLevel("kivtest", 1);
    EXPECT_TRUE(moved());
    const int sink = AddTraceSink([](int, const char*, std::string_view) {});
    EXPECT_TRUE(moved());
    RemoveTraceSink(sink);
    EXPECT_TRUE(moved());
    Trace(0, "kivtest", "no change");
    EXPECT_FALSE(moved());
}

TEST_F(TraceTest, ASiteFollowsItsChannel)
{
    TraceSite site("kivtest", 2);
    EXPECT_FALSE(site.Enabled());
    SetTraceLevel("kivtest", 2);
    EXPECT_TRUE(site.Enabled());
    EXPECT_TRUE(site.Enabled());
    site.Write("from a site");
    SetTraceLevel("kivtest", 1);
    EXPECT_FALSE(site.Enabled());
    EXPECT_EQ(lines_, std::vector<std::string>{"2 kivtest from a site"});
}

TEST_F(TraceTest, EverySinkHearsEveryMessage)
{
    SetTraceLevel("kivtest", 0);
    const int failing =
        AddTraceSink([](int, const char*, std::string_view) { throw std::runtime_error("full"); });
    const int second = Listen();
    EXPECT_NE(second, sink_);
    Trace(0, "kivtest", "a");
    EXPECT_EQ(lines_, (std::vector<std::string>{"0 kivtest a", "0 kivtest a"}));
    RemoveTraceSink(second);
    RemoveTraceSink(second);
    RemoveTraceSink(failing);
    Trace(0, "kivtest", "b");
    EXPECT_EQ(lines_.size(), 3U);
}

TEST_F(TraceTest, ASinkMayTraceAndTakeItselfOut)
{
    SetTraceLevel("kivtest", 0);
    int own = 0;
    int calls = 0;
    own = AddTraceSink([&own, &calls](int, const char*, std::string_view) {
        ++calls;
        Trace(0, "kivtest", "dropped");
        RemoveTraceSink(own);
    });
    Trace(0, "kivtest", "one");
    Trace(0, "kivtest", "two");
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(lines_, (std::vector<std::string>{"0 kivtest one", "0 kivtest two"}));
}

TEST_F(TraceTest, AFailedAssertionGoesToTheHandler)
{
    std::vector<std::string> failures;
    SetAssertHandler([&failures](const char* file, int line, const char* text) {
        failures.push_back(std::string(file != nullptr && line > 0 ? "at a place: " : "") + text);
    });
    SetTraceLevel("kivcore", 0);
    int evaluations = 0;
    KIV_ASSERT(++evaluations == 1);
    KIV_ASSERT(++evaluations == 1);
    SetAssertHandler(nullptr);
    SetTraceLevel("kivcore", -1);
    EXPECT_EQ(evaluations, 2);
    EXPECT_EQ(failures, std::vector<std::string>{"at a place: ++evaluations == 1"});
    EXPECT_TRUE(lines_.empty());
}

TEST_F(TraceTest, AFailedAssertionIsTracedAndWorkGoesOn)
{
    SetTraceLevel("kivcore", 0);
    AssertionFailed("File.cpp", 12, "left == right");
    AssertionFailed(nullptr, 0, nullptr);
    SetTraceLevel("kivcore", -1);
    EXPECT_EQ(lines_,
              (std::vector<std::string>{"0 kivcore File.cpp:12: assertion failed: left == right",
                                        "0 kivcore :0: assertion failed: "}));
}

TEST_F(TraceTest, ASimpleAssertNamesItsOwnPlace)
{
    std::vector<std::string> failures;
    SetAssertHandler([&failures](const char* file, int line, const char* text) {
        failures.push_back(std::string(file) + ":" + std::to_string(line) + ": " + text);
    });
    EXPECT_FALSE(DoSimpleAssert("dir/File", 7, "Class::Call", "false", "cannot be"));
    SetAssertHandler(nullptr);
    EXPECT_EQ(failures, std::vector<std::string>{"dir/File:7: Class::Call: false: cannot be"});

    SetTraceLevel("kivcore", 0);
    EXPECT_TRUE(DoSimpleAssert("dir/File", 8, "Class::Call", "false", "cannot be"));
    EXPECT_TRUE(DoSimpleAssert(nullptr, 0, nullptr, nullptr, nullptr));
    SetTraceLevel("kivcore", -1);
    EXPECT_EQ(lines_, (std::vector<std::string>{
                          "0 kivcore dir/File:8: assertion failed: Class::Call: false: cannot be",
                          "0 kivcore :0: assertion failed: : : "}));
}

TEST_F(TraceTest, AHandlerThatThrowsIsContained)
{
    SetAssertHandler([](const char*, int, const char*) { throw 1; });
    KIV_ASSERT(lines_.size() == 99);
    EXPECT_FALSE(DoSimpleAssert("File", 1, "Call", "false", "text"));
    SetAssertHandler(nullptr);
}

// The environment is read once in a process, so each row runs in a process of its own, which ends
// with what it found: one digit for each question.
struct EnvironmentCase {
    const char* variable;  // null: not set
    int kivui0;
    int kivui6;
    int other0;
};

constexpr EnvironmentCase kEnvironmentCases[] = {
    {nullptr, 0, 0, 0},
    {"", 0, 0, 0},
    {"kivui", 1, 0, 0},
    {"kivui:6", 1, 1, 0},
    {"kivui:5", 1, 0, 0},
    {"other", 0, 0, 1},
    {"*:9", 1, 1, 1},
    {"*", 1, 0, 1},
    {"kivui:6,*:0", 1, 1, 1},
    {"*:9,kivui:-1", 0, 0, 1},
    {" kivui : 6 , other ", 1, 1, 1},
    {",,kivui,,", 1, 0, 0},
    {"kivui:2,kivui:6", 1, 1, 0},
    // What cannot be read is left out.
    {"kivui:", 0, 0, 0},
    {"kivui:six", 0, 0, 0},
    {"kivui:6x", 0, 0, 0},
    {"kivui:99999999999", 0, 0, 0},
    {":6", 0, 0, 0},
    {"kivui:x,other:1", 0, 0, 1},
    {"KIVUI", 0, 0, 0},
};

int ReadEnvironment()
{
    TraceSite site("kivui", 0);
    const int first = site.Enabled() ? 1 : 0;
    return first + (TraceEnabled("kivui", 6, true) ? 2 : 0) +
           (TraceEnabled("other", 0, true) ? 4 : 0);
}

class TraceEnvironmentTest : public ::testing::Test {
protected:
    void SetUp() override { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    /// Null takes the variable away.
    void SetVariable(const char* value)
    {
        variable_.emplace("KIV_TRACE",
                          value != nullptr ? std::optional<std::string>(value) : std::nullopt);
    }

private:
    std::optional<kivcore::testing::EnvironmentVariable> variable_;
};

TEST_F(TraceEnvironmentTest, NamesChannelsAndLevels)
{
    for (const EnvironmentCase& row : kEnvironmentCases) {
        SCOPED_TRACE(row.variable != nullptr ? row.variable : "(not set)");
        SetVariable(row.variable);
        EXPECT_EXIT(std::_Exit(ReadEnvironment()),
                    ::testing::ExitedWithCode(row.kivui0 + 2 * row.kivui6 + 4 * row.other0), "^$");
    }
}

TEST_F(TraceEnvironmentTest, IsReadOnDemandOnly)
{
    SetVariable("kivui:6");
    EXPECT_EXIT(
        {
            const std::uint32_t before = TraceChangeCount();
            const bool early = TraceEnabled("kivui", 0, false);
            const bool read = TraceEnabled("kivui", 0, true);
            const bool late = TraceEnabled("kivui", 0, false);
            std::_Exit((early ? 1 : 0) + (read ? 2 : 0) + (late ? 4 : 0) +
                       (TraceChangeCount() != before ? 8 : 0));
        },
        ::testing::ExitedWithCode(2 + 4 + 8), "^$");
}

TEST_F(TraceEnvironmentTest, WhatItSwitchedOnGoesToStandardError)
{
    SetVariable("kivui:6");
    EXPECT_EXIT(
        {
            Trace(6, "kivui", "first");
            Trace(7, "kivui", "too deep");
            Trace(0, "other", "not named");
            SetTraceLevel("other", 0);
            Trace(0, "other", "switched on by a call");
            Trace(0, "kivui", "second\r\n");
            const int sink = AddTraceSink([](int, const char*, std::string_view) {});
            Trace(0, "kivui", "for the sink");
            RemoveTraceSink(sink);
            SetTraceLevel("kivui", -1);
            Trace(0, "kivui", "switched off");
            std::_Exit(0);
        },
        ::testing::ExitedWithCode(0), "^\\[kivui 6\\] first\n\\[kivui 0\\] second\r\n$");
}

TEST_F(TraceEnvironmentTest, ACallBeforehandCountsMore)
{
    SetVariable("kivui:6");
    EXPECT_EXIT(
        {
            SetTraceLevel("kivui", 1);
            std::_Exit(ReadEnvironment());
        },
        ::testing::ExitedWithCode(1), "^$");
}

TEST_F(TraceEnvironmentTest, AnAssertionNeverEndsTheProcess)
{
    SetVariable("kivcore");
    EXPECT_EXIT(
        {
            AssertionFailed("File.cpp", 3, "1 == 2");
            std::_Exit(0);
        },
        ::testing::ExitedWithCode(0), "^\\[kivcore 0\\] File.cpp:3: assertion failed: 1 == 2\n$");
}

}  // namespace
}  // namespace kivcore::debug
