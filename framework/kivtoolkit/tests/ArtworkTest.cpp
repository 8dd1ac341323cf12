#include "framework/kivtoolkit/src/Artwork.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include <kivui/Controls.h>

namespace kivtoolkit::tests {
namespace {

using Names = std::set<std::string, std::less<>>;
using kivui::ui::IconMirroring;

// Everything that draws an icon names it by one of these.
Names UsedNames()
{
    namespace controls = kivui::ui::icons;
    Names names{std::string(controls::kCheck),     std::string(controls::kCross),
                std::string(controls::kError),     std::string(controls::kMixed),
                std::string(controls::kRevert),    std::string(controls::kStar),
                std::string(controls::kStarEmpty), std::string(controls::kWarning),
                std::string(icons::kAdd),          std::string(icons::kChevronDown),
                std::string(icons::kRemove),       std::string(icons::kSearch)};
    names.insert(ViewIcons().begin(), ViewIcons().end());
    return names;
}

std::string Content(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

TEST(Artwork, IsTheFolderByteForByte)
{
    Names files;
    for (const auto& entry : std::filesystem::directory_iterator(KIV_ARTWORK_DIR)) {
        if (entry.path().extension() == ".svg") {
            files.insert(entry.path().stem().string());
        }
    }
    Names embedded;
    for (const ArtworkFile& file : ArtworkFiles()) {
        embedded.emplace(file.name);
        EXPECT_EQ(file.svg, Content(std::filesystem::path(KIV_ARTWORK_DIR) /
                                    (std::string(file.name) + ".svg")))
            << file.name;
    }
    EXPECT_EQ(embedded, files);
}

TEST(Artwork, EveryNameInUseIsThereAndEveryFileIsInUse)
{
    Names embedded;
    for (const ArtworkFile& file : ArtworkFiles()) {
        embedded.emplace(file.name);
    }
    EXPECT_EQ(embedded, UsedNames());
}

TEST(Artwork, WhatShowsADirectionIsMirrored)
{
    Names mirrored;
    for (const ArtworkFile& file : ArtworkFiles()) {
        if (file.mirroring == IconMirroring::kRightToLeft) {
            mirrored.emplace(file.name);
        }
    }
    EXPECT_EQ(mirrored, (Names{"caption", "document", "list", "newspaper", "revert", "tag"}));
}

TEST(Artwork, IsNamedInTheIconCache)
{
    RegisterArtwork();
    for (const std::string& name : UsedNames()) {
        EXPECT_TRUE(kivui::ui::IconCache::IsRegistered(name)) << name;
    }
    kivui::ui::IconCache::Terminate();
}

TEST(Artwork, AViewWithoutAKnownIconHasTheGeneralOne)
{
    EXPECT_EQ(ViewIcon("camera"), "camera");
    EXPECT_EQ(ViewIcon(""), "document");
    EXPECT_EQ(ViewIcon("cross"), "document");
    EXPECT_EQ(ViewIcon("none"), "document");
}

}  // namespace
}  // namespace kivtoolkit::tests
