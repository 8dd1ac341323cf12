#include "svgbridge/VomSVGData.h"

#include "svgbridge/tests/BridgeFixture.h"

#include <stdexcept>

namespace svgloom {
namespace {

class VomSVGDataTest : public BridgeTest {};

TEST_F(VomSVGDataTest, BeginsEmptyButForItsSheet)
{
    const StyleData style = Style(".a{fill:red;}");
    EXPECT_EQ(style->name.View(), "");
    EXPECT_EQ(style->ownerValue, 0u);
    EXPECT_TRUE(style->colors.empty());
    ASSERT_NE(style->rasterizerParameters, nullptr);
    EXPECT_EQ(style->rasterizerParameters->Scale(), 1);
    const auto& sheet = dynamic_cast<const VomSVGData&>(*style).Sheet();
    ASSERT_EQ(sheet.FindClass("a").size(), 1u);
    EXPECT_EQ(sheet.FindClass("a")[0].text, "red");
}

TEST_F(VomSVGDataTest, EachHasParametersOfItsOwn)
{
    EXPECT_NE(Style("")->rasterizerParameters, Style("")->rasterizerParameters);
}

TEST_F(VomSVGDataTest, TheTextIsCopied)
{
    std::string css = ".a{fill:red;}";
    const StyleData style = Style(css);
    css.assign(css.size(), 'x');
    const auto& sheet = dynamic_cast<const VomSVGData&>(*style).Sheet();
    EXPECT_EQ(sheet.FindClass("a")[0].text, "red");
}

TEST_F(VomSVGDataTest, ExceptionsOfTheSheetPass)
{
    struct Row {
        const char* css;
        const char* message;
    };
    const Row rows[] = {
        {".{fill:red;}", "empty CSS selector"},
        {".a{fill;}", "value not found"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.css);
        try {
            Style(row.css);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::invalid_argument& error) {
            EXPECT_STREQ(error.what(), row.message);
        }
    }
}

TEST_F(VomSVGDataTest, OutlivesTheClearing)
{
    const StyleData style = Style(".a{fill:red;}");
    const Document gone = Create("<svg/>");
    SVGHandler::Get().Clear();
    const Document document = Create("<svg viewBox='0 0 1 1'><path class='a' d='M0 0h1v1'/></svg>");
    EXPECT_NE(Draw(document, style).find("\"color\":[1,0,0,1]"), std::string::npos);
}

}  // namespace
}  // namespace svgloom
