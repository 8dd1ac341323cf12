// What every host finds of dialogs, whatever its system.

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "framework/kivtoolkit/tests/GuestHost.h"

#include <gtest/gtest.h>
#include <kivmetadataui/MetadataDialog.h>

namespace kivtoolkit::tests {
namespace {

namespace fs = std::filesystem;
using kivmetadataui::DialogDriver;

TEST(Guest, TypesAndConfirms)
{
    GuestHost host;
    EXPECT_TRUE(host.ShowDialog(TypeTitle("Möwen über 港"))) << GuestHost::Failure();
    EXPECT_EQ(host.Title(), "Möwen über 港");
    EXPECT_EQ(GuestHost::Failure(), "");
    EXPECT_FALSE(
        host.ShowDialog(DialogDriver().TypeValue("photoshop:Headline", "other").PressCancel()));
    EXPECT_EQ(host.Title(), "Möwen über 港");
    EXPECT_EQ(GuestHost::Failure(), "");
}

TEST(Guest, SecondDialogFromWithinIsRefused)
{
    GuestHost host;
    host.whileOpen = [] {
        EXPECT_FALSE(kivmetadataui::DoMetadataDialog(nullptr, nullptr, {}));
        EXPECT_NE(GuestHost::Failure(), "");
    };
    EXPECT_TRUE(host.ShowDialog(TypeTitle("x")));
}

TEST(Guest, TerminateFromWithinCancels)
{
    GuestHost host;
    bool wasOpen = false;
    host.whileOpen = [&] {
        wasOpen = true;
        host.End();
        throw std::runtime_error("not written");
    };
    EXPECT_FALSE(host.ShowDialog(TypeTitle("x")));
    EXPECT_TRUE(wasOpen);
    // And the next round works.
    GuestHost next;
    EXPECT_TRUE(next.ShowDialog(TypeTitle("y")));
}

TEST(Guest, ScreenshotHasTheWindowsSize)
{
    const fs::path file = fs::temp_directory_path() / "kivtoolkit_screenshot.png";
    fs::remove(file);
    GuestHost host;
    EXPECT_FALSE(host.ShowDialog(DialogDriver().Screenshot(file.string()).PressCancel()));
    std::ifstream stream(file, std::ios::binary);
    std::array<unsigned char, 24> head{};
    stream.read(reinterpret_cast<char*>(head.data()), head.size());
    ASSERT_TRUE(stream.good()) << GuestHost::Failure();
    const auto number = [&](std::size_t at) {
        return head[at] << 24U | head[at + 1] << 16U | head[at + 2] << 8U | head[at + 3];
    };
    EXPECT_EQ(std::string(reinterpret_cast<char*>(head.data()) + 1, 3), "PNG");
    EXPECT_GE(number(16), 640);
    EXPECT_GE(number(20), 440);
    stream.close();
    fs::remove(file);
    // A folder that is not there.
    EXPECT_FALSE(host.ShowDialog(DialogDriver().Screenshot("/nonexistent-folder/a.png").PressOk()));
    EXPECT_NE(GuestHost::Failure().find("/nonexistent-folder/a.png"), std::string::npos);
}

}  // namespace
}  // namespace kivtoolkit::tests
