#include "framework/kivtoolkit/src/NativeText.h"

#include "framework/kivtoolkit/src/WxPainter.h"
#include "framework/kivtoolkit/tests/ScriptedDialog.h"

namespace kivtoolkit::tests {
namespace {

class NativeTextTest : public ToolkitTest {
protected:
    const wxFont& Font() { return FontFor({}); }
};

struct WrapCase {
    const char16_t* text;
    int width;
    std::vector<kivcore::UString> want;
};

TEST_F(NativeTextTest, WrapText)
{
    const WrapCase cases[] = {
        {u"", 100, {u""}},
        {u"one", 1000, {u"one"}},
        {u"one\ntwo", 1000, {u"one", u"two"}},
        // At words; the space at the end of a line belongs to none.
        {u"aaaaaaaaaa bbbbbbbbbb", 100, {u"aaaaaaaaaa", u"bbbbbbbbbb"}},
    };
    for (const WrapCase& row : cases) {
        EXPECT_EQ(WrapText(Font(), row.text, row.width), row.want);
    }
    // A word that is too long is broken somewhere, and nothing is lost.
    const kivcore::UString word(60, u'w');
    kivcore::UString joined;
    const std::vector<kivcore::UString> lines = WrapText(Font(), word, 100);
    EXPECT_GT(lines.size(), 3U);
    for (const kivcore::UString& line : lines) {
        joined += line;
    }
    EXPECT_EQ(joined, word);
}

TEST_F(NativeTextTest, LinesAndTheirHeight)
{
    EXPECT_EQ(NativeLineCount(Font(), u"", 100), 1);
    EXPECT_EQ(NativeLineCount(Font(), u"a\nb\nc", 100), 3);
    const int one = NativeLinesHeight(Font(), 1);
    EXPECT_GT(one, 12);
    EXPECT_LT(one, 26);
    EXPECT_EQ(NativeLinesHeight(Font(), 5), 5 * one);
}

// A field that counts on equal lines cuts the feet off the last one.
TEST_F(NativeTextTest, TheHeightOfATextIsThatOfItsLines)
{
    const int latin = NativeTextHeight(Font(), u"Xg", 1000, kAllLines);
    const int japanese = NativeTextHeight(Font(), u"\u6620\u3063\u3066", 1000, kAllLines);
    EXPECT_EQ(latin, NativeLinesHeight(Font(), 1));
    EXPECT_GE(japanese, latin);
    const kivcore::UString mixed = u"Xg\n\u6620\u3063\u3066\n\u6620";
    EXPECT_EQ(NativeTextHeight(Font(), mixed, 1000, 1), latin);
    EXPECT_EQ(NativeTextHeight(Font(), mixed, 1000, 2), latin + japanese);
    EXPECT_EQ(NativeTextHeight(Font(), mixed, 1000, kAllLines), latin + 2 * japanese);
    EXPECT_EQ(NativeTextHeight(Font(), u"", 1000, kAllLines), latin);
}

TEST_F(NativeTextTest, FontsHaveTheSizeAskedFor)
{
    kivui::ui::TextStyle small;
    small.sizePixels = 13;
    kivui::ui::TextStyle large = small;
    large.sizePixels = 26;
    const double ratio = static_cast<double>(NativeLinesHeight(FontFor(large), 1)) /
                         NativeLinesHeight(FontFor(small), 1);
    EXPECT_NEAR(ratio, 2.0, 0.12);
    EXPECT_NEAR(FontFor(small).GetFractionalPointSize() * PixelsPerPoint(), 13, 0.01);
}

}  // namespace
}  // namespace kivtoolkit::tests
