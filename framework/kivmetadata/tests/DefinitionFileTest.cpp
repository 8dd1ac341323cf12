#include "framework/kivmetadata/src/DefinitionFile.h"

#include <filesystem>
#include <new>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivmetadata/tests/TraceLog.h"

namespace kivmetadata {

namespace {

using kivcore::filesupport::File;
using kivcore::testing::TestFolder;
using testing::ElementsAre;
using testing::IsEmpty;

class DefinitionFileTest : public testing::Test {
protected:
    File FileOf(const std::string& name) const { return File(folder_.Path(name)); }
    std::string PathOf(const std::string& name) const { return folder_.Of(name).string(); }

    TestFolder folder_;
    TraceLog log_;
};

TEST_F(DefinitionFileTest, HandsOverContentAndName)
{
    folder_.Write("a.xml", "content");
    std::string seen;
    EXPECT_TRUE(ReadDefinitionFile(FileOf("a.xml"),
                                   [&](std::string_view text, const std::string& sourceName) {
                                       seen = sourceName + ": " + std::string(text);
                                   }));
    EXPECT_EQ(seen, PathOf("a.xml") + ": content");
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(DefinitionFileTest, AMissingFileIsNoProblem)
{
    EXPECT_FALSE(ReadDefinitionFile(FileOf("none.xml"), [](auto, const auto&) { FAIL(); }));
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(DefinitionFileTest, AFolderIsNoFile)
{
    std::filesystem::create_directory(folder_.Of("a.xml"));
    EXPECT_FALSE(ReadDefinitionFile(FileOf("a.xml"), [](auto, const auto&) { FAIL(); }));
}

TEST_F(DefinitionFileTest, FailuresAreTraced)
{
    folder_.Write("a.xml", "content");
    EXPECT_FALSE(ReadDefinitionFile(
        FileOf("a.xml"), [](auto, const auto&) { throw std::runtime_error("the reason"); }));
    EXPECT_THAT(log_.Lines(), ElementsAre("the reason"));
}

TEST_F(DefinitionFileTest, WithoutMemoryNothingIsHidden)
{
    folder_.Write("a.xml", "content");
    EXPECT_THROW(
        ReadDefinitionFile(FileOf("a.xml"), [](auto, const auto&) { throw std::bad_alloc(); }),
        std::bad_alloc);
}

TEST_F(DefinitionFileTest, SizeHasALimit)
{
    folder_.Write("full.xml", std::string(std::size_t{4} << 20, ' '));
    folder_.Write("large.xml", std::string((std::size_t{4} << 20) + 1, ' '));
    EXPECT_TRUE(ReadDefinitionFile(FileOf("full.xml"), [](auto, const auto&) {}));
    EXPECT_FALSE(ReadDefinitionFile(FileOf("large.xml"), [](auto, const auto&) { FAIL(); }));
    EXPECT_THAT(log_.Lines(), ElementsAre(PathOf("large.xml") + ": is too large"));
}

}  // namespace

}  // namespace kivmetadata
