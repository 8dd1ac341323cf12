#include "framework/kivui/src/scrivel/Blending.h"

#include <gtest/gtest.h>

namespace kivui::scrivel {
namespace {

TEST(Blending, MultiplyBytesRounds)
{
    for (std::uint32_t a = 0; a < 256; ++a) {
        for (std::uint32_t b = 0; b < 256; ++b) {
            ASSERT_EQ(MultiplyBytes(a, b), (a * b * 2 + 255) / 510) << a << " " << b;
        }
    }
}

TEST(Blending, ScalePixelScalesEachChannel)
{
    for (std::uint32_t value = 0; value < 256; ++value) {
        const std::uint32_t other = 255 - value;
        const std::uint32_t pixel = value << 24 | other << 16 | value << 8 | other;
        for (std::uint32_t level = 0; level < 256; ++level) {
            const std::uint32_t high = MultiplyBytes(value, level);
            const std::uint32_t low = MultiplyBytes(other, level);
            ASSERT_EQ(ScalePixel(pixel, level), high << 24 | low << 16 | high << 8 | low)
                << value << " " << level;
        }
    }
}

TEST(Blending, Over)
{
    EXPECT_EQ(Over(0, 255, 0x80402010), 0x80402010u);
    EXPECT_EQ(Over(0xFF112233, 255, 0x80402010), 0xFF112233u);
    EXPECT_EQ(Over(0x80800000, 255, 0xFF0000FF), 0xFF80007Fu);
}

}  // namespace
}  // namespace kivui::scrivel
