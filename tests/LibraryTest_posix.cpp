// What the library does on systems other than Windows only.

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/GuestState.h"
#include "tests/LibraryFixture.h"

#include <kivxmp/kivxmp.h>

namespace kivtests {
namespace {

class LibraryPosixTest : public LibraryFixture {};

TEST_F(LibraryPosixTest, GdiPlusIsNothingToStartHere)
{
    MetadataAPIInitParams record = StartRecord();
    record.startGdiPlus = 1;
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(api.initialize(&record));
        api.terminate();
        EXPECT_EQ(WhatIsUp(), "");
    }
}

TEST_F(LibraryPosixTest, WithoutADisplayThereIsAReasonAndNoToolkit)
{
    const EnvironmentVariable noDisplay("DISPLAY", std::nullopt);
    const EnvironmentVariable noWayland("WAYLAND_DISPLAY", std::nullopt);
    const struct {
        const char* language;
        const char* reason;
    } rounds[] = {
        {"en_US", "There is no display that a dialog could be shown on."},
        {"de_DE", "Es gibt keinen Bildschirm, auf dem ein Dialog erscheinen könnte."},
    };
    for (const auto& round : rounds) {
        const MetadataAPIInitParams record = StartRecord("Darkroom", round.language);
        ASSERT_TRUE(api.initialize(&record));
        __XMPMeta__* object = nullptr;
        ASSERT_EQ(KivXmpCreate(&object), kKivXmpOk);
        EXPECT_FALSE(api.doDialog(object, nullptr));
        KivXmpRelease(object);
        EXPECT_EQ(LastFailure(), round.reason);
        EXPECT_FALSE(IsToolkitStarted());
        api.terminate();
        EXPECT_EQ(WhatIsUp(), "");
    }
}

}  // namespace
}  // namespace kivtests
