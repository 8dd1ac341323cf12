#include "host/Interruption.h"

#include <csignal>

#include <gtest/gtest.h>

namespace kivhost {
namespace {

volatile std::sig_atomic_t reached = 0;

extern "C" void CountSignal(int)
{
    reached = reached + 1;
}

TEST(Interruption, ARequestIsNoted)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const Interruption interruption;
        EXPECT_FALSE(interruption.IsAskedFor());
        std::raise(number);
        EXPECT_TRUE(interruption.IsAskedFor());
    }
}

TEST(Interruption, WhatWasInForceComesBack)
{
    reached = 0;
    std::signal(SIGINT, &CountSignal);
    {
        const Interruption interruption;
        std::raise(SIGINT);
        EXPECT_EQ(reached, 0);
    }
    std::raise(SIGINT);
    EXPECT_EQ(reached, 1);
    std::signal(SIGINT, SIG_DFL);
}

TEST(Interruption, WhatIsIgnoredStaysIgnored)
{
    std::signal(SIGHUP, SIG_IGN);
    const Interruption interruption;
    std::raise(SIGHUP);
    EXPECT_FALSE(interruption.IsAskedFor());
    std::signal(SIGHUP, SIG_DFL);
}

TEST(InterruptionDeathTest, TheProgramEndsAsTheRequestWouldHaveEndedIt)
{
    const auto endAfter = [](int number) {
        const Interruption interruption;
        std::raise(number);
        interruption.End();
    };
    EXPECT_EXIT(endAfter(SIGINT), ::testing::KilledBySignal(SIGINT), "");
    EXPECT_EXIT(endAfter(SIGTERM), ::testing::KilledBySignal(SIGTERM), "");
}

TEST(InterruptionDeathTest, ASecondRequestEndsItAtOnce)
{
    const auto raiseTwice = [] {
        const Interruption interruption;
        std::raise(SIGINT);
        std::raise(SIGINT);
    };
    EXPECT_EXIT(raiseTwice(), ::testing::KilledBySignal(SIGINT), "");
}

}  // namespace
}  // namespace kivhost
