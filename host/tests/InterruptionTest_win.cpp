#include "host/Interruption.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace kivhost {
namespace {

long reached = 0;

BOOL WINAPI CountEvent(DWORD)
{
    InterlockedIncrement(&reached);
    return TRUE;
}

// The request goes to all programs of a console: this one gets a console of its own.
void Request()
{
    static const bool hasOwnConsole = FreeConsole() != 0 && AllocConsole() != 0;
    ASSERT_TRUE(hasOwnConsole);
    ASSERT_NE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0), 0) << GetLastError();
}

template <class Condition>
bool ComesTrue(const Condition& condition)
{
    for (int i = 0; i < 500 && !condition(); ++i) {
        Sleep(10);
    }
    return condition();
}

TEST(Interruption, ARequestIsNoted)
{
    const Interruption interruption;
    EXPECT_FALSE(interruption.IsAskedFor());
    Request();
    EXPECT_TRUE(ComesTrue([&] { return interruption.IsAskedFor(); }));
}

TEST(Interruption, WhatWasInForceComesBack)
{
    reached = 0;
    SetConsoleCtrlHandler(&CountEvent, TRUE);
    {
        const Interruption interruption;
        Request();
        EXPECT_TRUE(ComesTrue([&] { return interruption.IsAskedFor(); }));
        EXPECT_EQ(reached, 0);
        // The second one is left to what was there before.
        Request();
        EXPECT_TRUE(ComesTrue([] { return reached == 1; }));
    }
    Request();
    EXPECT_TRUE(ComesTrue([] { return reached == 2; }));
    SetConsoleCtrlHandler(&CountEvent, FALSE);
}

TEST(InterruptionDeathTest, TheProgramEndsAsTheRequestWouldHaveEndedIt)
{
    const Interruption interruption;
    EXPECT_EQ(static_cast<DWORD>(interruption.End()), 0xC000013AU);
}

}  // namespace
}  // namespace kivhost
