#include <gtest/gtest.h>

#include <kivxmp/XMPNamespaces.h>

extern "C" int RunCInterfaceTest(void);

namespace kivxmp {
namespace {

TEST(CInterface, FromC)
{
    EXPECT_EQ(RunCInterfaceTest(), 0) << "the line in c_interface_test.c that failed";
    ForgetRegisteredNamespaces();
}

}  // namespace
}  // namespace kivxmp
