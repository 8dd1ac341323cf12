#include "svgloom/src/Styles.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace SVGLoom {
namespace {

/// The places of `fields` in `record`.
template <class Record, class... Fields>
std::vector<std::ptrdiff_t> Places(const Record& record, const Fields&... fields)
{
    const char* const start = reinterpret_cast<const char*>(&record);
    return {reinterpret_cast<const char*>(&fields) - start...};
}

void ExpectAscending(const std::vector<std::ptrdiff_t>& places)
{
    for (std::size_t i = 1; i < places.size(); ++i) {
        EXPECT_LT(places[i - 1], places[i]) << "field " << i;
    }
}

TEST(Styles, TheDocumentsFieldsStandBehindTheRenderers)
{
    const DocumentFillStyle fill;
    ExpectAscending(Places(fill, fill.hasFill, fill.fillRule, fill.fillOpacity, fill.paint,
                           fill.paintValue, fill.visible, fill.color, fill.clipRule));
    const DocumentStrokeStyle stroke;
    ExpectAscending(Places(stroke, stroke.hasStroke, stroke.strokeOpacity, stroke.lineWidth,
                           stroke.lineCap, stroke.lineJoin, stroke.miterLimit, stroke.dashArray,
                           stroke.dashOffset, stroke.paint, stroke.paintValue));
    const DocumentGraphicStyle graphic;
    ExpectAscending(Places(graphic, graphic.opacity, graphic.transform, graphic.clippingPath,
                           graphic.display, graphic.stopOpacity, graphic.stopColor));
}

TEST(Styles, Defaults)
{
    const Color black{0, 0, 0, 1};
    const DocumentFillStyle fill;
    EXPECT_FALSE(fill.paintValue.has_value());
    EXPECT_TRUE(fill.visible);
    EXPECT_EQ(std::get<Color>(fill.color), black);
    EXPECT_EQ(fill.clipRule, FillRule::kNonZero);

    const DocumentStrokeStyle stroke;
    EXPECT_FALSE(stroke.paintValue.has_value());
    EXPECT_EQ(stroke.dashOffset, 0);

    const DocumentGraphicStyle graphic;
    EXPECT_TRUE(graphic.display);
    EXPECT_EQ(graphic.stopOpacity, 1);
    EXPECT_EQ(std::get<Color>(graphic.stopColor), black);
}

TEST(SharedStyle, IsItsOwnOnceItIsEdited)
{
    SharedFillStyle first;
    SharedFillStyle second = first;
    EXPECT_TRUE(first.IsSharedWith(second));
    second.Edit().fillOpacity = 0.5f;
    EXPECT_FALSE(first.IsSharedWith(second));
    EXPECT_EQ(first->fillOpacity, 1);
    EXPECT_EQ(SharedFillStyle()->fillOpacity, 1);
    // Its own already: nothing is copied.
    const DocumentFillStyle* const before = &*second;
    second.Edit().fillOpacity = 0.25f;
    EXPECT_EQ(&*second, before);
}

}  // namespace
}  // namespace SVGLoom
