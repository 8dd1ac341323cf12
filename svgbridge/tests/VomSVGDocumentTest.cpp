#include "svgbridge/VomSVGDocument.h"

#include "svgbridge/tests/BridgeFixture.h"

#include <cmath>
#include <string>

namespace svgloom {
namespace {

class VomSVGDocumentTest : public BridgeTest {};

TEST_F(VomSVGDocumentTest, SizesAreWholeNumbers)
{
    struct Row {
        const char* attributes;
        float width;
        float height;
    };
    const Row rows[] = {
        {"width='99.7' height='50'", 99, 50},
        {"width='99.999' height='0.999'", 99, 0},
        {"viewBox='0 0 24 24' width='48' height='48'", 24, 24},
        {"viewBox='5 6 24.5 12.25'", 24, 12},
        {"viewBox='0 0 -1.5 -0.5'", -1, 0},  // towards 0
        {"width='1in' height='2.54cm'", 96, 96},
        {"viewBox='0 0 3e38 16777216'", 3e38f, 16777216},
        {"viewBox='1 2 3'", 320, 200},
        {"", 320, 200},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.attributes);
        const Document document = Create(std::string("<svg ") + row.attributes + "/>");
        EXPECT_EQ(document->Width(), row.width);
        EXPECT_EQ(document->Height(), row.height);
    }
}

TEST_F(VomSVGDocumentTest, SizesThatAreNotFiniteAreNone)
{
    // Each number is finite, their product is not.
    const Document document = Create("<svg width='3e38in' height='3e38pc'/>");
    ASSERT_FALSE(std::isfinite(SVGHandler::Get().FindDocument(IdOf(document))->ViewBox().width));
    EXPECT_EQ(document->Width(), 0);
    EXPECT_EQ(document->Height(), 0);
}

TEST_F(VomSVGDocumentTest, AnIdWithoutADocumentHasNoSize)
{
    const Document document(new VomSVGDocument(3));
    EXPECT_EQ(document->Width(), 0);
    EXPECT_EQ(document->Height(), 0);
}

}  // namespace
}  // namespace svgloom
