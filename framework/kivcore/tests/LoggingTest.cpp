#include <kivcore/Logging.h>

#include <vector>

#include <gtest/gtest.h>

namespace kivcore::logging {
namespace {

std::vector<UString> Paths(const char16_t* path)
{
    return {UString(path)};
}

TEST(Logging, CallbacksAreKeptByName)
{
    RegisterLogFilePathsCallback("b", [] { return Paths(u"/b.log"); });
    RegisterLogFilePathsCallback("a", [] { return Paths(u"/a.log"); });
    EXPECT_EQ(LogFilePaths(), (std::vector<UString>{u"/a.log", u"/b.log"}));

    RegisterLogFilePathsCallback("b", [] { return Paths(u"/new.log"); });
    EXPECT_EQ(LogFilePaths(), (std::vector<UString>{u"/a.log", u"/new.log"}));

    UnregisterLogFilePathsCallback("a");
    UnregisterLogFilePathsCallback("a");
    UnregisterLogFilePathsCallback("never registered");
    EXPECT_EQ(LogFilePaths(), std::vector<UString>{u"/new.log"});
    UnregisterLogFilePathsCallback("b");
    EXPECT_TRUE(LogFilePaths().empty());
}

TEST(Logging, ACallbackMayTakeItselfOut)
{
    RegisterLogFilePathsCallback("once", [] {
        UnregisterLogFilePathsCallback("once");
        return Paths(u"/once.log");
    });
    EXPECT_EQ(LogFilePaths(), std::vector<UString>{u"/once.log"});
    EXPECT_TRUE(LogFilePaths().empty());
}

TEST(Logging, AnEmptyCallbackNamesNothing)
{
    RegisterLogFilePathsCallback("empty", nullptr);
    EXPECT_TRUE(LogFilePaths().empty());
    UnregisterLogFilePathsCallback("empty");
}

}  // namespace
}  // namespace kivcore::logging
