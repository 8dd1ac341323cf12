// The dialog through the five functions: what comes back, what is in the object afterwards, and
// what is remembered.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/DialogFixture.h"

#include <kivcore/FileStream.h>
#include <kivcore/PropList.h>
#include <kivcore/StringConversion.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivui/Theme.h>

namespace kivtests {
namespace {

constexpr char kPreferences[] = "preferences/MetadataDialogPrefs.xml";

class LibraryDialogTest : public DialogFixture {
protected:
    kivcore::proplist::PropList Remembered() const
    {
        kivcore::proplist::PropList list;
        kivcore::proplist::utils::LoadPropList(folder.Path(kPreferences), list, false);
        return list;
    }
    std::string LastView() const
    {
        return kivcore::string::UTF16to8(Remembered().GetText("LastView", u"(none)"));
    }
    void PutPreferences(const std::string& content) const
    {
        std::filesystem::create_directories(folder.Of("preferences"));
        folder.Write(kPreferences, content);
    }
};

TEST_F(LibraryDialogTest, OkLeavesTheChangesInTheObject)
{
    const XmpObject object;
    EXPECT_TRUE(RunRound(object, Title("Größe 大きさ")));
    EXPECT_EQ(object.Text("dc:title[@x-default]"), "Größe 大きさ");
    EXPECT_EQ(object.Text("dc:title[@de]"), "Hafen");
    const std::string bytes = object.Bytes();
    EXPECT_EQ(bytes.size(), std::string(kSamplePacket).size()) << "the padding keeps the length";
    for (const char* const kept : {"<!-- kept -->", "   f:odd='kept as it is'",
                                   "<rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag>"}) {
        EXPECT_THAT(bytes, ::testing::HasSubstr(kept));
    }
}

TEST_F(LibraryDialogTest, OkWithoutAChangeLeavesTheBytes)
{
    const XmpObject object;
    EXPECT_TRUE(RunRound(object, Ok()));
    EXPECT_EQ(object.Bytes(), kSamplePacket);
}

TEST_F(LibraryDialogTest, AChangeTakenBackLeavesTheBytes)
{
    const XmpObject object;
    DialogDriver script;
    script.TypeValue("dc:title[@x-default]", "Something else")
        .TypeValue("xmp:Rating", "5")
        .TypeValue("dc:title[@x-default]", "Harbour")
        .TypeValue("xmp:Rating", "3")
        .PressOk();
    EXPECT_TRUE(RunRound(object, std::move(script)));
    EXPECT_EQ(object.Bytes(), kSamplePacket);
}

// The chip that has the focus goes with the others.
TEST_F(LibraryDialogTest, AListIsReplacedWhole)
{
    const XmpObject object;
    DialogDriver script;
    script.TypeValue("dc:subject[1]", "focus")
        .TypeValue("dc:subject", "[\"one\", \"two\", \"three\"]")
        .ChooseView("rights")
        .TypeValue("dc:subject", "[\"four\"]")
        .PressOk();
    EXPECT_TRUE(RunRound(object, std::move(script)));
    EXPECT_EQ(object.Text("dc:subject[1]"), "four");
    EXPECT_EQ(object.Text("dc:subject[2]"), "(none)");
}

TEST_F(LibraryDialogTest, CancelLeavesTheBytes)
{
    const XmpObject object;
    DialogDriver script;
    script.TypeValue("dc:title[@x-default]", "Never")
        .TypeValue("dc:subject", "[\"never\"]")
        .TypeValue("photoshop:City", "Nowhere")
        .PressCancel();
    EXPECT_FALSE(RunRound(object, std::move(script)));
    EXPECT_EQ(object.Bytes(), kSamplePacket);
}

TEST_F(LibraryDialogTest, AScriptThatCannotBeCarriedOutLeavesTheBytesAndTellsWhy)
{
    const XmpObject object;
    Start();
    DialogDriver script;
    script.TypeValue("dc:title[@x-default]", "Never").TypeValue("dc:nonsense", "x").PressOk();
    EXPECT_FALSE(Run(object, std::move(script)));
    EXPECT_THAT(LastFailure(), ::testing::HasSubstr("dc:nonsense"));
    EXPECT_EQ(object.Bytes(), kSamplePacket);
    EXPECT_TRUE(Run(object, Ok())) << "the next one is none the worse for it";
    EXPECT_EQ(LastFailure(), "");
    api.terminate();
}

TEST_F(LibraryDialogTest, ANullObjectShowsNothingAndRemembersNothing)
{
    Start();
    DialogDriver::Register(Ok());
    const MetadataDialogRequest request = {};
    EXPECT_FALSE(api.doDialog(nullptr, &request));
    EXPECT_EQ(LastFailure(), "There is no XMP object to show");
    EXPECT_FALSE(std::filesystem::exists(folder.Of(kPreferences)));
    // The script is still there: no window has used it up.
    const XmpObject object;
    EXPECT_TRUE(api.doDialog(object.Get(), nullptr));
    api.terminate();
}

TEST_F(LibraryDialogTest, NothingIsShownBeforeTheStartAndAfterTheEnd)
{
    const XmpObject object;
    EXPECT_FALSE(Run(object, Ok()));
    EXPECT_EQ(LastFailure(), "The library is not initialized");
    EXPECT_TRUE(RunRound(object, Ok()));
    std::filesystem::remove(folder.Of(kPreferences));
    EXPECT_FALSE(Run(object, Ok()));
    EXPECT_EQ(LastFailure(), "The library is not initialized");
    MetadataAPIInitParams record = StartRecord();
    record.clientName = nullptr;
    EXPECT_FALSE(api.initialize(&record));
    EXPECT_FALSE(Run(object, Ok()));
    api.terminate();
    EXPECT_FALSE(std::filesystem::exists(folder.Of(kPreferences)));
}

TEST_F(LibraryDialogTest, ReadOnlyCannotBeConfirmedOrEdited)
{
    const XmpObject object;
    Start();
    for (const unsigned flags : {1U, 3U, 0xFFU, 0xFDU}) {
        MetadataDialogRequest request = {};
        request.flags = static_cast<std::uint8_t>(flags);
        EXPECT_FALSE(Run(object, Ok(), request));
        EXPECT_EQ(LastFailure(), "The button cannot be pressed: OK");
        EXPECT_FALSE(Run(object, Title("Never"), request));
        EXPECT_THAT(LastFailure(), ::testing::HasSubstr("cannot be edited"));
        EXPECT_FALSE(Run(object, Cancel(), request));
        EXPECT_EQ(LastFailure(), "");
    }
    // Bits above the two mean nothing.
    MetadataDialogRequest request = {};
    request.flags = 0xFC;
    EXPECT_TRUE(Run(object, Ok(), request));
    EXPECT_EQ(object.Bytes(), kSamplePacket);
    api.terminate();
}

TEST_F(LibraryDialogTest, APlainDialogLeavesTwoViewsOut)
{
    const XmpObject object;
    Start();
    const struct {
        std::uint8_t flags;
        const char* view;
        bool isThere;
    } rows[] = {{0, "camera", true},          {2, "camera", false}, {0, "All properties", true},
                {2, "All properties", false}, {2, "rights", true},  {0xFE, "camera", false},
                {0xFC, "camera", true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.view + std::to_string(row.flags));
        MetadataDialogRequest request = {};
        request.flags = row.flags;
        EXPECT_EQ(Run(object, std::move(DialogDriver().ChooseView(row.view).PressOk()), request),
                  row.isThere);
        EXPECT_EQ(LastFailure().find(row.view) == std::string::npos, row.isThere);
    }
    api.terminate();
}

TEST_F(LibraryDialogTest, BrightnessIsTheThemes)
{
    const XmpObject object;
    Start();
    const struct {
        std::uint32_t percent;
        float brightness;
    } rows[] = {{50, 0.5F}, {0, 0.0F}, {100, 1.0F}, {300, 3.0F}, {0xFFFFFFFF, 42949672.96F}};
    for (const auto& row : rows) {
        MetadataDialogRequest request = {};
        request.brightnessPercent = row.percent;
        EXPECT_FALSE(Run(object, Cancel(), request));
        EXPECT_EQ(LastFailure(), "");
        EXPECT_EQ(kivui::ui::Theme::Get().Brightness(), row.brightness);
    }
    api.terminate();
}

TEST_F(LibraryDialogTest, AnyTextIsATitle)
{
    const XmpObject object;
    Start();
    const std::string longText(100'000, 'x');
    for (const char* const text :
         {static_cast<const char*>(nullptr), "", "a & b <c> %s ^0", "\xFF\xC3(", "Größe\n大きさ",
          "\xD7\xA9\xD7\x9C\xE2\x80\xAE", longText.c_str()}) {
        MetadataDialogRequest request = {};
        request.text = text;
        EXPECT_TRUE(Run(object, Ok(), request)) << LastFailure();
    }
    api.terminate();
}

TEST_F(LibraryDialogTest, PreferencesAreWrittenWhateverTheDialogReturned)
{
    const XmpObject object;
    EXPECT_FALSE(std::filesystem::exists(folder.Of(kPreferences)));
    EXPECT_FALSE(RunRound(object, std::move(DialogDriver().ChooseView("rights").PressCancel())));
    EXPECT_EQ(LastView(), "com.orvan.xmp/rights");
    EXPECT_TRUE(RunRound(object, std::move(DialogDriver().ChooseView("camera").PressOk())));
    EXPECT_EQ(LastView(), "com.orvan.xmp/camera");
    const auto place = Remembered().GetList("Windows").GetList("Darkroom");
    EXPECT_GT(place.GetInt("Width", 0), 0);
    EXPECT_GT(place.GetInt("Height", 0), 0);
}

TEST_F(LibraryDialogTest, TheNextDialogOpensTheLastView)
{
    const XmpObject object;
    EXPECT_FALSE(RunRound(object, std::move(DialogDriver().ChooseView("rights").PressCancel())));
    // Typing begins in the first empty field of the view that is open.
    EXPECT_TRUE(RunRound(object, std::move(DialogDriver().TypeText("mine").PressOk())));
    EXPECT_EQ(object.Text("dc:rights[@x-default]"), "mine");
    EXPECT_EQ(object.Text("photoshop:Headline"), "(none)");
}

TEST_F(LibraryDialogTest, HostsShareTheFileButNotTheWindowsPlace)
{
    const XmpObject object;
    for (const char* const name : {"One", "Two"}) {
        Start(StartRecord(name));
        EXPECT_TRUE(Run(object, Ok()));
        api.terminate();
    }
    const auto windows = Remembered().GetList("Windows");
    EXPECT_FALSE(windows.GetList("One").IsEmpty());
    EXPECT_FALSE(windows.GetList("Two").IsEmpty());
}

TEST_F(LibraryDialogTest, BrokenPreferencesAreReplaced)
{
    const XmpObject object;
    for (const std::string& content :
         {std::string(), std::string("<not <xml"), std::string("\xFF\xFE\0", 3),
          std::string("<proplist version=\"1\"><int name=\"NavigationWidth\">9999999999999999"),
          std::string((16 << 20) + 1, ' '), std::string("<html/>")}) {
        SCOPED_TRACE(content.substr(0, 60));
        PutPreferences(content);
        EXPECT_TRUE(RunRound(object, std::move(DialogDriver().ChooseView("rights").PressOk())));
        EXPECT_EQ(LastView(), "com.orvan.xmp/rights");
    }
}

// A list that can be read may still hold anything.
TEST_F(LibraryDialogTest, StrangePreferencesAreNoObstacle)
{
    const XmpObject object;
    for (const char* const values :
         {"<text name=\"LastView\">com.orvan.xmp/gone</text>", "<int name=\"LastView\">7</int>",
          "<real name=\"NavigationWidth\">nan</real>", "<int name=\"NavigationWidth\">-5</int>",
          "<text name=\"Windows\">none</text>",
          "<list name=\"Windows\"><list name=\"Darkroom\"><int name=\"X\">-99000</int>"
          "<int name=\"Y\">99000</int><int name=\"Width\">10000</int>"
          "<int name=\"Height\">10000</int></list></list>",
          "<list name=\"Windows\"><list name=\"Darkroom\">"
          "<int name=\"X\">9223372036854775807</int><int name=\"Y\">-9223372036854775808</int>"
          "<int name=\"Width\">9223372036854775807</int><int name=\"Height\">0</int></list></list>",
          "<list name=\"Windows\"><list name=\"Darkroom\"><int name=\"X\">10</int>"
          "<int name=\"Y\">10</int><int name=\"Width\">700</int><int name=\"Height\">500</int>"
          "<bool name=\"Maximized\">true</bool></list></list>"}) {
        SCOPED_TRACE(values);
        PutPreferences(std::string("<proplist version=\"1\">") + values + "</proplist>");
        EXPECT_TRUE(RunRound(object, Title(values)));
        EXPECT_EQ(object.Text("dc:title[@x-default]"), values);
    }
}

TEST_F(LibraryDialogTest, PreferencesThatCannotBeWrittenAreNoObstacle)
{
    const XmpObject object;
    folder.Write("preferences", "a file where the folder should be");
    EXPECT_TRUE(RunRound(object, Title("One")));
    EXPECT_EQ(folder.Read("preferences"), "a file where the folder should be");
    std::filesystem::remove(folder.Of("preferences"));
    std::filesystem::create_directories(folder.Of(kPreferences));
    EXPECT_TRUE(RunRound(object, Title("Two")));
    EXPECT_TRUE(std::filesystem::is_directory(folder.Of(kPreferences)));
    EXPECT_EQ(object.Text("dc:title[@x-default]"), "Two");
}

TEST_F(LibraryDialogTest, AFullDiskKeepsTheOldPreferences)
{
    const XmpObject object;
    EXPECT_TRUE(RunRound(object, std::move(DialogDriver().ChooseView("rights").PressOk())));
    const std::string before = folder.Read(kPreferences);
    Start();
    kivcore::filesupport::SetFileFault(kivcore::filesupport::FileStep::kWrite, ENOSPC, 1);
    EXPECT_TRUE(Run(object, std::move(DialogDriver().ChooseView("camera").PressOk())));
    kivcore::filesupport::SetFileFault(kivcore::filesupport::FileStep::kWrite, 0, 1);
    api.terminate();
    EXPECT_EQ(folder.Read(kPreferences), before);
    EXPECT_EQ(std::filesystem::directory_iterator(folder.Of("preferences"))->path().filename(),
              "MetadataDialogPrefs.xml");
}

TEST_F(LibraryDialogTest, BrokenDefinitionsAreNoObstacle)
{
    std::filesystem::create_directories(folder.Of("sets/broken/view"));
    folder.Write("sets/broken/manifest.xml", "<definitions owner=\"org.example\"/>");
    folder.Write("sets/broken/view/1.xml", "<view");
    const EnvironmentVariable definitions("KIV_DEFINITIONS_DIR", folder.Of("sets").string());
    const XmpObject object;
    EXPECT_TRUE(RunRound(object, Title("Shown")));
    EXPECT_EQ(object.Text("dc:title[@x-default]"), "Shown");
}

// Without any data at all there is still a dialog; the list of all properties needs no definitions.
TEST_F(LibraryDialogTest, WithoutDataTheDialogOpens)
{
    const EnvironmentVariable application("KIV_APP_DIR", folder.Of("nowhere").string());
    const XmpObject object;
    EXPECT_TRUE(RunRound(object, Ok()));
    EXPECT_FALSE(RunRound(object, Cancel()));
    EXPECT_EQ(object.Bytes(), kSamplePacket);
}

}  // namespace
}  // namespace kivtests
