#include "api/MetadataDialog.h"

#include "api/tests/ApiFixture.h"

#include <cstring>
#include <string>

namespace {

using recording::Get;
using recording::TakeCalls;

class MetadataDialog : public ApiTest {
protected:
    // Never looked into: the recording framework only hands the pointer on.
    __XMPMeta__* Meta() { return reinterpret_cast<__XMPMeta__*>(&something_); }

private:
    int something_ = 0;
};

class MetadataDialogUp : public MetadataDialog {
protected:
    MetadataDialogUp() { BringUp(); }
    ~MetadataDialogUp() override
    {
        Get().failAt.clear();
        MetadataAPITerminate();
    }
};

TEST_F(MetadataDialogUp, StepsStandInOrder)
{
    Get().dialogResult = true;
    Get().hasPreferencesFile = true;
    MetadataDialogRequest request = {};
    request.text = "photo.jpg";
    request.brightnessPercent = 50;
    request.flags = 1;
    EXPECT_TRUE(DoMetadataDialog(Meta(), &request));
    EXPECT_EQ(TakeCalls(),
              "TypicalProviderImpl\n"
              "string::UTF8to16 photo.jpg\n"
              "Dir::PrefDir\n"
              "File::Exists /prefs/MetadataDialogPrefs.xml\n"
              "LoadPropList /prefs/MetadataDialogPrefs.xml false\n"
              "SetBrightness 0.5\n"
              "kivmetadataui::DoMetadataDialog title=photo.jpg heading= confirmLabel= flags=1 "
              "no parent\n"
              "Dir::PrefDir\n"
              "File::Create /prefs/MetadataDialogPrefs.xml false\n"
              "SavePropList /prefs/MetadataDialogPrefs.xml\n"
              "~TypicalProviderImpl\n");
}

TEST_F(MetadataDialogUp, MissingPreferencesAreNotLoadedButWritten)
{
    EXPECT_FALSE(DoMetadataDialog(Meta(), nullptr));
    const std::string calls = TakeCalls();
    EXPECT_EQ(calls.find("LoadPropList"), std::string::npos);
    EXPECT_NE(calls.find("SavePropList"), std::string::npos);
    EXPECT_TRUE(Get().storedPreferences.GetBool("seen", false));
}

TEST_F(MetadataDialogUp, NullRequestIsARecordOfZeros)
{
    EXPECT_FALSE(DoMetadataDialog(Meta(), nullptr));
    const std::string calls = TakeCalls();
    EXPECT_NE(calls.find("SetBrightness 0\n"), std::string::npos);
    EXPECT_NE(calls.find("DoMetadataDialog title= heading= confirmLabel= flags=0 no parent\n"),
              std::string::npos);
}

TEST_F(MetadataDialogUp, Brightness)
{
    struct Row {
        std::uint32_t percent;
        const char* want;
    };
    const Row rows[] = {
        {0, "SetBrightness 0\n"},
        {50, "SetBrightness 0.5\n"},
        {100, "SetBrightness 1\n"},
        // Passed on as they come: who draws clamps.
        {250, "SetBrightness 2.5\n"},
        {0xFFFFFFFF, "SetBrightness 42949672\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.percent);
        MetadataDialogRequest request = {};
        request.brightnessPercent = row.percent;
        DoMetadataDialog(Meta(), &request);
        EXPECT_NE(TakeCalls().find(row.want), std::string::npos);
    }
}

TEST_F(MetadataDialogUp, OnlyTwoFlagsArePassedOn)
{
    for (int flags = 0; flags < 256; ++flags) {
        MetadataDialogRequest request = {};
        request.flags = static_cast<std::uint8_t>(flags);
        DoMetadataDialog(Meta(), &request);
        EXPECT_NE(TakeCalls().find(" flags=" + std::to_string(flags % 4) + " "), std::string::npos);
    }
}

TEST_F(MetadataDialogUp, ParentIsPassedOn)
{
    int window = 0;
    MetadataDialogRequest request = {};
    request.parentWindow = reinterpret_cast<HWND>(&window);
    DoMetadataDialog(Meta(), &request);
    EXPECT_NE(TakeCalls().find(" flags=0 parent\n"), std::string::npos);
}

TEST_F(MetadataDialogUp, BadPreferencesAreNoReasonNotToOpen)
{
    Get().dialogResult = true;
    Get().hasPreferencesFile = true;
    for (const char* const step :
         {"Dir::PrefDir", "File::Exists", "LoadPropList", "File::Create", "SavePropList"}) {
        for (const bool throwsUnknown : {false, true}) {
            SCOPED_TRACE(step);
            Get().failAt = step;
            Get().throwsUnknown = throwsUnknown;
            EXPECT_TRUE(DoMetadataDialog(Meta(), nullptr));
            EXPECT_NE(TakeCalls().find("kivmetadataui::DoMetadataDialog"), std::string::npos);
        }
    }
}

TEST_F(MetadataDialogUp, FailuresGiveFalse)
{
    Get().dialogResult = true;
    MetadataDialogRequest request = {};
    request.text = "x";
    for (const char* const step : {"TypicalProviderImpl", "string::UTF8to16", "SetBrightness",
                                   "kivmetadataui::DoMetadataDialog"}) {
        for (const bool throwsUnknown : {false, true}) {
            SCOPED_TRACE(step);
            Get().failAt = step;
            Get().throwsUnknown = throwsUnknown;
            EXPECT_FALSE(DoMetadataDialog(Meta(), &request));
            EXPECT_TRUE(Get().traces.empty());
        }
    }
}

TEST_F(MetadataDialogUp, ProviderAnswersForTheHostsObject)
{
    bool wasAsked = false;
    Get().inDialog = [&](kivmetadata::MetaDataProvider& provider) {
        wasAsked = true;
        EXPECT_EQ(provider.MetaDataAccess(), Meta());
        EXPECT_TRUE(provider.CanWriteChanges());  // the base answers false
        provider.ChangesWritten();                // does nothing, unlike the base
    };
    DoMetadataDialog(Meta(), nullptr);
    EXPECT_TRUE(wasAsked);
    EXPECT_EQ(TakeCalls().find("ChangesWritten"), std::string::npos);
}

TEST_F(MetadataDialogUp, EveryFunctionMayBeCalledFromWithin)
{
    Get().dialogResult = true;
    Get().inDialog = [&](kivmetadata::MetaDataProvider&) {
        Get().inDialog = nullptr;
        const MetadataAPIInitParams params = Params();
        EXPECT_TRUE(MetadataAPIInitialize(&params));
        EXPECT_EQ(GetGlobalKIVMetadataVector(), nullptr);
        EXPECT_EQ(GetGlobalKIVMetadataVectorSize(), 0U);
        MetadataAPITerminate();
    };
    EXPECT_TRUE(DoMetadataDialog(Meta(), nullptr));
}

TEST_F(MetadataDialogUp, NullObjectOpensNothing)
{
    Get().dialogResult = true;
    EXPECT_FALSE(DoMetadataDialog(nullptr, nullptr));
    EXPECT_EQ(TakeCalls(), "");
    EXPECT_EQ(Get().lastFailure, "There is no XMP object to show");
}

TEST_F(MetadataDialog, NothingOpensWhileTheFrameworkIsDown)
{
    Get().dialogResult = true;
    EXPECT_FALSE(DoMetadataDialog(Meta(), nullptr));  // before
    EXPECT_EQ(TakeCalls(), "");
    EXPECT_EQ(Get().lastFailure, "The library is not initialized");

    MetadataAPIInitParams bad = Params();
    bad.clientName = nullptr;
    EXPECT_FALSE(MetadataAPIInitialize(&bad));
    TakeCalls();
    EXPECT_FALSE(DoMetadataDialog(Meta(), nullptr));  // after a failed initialize
    EXPECT_EQ(TakeCalls(), "");
    MetadataAPITerminate();

    BringUp();
    MetadataAPITerminate();
    TakeCalls();
    EXPECT_FALSE(DoMetadataDialog(Meta(), nullptr));  // after the last terminate
    EXPECT_EQ(TakeCalls(), "");
}

}  // namespace
