#include "svgloom/src/TraceText.h"

#include <gtest/gtest.h>

#include <limits>

namespace SVGLoom {
namespace {

TEST(TraceText, NumbersAsPercentGWritesThem)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(TraceText("n: ").Values(0, -0.0f, 1.5f, 0.1f, 1.0f / 3, 1234567.0f, 1e-5f).Text(),
              "n: 0, -0, 1.5, 0.1, 0.333333, 1.23457e+06, 1e-05");
    EXPECT_EQ(TraceText("").Values(kInfinity, -kInfinity).Text(), "inf, -inf");
}

TEST(TraceText, PutTogether)
{
    EXPECT_EQ((TraceText("a(") << 1.0f << ") b=" << 'c').Text(), "a(1) b=c");
}

}  // namespace
}  // namespace SVGLoom
