// A host with another generation of GTK: this program exports the symbol by which GTK 2 is known.

#include <string>

#include "framework/kivtoolkit/tests/GuestHost.h"

#include <gtest/gtest.h>

extern "C" __attribute__((visibility("default"))) unsigned long gtk_progress_get_type()
{
    return 0;
}

namespace kivtoolkit::tests {
namespace {

TEST(OtherGtk, FailsWithAReason)
{
    GuestHost host;
    EXPECT_FALSE(host.ShowDialog(TypeTitle("x")));
    EXPECT_NE(GuestHost::Failure().find("GTK"), std::string::npos) << GuestHost::Failure();
    EXPECT_EQ(host.Title(), "old");
}

}  // namespace
}  // namespace kivtoolkit::tests
