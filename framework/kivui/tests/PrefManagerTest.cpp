#include <kivui/PrefManager.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include <kivcore/FileStream.h>
#include <kivcore/Xml.h>

#include "framework/kivui/tests/TraceLog.h"

namespace kivui::ui {
namespace {

using kivcore::filesupport::FileStep;

class Prefs : public testing::Test {
protected:
    Prefs()
    {
        folder_ = std::filesystem::temp_directory_path() /
                  ("kivui_prefs_" + std::to_string(reinterpret_cast<std::uintptr_t>(this)));
        std::filesystem::create_directories(folder_);
        SetParser();
    }
    ~Prefs() override
    {
        kivcore::filesupport::SetFileFault(FileStep::kWrite, 0, 0);
        PrefManager::Finalize();
        kivcore::xml::ResetParserFactory();
        std::filesystem::remove_all(folder_);
    }

    static void SetParser()
    {
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
    }
    void Initialize(bool reset = false) { InitializeIn(folder_, reset); }
    static void InitializeIn(const std::filesystem::path& folder, bool reset = false)
    {
        PrefManager::Initialize(kivcore::filesupport::PathFromUTF8(folder.string()), reset);
    }
    static std::int64_t Width() { return PrefManager::Preferences().GetInt("width", -1); }
    static void SetWidth(int width) { PrefManager::Preferences().Set("width", width); }

    std::filesystem::path Folder() const { return folder_; }
    std::filesystem::path File() const { return folder_ / "UIPrefs.xml"; }
    std::string Content() const
    {
        std::ostringstream text;
        text << std::ifstream(File(), std::ios::binary).rdbuf();
        return text.str();
    }
    void PutContent(const std::string& text) const
    {
        std::ofstream(File(), std::ios::binary) << text;
    }

private:
    std::filesystem::path folder_;
};

TEST_F(Prefs, AreThereBetweenInitializeAndFinalizeOnly)
{
    EXPECT_FALSE(PrefManager::IsInitialized());
    EXPECT_THROW(PrefManager::Preferences(), std::logic_error);
    PrefManager::Finalize();
    Initialize();
    EXPECT_TRUE(PrefManager::IsInitialized());
    EXPECT_TRUE(PrefManager::Preferences().IsEmpty());
    PrefManager::Finalize();
    EXPECT_FALSE(PrefManager::IsInitialized());
    EXPECT_THROW(PrefManager::Preferences(), std::logic_error);
    PrefManager::Finalize();
}

TEST_F(Prefs, ComeBackInTheNextRound)
{
    for (int round = 0; round < 20; ++round) {
        Initialize();
        EXPECT_EQ(Width(), round - 1);
        SetWidth(round);
        PrefManager::Finalize();
    }
    // Another folder knows nothing of them.
    InitializeIn(Folder() / "other");
    EXPECT_EQ(Width(), -1);
    PrefManager::Finalize();
    EXPECT_FALSE(std::filesystem::exists(Folder() / "other")) << "nothing changed, nothing written";
}

TEST_F(Prefs, AreWrittenWithoutAParser)
{
    Initialize();
    SetWidth(880);
    kivcore::xml::ResetParserFactory();
    const TraceLog log;
    PrefManager::Finalize();
    EXPECT_TRUE(log.Lines().empty());
    SetParser();
    Initialize();
    EXPECT_EQ(Width(), 880);
}

TEST_F(Prefs, MissingFoldersAreMade)
{
    InitializeIn(Folder() / "a" / "b");
    SetWidth(1);
    PrefManager::Finalize();
    InitializeIn(Folder() / "a" / "b");
    EXPECT_EQ(Width(), 1);
}

TEST_F(Prefs, AreNotWrittenWhenNothingChanged)
{
    Initialize();
    SetWidth(7);
    PrefManager::Finalize();
    const std::string spaced = Content() + "\n\n";
    PutContent(spaced);
    Initialize();
    SetWidth(8);
    SetWidth(7);
    PrefManager::Finalize();
    EXPECT_EQ(Content(), spaced);
}

TEST_F(Prefs, ResetBeginsWithNone)
{
    Initialize();
    SetWidth(7);
    PrefManager::Finalize();
    Initialize(/*reset=*/true);
    EXPECT_EQ(Width(), -1);
    PrefManager::Finalize();
    Initialize();
    EXPECT_EQ(Width(), -1);
}

TEST_F(Prefs, SecondInitializeForgetsWhatWasNotWritten)
{
    Initialize();
    SetWidth(7);
    Initialize();
    EXPECT_EQ(Width(), -1);
}

TEST_F(Prefs, BrokenFileGivesNoneAndAReason)
{
    PutContent("<plist><broken");
    const TraceLog log;
    Initialize();
    EXPECT_TRUE(PrefManager::Preferences().IsEmpty());
    ASSERT_EQ(log.Lines().size(), 1u);
    EXPECT_EQ(log.Lines()[0].find("Preferences were not read: "), 0u) << log.Lines()[0];
    EXPECT_NE(log.Lines()[0].find("UIPrefs.xml:1:"), std::string::npos) << log.Lines()[0];
    PrefManager::Finalize();
    EXPECT_EQ(Content(), "<plist><broken") << "nothing changed, nothing written";
}

TEST_F(Prefs, AFileInThePlaceOfTheFolderIsTraced)
{
    // Refused for every user, also for one whom permissions do not hold.
    std::ofstream(Folder() / "file") << "x";
    const TraceLog log;
    InitializeIn(Folder() / "file" / "prefs");
    EXPECT_TRUE(log.Lines().empty());
    SetWidth(7);
    PrefManager::Finalize();
    ASSERT_EQ(log.Lines().size(), 1u);
    EXPECT_EQ(log.Lines()[0].find("Preferences were not written: "), 0u) << log.Lines()[0];
    EXPECT_FALSE(PrefManager::IsInitialized());
}

TEST_F(Prefs, AFullDiskIsTracedAndLeavesTheOldFile)
{
    Initialize();
    SetWidth(1);
    PrefManager::Finalize();
    const std::string before = Content();
    Initialize();
    SetWidth(2);
    const TraceLog log;
    kivcore::filesupport::SetFileFault(FileStep::kWrite, ENOSPC, 1);
    PrefManager::Finalize();
    ASSERT_EQ(log.Lines().size(), 1u);
    EXPECT_EQ(log.Lines()[0].find("Preferences were not written: "), 0u) << log.Lines()[0];
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Folder()), {}), 1);
}

TEST_F(Prefs, WithoutAFolderNothingIsLost)
{
    const TraceLog log;
    PrefManager::Initialize({}, false);
    EXPECT_TRUE(PrefManager::Preferences().IsEmpty());
    PrefManager::Finalize();
    EXPECT_TRUE(log.Lines().empty());
}

}  // namespace
}  // namespace kivui::ui
