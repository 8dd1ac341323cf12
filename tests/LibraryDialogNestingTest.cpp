// Calls of the five functions from within an open dialog.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>

#include "tests/DialogFixture.h"
#include "tests/UserFolder.h"

#include <kivcore/Config.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivui/NodeManager.h>

#ifndef KIV_TEST_DEFINITIONS
#error "the build names the folder of sample definitions"
#endif

namespace kivtests {
namespace {

using When = CallbackHook::When;

class LibraryDialogNestingTest : public DialogFixture {
protected:
    // Meets painting, typing, views that come and go, and both ends of a dialog.
    DialogDriver LongScript() const
    {
        DialogDriver script;
        script.TypeValue("dc:title[@x-default]", "Changed")
            .ChooseView("rights")
            .TypeValue("dc:subject", "[\"a\", \"b\"]")
            .TypeValue("xmp:Rating", "5")
            .Screenshot(folder.Of("shot.png").string())
            .PressOk();
        return script;
    }

    /// Ends the library in callback `number`; false if the dialog had fewer.
    bool EndsInCallback(std::size_t number, When when);
};

constexpr char kOpenAlready[] = "A metadata dialog is open already.";

TEST_F(LibraryDialogNestingTest, EveryFunctionAnswersFromWithin)
{
    const EnvironmentVariable definitions("KIV_DEFINITIONS_DIR", KIV_TEST_DEFINITIONS);
    for (const std::size_t number : {1U, 2U, 10U, 40U}) {
        SCOPED_TRACE(number);
        const XmpObject object;
        const XmpObject other;
        Start();
        MetadataAPIInitParams nested = StartRecord("Nested", "de_DE", 3);
        nested.loadCustomDefinitions = 1;
        const auto hook = CallbackHook::Install(number, [&] {
            EXPECT_EQ(api.getVector(), nullptr);
            EXPECT_EQ(api.getVectorSize(), 0U);
            EXPECT_FALSE(api.initialize(nullptr));
            EXPECT_TRUE(api.initialize(&nested)) << LastFailure();
            EXPECT_EQ(kivcore::config::ClientName(), u"Darkroom");
            EXPECT_EQ(api.getVectorSize(), 19U);
            EXPECT_NE(api.getVector(), nullptr);
            EXPECT_FALSE(api.doDialog(other.Get(), nullptr));
            EXPECT_EQ(LastFailure(), kOpenAlready);
            EXPECT_FALSE(api.doDialog(object.Get(), nullptr));
            EXPECT_FALSE(api.doDialog(nullptr, nullptr));
            api.terminate();
            EXPECT_EQ(api.getVectorSize(), 19U) << "not the last terminate";
        });
        EXPECT_TRUE(Run(object, LongScript())) << LastFailure();
        EXPECT_TRUE(hook->HasRun());
        EXPECT_EQ(object.Text("dc:title[@x-default]"), "Changed");
        EXPECT_EQ(other.Bytes(), kSamplePacket);
        api.terminate();
        EXPECT_EQ(WhatIsUp(), "");
    }
}

bool LibraryDialogNestingTest::EndsInCallback(std::size_t number, When when)
{
    SCOPED_TRACE(std::to_string(number) + (when == When::kBefore ? " before" : " after"));
    const XmpObject object;
    Start();
    const auto hook = CallbackHook::Install(
        number,
        [this, &object] {
            api.terminate();
            EXPECT_EQ(WhatIsUp(), "") << "everything is down at once";
            EXPECT_EQ(api.getVector(), nullptr);
            EXPECT_FALSE(api.doDialog(object.Get(), nullptr));
        },
        when);
    const bool isConfirmed = Run(object, LongScript());
    // Confirmed only if OK had been pressed before.
    EXPECT_EQ(isConfirmed, object.Bytes() != kSamplePacket);
    EXPECT_EQ(isConfirmed, object.Text("dc:title[@x-default]") == "Changed");
    if (!hook->HasRun()) {
        EXPECT_TRUE(isConfirmed);
        api.terminate();
    } else if (!isConfirmed) {
        EXPECT_EQ(LastFailure(), "") << "a cancelled dialog is no failure";
    }
    EXPECT_EQ(WhatIsUp(), "");
    return hook->HasRun();
}

TEST_F(LibraryDialogNestingTest, TheLastTerminateFromAnyCallbackEndsTheDialog)
{
    for (const When when : {When::kBefore, When::kAfter}) {
        std::size_t number = 1;
        while (EndsInCallback(number, when)) {
            ASSERT_FALSE(HasFailure()) << "in callback " << number;
            number += std::max<std::size_t>(1, number / 6);
        }
        EXPECT_GT(number, 50U) << "a dialog has many callbacks";
        // The library works as before.
        const XmpObject object;
        EXPECT_TRUE(RunRound(object, Title("Again")));
        EXPECT_EQ(object.Text("dc:title[@x-default]"), "Again");
    }
}

TEST_F(LibraryDialogNestingTest, ALastTerminateLeavesTheObjectAndCancels)
{
    const XmpObject object;
    Start();
    const auto hook = CallbackHook::Install(3, [this] { api.terminate(); });
    EXPECT_FALSE(Run(object, Title("Never")));
    EXPECT_TRUE(hook->HasRun());
    EXPECT_EQ(object.Bytes(), kSamplePacket);
    EXPECT_TRUE(DialogDriver::LastChanges().empty());
}

// The folder is named by the client, and there is none any more.
TEST_F(LibraryDialogNestingTest, SuchADialogSavesNoPreferences)
{
    const UserFolder user(folder.Of("home"));
    const auto file = user.Folder() / "Orvan/Darkroom/MetadataDialogPrefs.xml";
    std::filesystem::remove(file);  // of an earlier run
    const XmpObject object;
    Start();
    CallbackHook::Install(3, [this] { api.terminate(); });
    EXPECT_FALSE(Run(object, Ok()));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_TRUE(RunRound(object, Ok()));
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(LibraryDialogNestingTest, ANewStartFromWithinIsForTheNextDialog)
{
    for (const std::size_t number : {1U, 5U, 30U}) {
        SCOPED_TRACE(number);
        const XmpObject object;
        Start(StartRecord("Old", "de_DE", 2));
        const MetadataAPIInitParams next = StartRecord("New", "ja_JP", 1);
        const auto hook = CallbackHook::Install(number, [&] {
            api.terminate();
            EXPECT_TRUE(api.initialize(&next)) << LastFailure();
            EXPECT_FALSE(api.doDialog(object.Get(), nullptr));
            EXPECT_NE(LastFailure(), "");
        });
        EXPECT_FALSE(Run(object, LongScript()));
        EXPECT_TRUE(hook->HasRun());
        EXPECT_EQ(object.Bytes(), kSamplePacket);
        EXPECT_EQ(kivcore::config::ClientName(), u"New");
        EXPECT_EQ(kivui::ui::UI_NodeManager::Get(false)->DrawingScale(1), 1);
        EXPECT_TRUE(Run(object, Title("Next"))) << LastFailure();
        EXPECT_EQ(object.Text("dc:title[@x-default]"), "Next");
        api.terminate();
    }
}

// One more than the last: the counter wraps within the dialog. Balanced afterwards.
TEST_F(LibraryDialogNestingTest, TooManyTerminatesFromWithin)
{
    const XmpObject object;
    Start();
    CallbackHook::Install(4, [this] {
        api.terminate();
        api.terminate();
    });
    EXPECT_FALSE(Run(object, Title("Never")));
    EXPECT_EQ(object.Bytes(), kSamplePacket);
    EXPECT_EQ(WhatIsUp(), "");
    const MetadataAPIInitParams record = StartRecord();
    EXPECT_TRUE(api.initialize(&record));
    EXPECT_TRUE(api.initialize(&record));
    EXPECT_TRUE(Run(object, Title("Again"))) << LastFailure();
    api.terminate();
}

// A callback that fails is contained: the dialog stays open, and the script goes on.
TEST_F(LibraryDialogNestingTest, ANestedFailedStartDoesNotDisturbTheDialog)
{
    const XmpObject object;
    Start();
    MetadataAPIInitParams broken = StartRecord();
    broken.clientName = nullptr;
    CallbackHook::Install(6, [&] {
        // Nested, the record's texts are not looked at.
        EXPECT_TRUE(api.initialize(&broken));
        api.terminate();
    });
    EXPECT_TRUE(Run(object, Title("Kept"))) << LastFailure();
    EXPECT_EQ(object.Text("dc:title[@x-default]"), "Kept");
    api.terminate();
}

}  // namespace
}  // namespace kivtests
