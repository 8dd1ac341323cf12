#include "framework/kivui/src/scrivel/ColorRamp.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace kivui::scrivel {
namespace {

const std::vector<Color> kColors = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 0}};

struct Case {
    std::vector<float> offsets;
    double t;
    std::uint32_t want;
};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const Case kCases[] = {
    {{0, 0.5f, 1}, 0, 0xFFFF0000},
    {{0, 0.5f, 1}, -5, 0xFFFF0000},
    {{0, 0.5f, 1}, kNaN, 0xFFFF0000},
    {{0, 0.5f, 1}, 1, 0x00000000},
    {{0, 0.5f, 1}, 1e300, 0x00000000},
    {{0, 0.5f, 1}, 0.25, 0xFF7F8000},
    // Before the first and behind the last offset.
    {{0.5f, 0.75f, 0.75f}, 0.4, 0xFFFF0000},
    {{0.5f, 0.6f, 0.75f}, 0.8, 0x00000000},
    // Where offsets meet, the last one holds; one that falls counts as the largest before it.
    {{0, 0, 1}, 0, 0xFF00FF00},
    {{0.5f, 0.2f, 1}, 0.45, 0xFFFF0000},
    // Out of range and no number.
    {{-3, 7, 9}, 0, 0xFFFF0000},
    {{0, std::numeric_limits<float>::quiet_NaN(), 1}, 0, 0xFF00FF00},
};

TEST(ColorRamp, Cases)
{
    for (const Case& row : kCases) {
        SCOPED_TRACE(testing::Message() << row.offsets[0] << " " << row.offsets[1] << " " << row.t);
        ColorRamp ramp(kColors, row.offsets);
        EXPECT_EQ(ramp.At(row.t), row.want);
        EXPECT_EQ(ramp.At(row.t), row.want);  // from memory
    }
}

}  // namespace
}  // namespace kivui::scrivel
