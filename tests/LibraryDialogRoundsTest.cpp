// The library with a dialog, many times over: what a guest must leave alone, and what must not
// grow. The first test here meets the toolkit's first start, so this file comes first in its
// program.

#include <gtest/gtest.h>

#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <utility>

#include "tests/DialogFixture.h"
#include "tests/GuestState.h"
#include "tests/ProcessCounts.h"

#include <kivmetadataui/DialogDriver.h>

#ifndef KIV_LIBRARY_PATH
#error "the build names the library"
#endif

namespace kivtests {
namespace {

// Around all tests of the program.
class WholeProcess : public ::testing::Environment {
public:
    void SetUp() override { before_ = StateOfProcess(); }
    void TearDown() override { EXPECT_EQ(Differences(before_, StateOfProcess()), ""); }

private:
    ProcessState before_;
};

[[maybe_unused]] ::testing::Environment* const kWholeProcess =
    ::testing::AddGlobalTestEnvironment(new WholeProcess);

TEST(GuestState, DifferencesAreSeen)
{
    const kivcore::testing::EnvironmentVariable changed("KIV_TEST_CHANGED", "1");
    const kivcore::testing::EnvironmentVariable gone("KIV_TEST_GONE", "1");
    const ProcessState before = StateOfProcess();
    EXPECT_EQ(Differences(before, StateOfProcess()), "");
    const kivcore::testing::EnvironmentVariable changedNow("KIV_TEST_CHANGED", "2");
    const kivcore::testing::EnvironmentVariable goneNow("KIV_TEST_GONE", std::nullopt);
    const kivcore::testing::EnvironmentVariable newNow("KIV_TEST_NEW", "");
    EXPECT_EQ(Differences(before, StateOfProcess()),
              "variable KIV_TEST_CHANGED: 1 -> 2\n"
              "variable KIV_TEST_GONE: 1 -> (none)\n"
              "variable KIV_TEST_NEW: (none) -> \n");
}

class LibraryDialogRoundsTest : public DialogFixture {
protected:
    /// One round of `number`: each with another language, scale, brightness and end.
    void Round(int number, const XmpObject& object)
    {
        const char* const languages[] = {"en_US", "de_DE", "ja_JP", "nl"};
        const float scales[] = {1, 1.5F, 2};
        Start(StartRecord(number % 2 == 0 ? "One" : "Another", languages[number % 4],
                          scales[number % 3]));
        MetadataDialogRequest request = {};
        request.text = number % 5 == 0 ? nullptr : "photo.jpg";
        request.brightnessPercent = static_cast<std::uint32_t>(number * 37 % 101);
        const std::string title = "Round " + std::to_string(number);
        DialogDriver script;
        script.TypeValue("dc:title[@x-default]", title)
            .ChooseView("rights")
            .ChooseView("camera")
            .ChooseView("description");
        if (number % 2 == 0) {
            script.PressOk();
        } else {
            script.PressCancel();
        }
        EXPECT_EQ(Run(object, std::move(script), request), number % 2 == 0) << LastFailure();
        EXPECT_EQ(object.Text("dc:title[@x-default]") == title, number % 2 == 0);
        api.terminate();
        ASSERT_EQ(WhatIsUp(), "");
    }
};

TEST_F(LibraryDialogRoundsTest, NothingIsPrintedAndNothingOfTheProcessChanges)
{
    ASSERT_FALSE(IsToolkitStarted()) << "the toolkit's first start belongs to this test";
    // What desktops hand to a program that they start.
    const EnvironmentVariable startup("DESKTOP_STARTUP_ID", "test_TIME1");
    const EnvironmentVariable token("XDG_ACTIVATION_TOKEN", "test");
    // The user's locale, which the host has not asked for.
    const EnvironmentVariable locale("LC_ALL", "C.UTF-8");
    ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    const XmpObject object;
    const ProcessState before = StateOfProcess();
    OutputCapture output;
    Round(0, object);
    Round(1, object);
    EXPECT_EQ(output.Finish(), "");
    EXPECT_TRUE(IsToolkitStarted());
    EXPECT_EQ(Differences(before, StateOfProcess()), "");
}

TEST_F(LibraryDialogRoundsTest, TheHostsLocaleStaysAndDoesNotMatter)
{
    const XmpObject object;
    for (const char* const locale : {"C.UTF-8", "de_DE.UTF-8", "C"}) {
        // Not every machine has them all.
        if (std::setlocale(LC_ALL, locale) == nullptr) {
            continue;
        }
        const ProcessState before = StateOfProcess();
        Round(2, object);
        EXPECT_EQ(Differences(before, StateOfProcess()), "");
        EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), locale);
    }
    std::setlocale(LC_ALL, "C");
}

TEST_F(LibraryDialogRoundsTest, FiftyRounds)
{
    constexpr int kRounds = 50;
    const XmpObject object;
    Round(0, object);
    Round(1, object);
    const std::size_t handles = OpenHandles();
    std::size_t heapHalfway = 0;
    for (int round = 0; round < kRounds; ++round) {
        Round(round, object);
        if (HasFatalFailure()) {
            return;
        }
        if (round == kRounds / 2) {
            heapHalfway = HeapInUse();
        }
    }
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_LE(HeapInUse(), heapHalfway + kAllowedGrowthBytes);
}

TEST_F(LibraryDialogRoundsTest, ManyDialogsInOneRound)
{
    constexpr int kDialogs = 20;
    const XmpObject object;
    Start();
    EXPECT_TRUE(Run(object, Ok()));
    const std::size_t handles = OpenHandles();
    std::size_t heapHalfway = 0;
    for (int dialog = 0; dialog < kDialogs; ++dialog) {
        EXPECT_TRUE(Run(object, Title(std::to_string(dialog)))) << LastFailure();
        if (dialog == kDialogs / 2) {
            heapHalfway = HeapInUse();
        }
    }
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_LE(HeapInUse(), heapHalfway + kAllowedGrowthBytes);
    api.terminate();
}

// What a dialog brought in stays, the toolkit and what it is linked to; the library itself goes.
TEST_F(LibraryDialogRoundsTest, LoadingAndUnloadingAfterADialog)
{
    constexpr int kRounds = 100;
    const XmpObject object;
    EXPECT_TRUE(RunRound(object, Ok()));
    const std::size_t handles = OpenHandles();
    std::size_t heapHalfway = 0;
    for (int round = 0; round < kRounds; ++round) {
        {
            const SharedLibrary library(KIV_LIBRARY_PATH);
            const Functions functions(library);
            const MetadataAPIInitParams record = StartRecord();
            ASSERT_TRUE(functions.initialize(&record));
            if (round % 10 == 0) {
                DialogDriver::Register(Ok());
                EXPECT_TRUE(functions.doDialog(object.Get(), nullptr)) << LastFailure();
            }
            functions.terminate();
        }
        if (round == kRounds / 2) {
            heapHalfway = HeapInUse();
        }
    }
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_LE(HeapInUse(), heapHalfway + kAllowedGrowthBytes);
}

// Death tests run in a fresh process: a host may end while the library is up.
TEST_F(LibraryDialogRoundsTest, AHostMayLeaveWithoutTheLastTerminate)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    // What such a host leaves behind is a leak on purpose.
    const EnvironmentVariable leaks("LSAN_OPTIONS", "detect_leaks=0");
    EXPECT_EXIT(
        {
            const XmpObject object;
            Start();
            if (Run(object, Ok())) {
                std::exit(7);
            }
        },
        ::testing::ExitedWithCode(7), "^$");
}

}  // namespace
}  // namespace kivtests
