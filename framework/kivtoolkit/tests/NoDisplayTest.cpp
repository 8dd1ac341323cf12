// Without a display a dialog fails with a reason, and a later one with a display works.

#include <cstdlib>
#include <string>

#include "framework/kivtoolkit/tests/GuestHost.h"

#include <gtest/gtest.h>

namespace kivtoolkit::tests {
namespace {

TEST(NoDisplay, FailsWithAReasonAndCanTryAgain)
{
    const char* given = std::getenv("DISPLAY");
    ASSERT_NE(given, nullptr) << "this test itself needs a display";
    const std::string display = given;
    GuestHost host;
    unsetenv("DISPLAY");
    EXPECT_FALSE(host.ShowDialog(TypeTitle("x")));
    EXPECT_NE(GuestHost::Failure(), "");
    setenv("DISPLAY", ":64999", 1);
    EXPECT_FALSE(host.ShowDialog(TypeTitle("x")));
    EXPECT_NE(GuestHost::Failure(), "");
    EXPECT_EQ(host.Title(), "old");
    setenv("DISPLAY", display.c_str(), 1);
    EXPECT_TRUE(host.ShowDialog(TypeTitle("x"))) << GuestHost::Failure();
    EXPECT_EQ(host.Title(), "x");
}

}  // namespace
}  // namespace kivtoolkit::tests
