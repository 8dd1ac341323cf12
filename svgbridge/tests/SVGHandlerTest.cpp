#include "svgbridge/SVGHandler.h"

#include "svgbridge/SVGBridge.h"
#include "svgbridge/VomSVGData.h"
#include "svgbridge/tests/BridgeFixture.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace svgloom {
namespace {

constexpr std::uint32_t kLastId = std::numeric_limits<std::uint32_t>::max();

constexpr char kRedSquare[] = "<svg viewBox='0 0 10 10'><path d='M0 0H10V10Z' fill='red'/></svg>";
constexpr char kBlueSquare[] = "<svg viewBox='0 0 10 10'><path d='M0 0H10V10Z' fill='blue'/></svg>";
constexpr char kVariableSquare[] =
    "<svg viewBox='0 0 10 10'>"
    "<path class='a' d='M0 0H10V10Z' fill='var(--ink, blue)'/></svg>";

#define KIV_UNSCALED "{\"op\":\"transform\",\"m\":[1,0,0,1,0,0]}\n"
#define KIV_FILLED(color)                                                                          \
    KIV_UNSCALED                                                                                   \
    "{\"op\":\"fill\",\"path\":[[\"M\",0,0],[\"L\",10,0],[\"L\",10,10],[\"Z\"]],\"winding\":true," \
    "\"color\":[" color "]}\n"

constexpr char kRed[] = KIV_FILLED("1,0,0,1");
constexpr char kGreen[] = KIV_FILLED("0,1,0,1");
constexpr char kBlue[] = KIV_FILLED("0,0,1,1");

class SVGHandlerTest : public BridgeTest {};

TEST_F(SVGHandlerTest, ThereIsOne)
{
    EXPECT_EQ(&SVGHandler::Get(), &SVGHandler::Get());
    EXPECT_EQ(&Handler(), &SVGHandler::Get());
}

TEST_F(SVGHandlerTest, IdsCountFromZero)
{
    EXPECT_EQ(SVGHandlerState::NextId(), 0u);
    const Document first = Create(kRedSquare);
    const Document second = Create(kRedSquare);
    EXPECT_EQ(IdOf(first), 0u);
    EXPECT_EQ(IdOf(second), 1u);
    EXPECT_EQ(SVGHandlerState::NextId(), 2u);
    EXPECT_NE(SVGHandler::Get().FindDocument(0), SVGHandler::Get().FindDocument(1));
}

TEST_F(SVGHandlerTest, AHandleHasOneReference)
{
    const Document document = Create(kRedSquare);
    EXPECT_EQ(document->ReferenceCount(), 1);
    EXPECT_EQ(document->ownerFlags, 0u);
    EXPECT_EQ(document->ownerValue, 0u);
    EXPECT_EQ(Style("")->ReferenceCount(), 1);
}

TEST_F(SVGHandlerTest, AnIdIsNotUsedAgainWhileTheCounterRuns)
{
    Create(kRedSquare);
    EXPECT_EQ(SVGHandlerState::DocumentCount(), 0u);
    EXPECT_EQ(IdOf(Create(kRedSquare)), 1u);
}

TEST_F(SVGHandlerTest, TextThatIsNoImageIsKeptAllTheSame)
{
    for (const char* const text : {"", "<", "<svg><g></svg>", "<svgs/>", "no markup"}) {
        SCOPED_TRACE(text);
        const Document document = Create(text);
        EXPECT_EQ(SVGHandlerState::DocumentCount(), 1u);
        EXPECT_EQ(document->Width(), 320);
        EXPECT_EQ(document->Height(), 200);
        EXPECT_EQ(Draw(document, {}, 320, 200), KIV_UNSCALED);
    }
}

TEST_F(SVGHandlerTest, ExceptionsOfParsingPassAndKeepNothing)
{
    struct Row {
        const char* text;
        const char* message;
    };
    const Row rows[] = {
        {"<svg><g clip-path='url'/></svg>", "invalid string position"},
        {"<svg><linearGradient href=''/></svg>", "invalid string position"},
        {"<svg><g style='fill;'/></svg>", "value not found"},
        {"<svg><style>.{fill:red;}</style></svg>", "empty CSS selector"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        try {
            Create(row.text);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::exception& error) {
            EXPECT_STREQ(error.what(), row.message);
        }
        EXPECT_EQ(SVGHandlerState::DocumentCount(), 0u);
        EXPECT_EQ(SVGHandlerState::NextId(), 0u);
    }
}

TEST_F(SVGHandlerTest, DrawsAtASize)
{
    struct Row {
        std::int32_t width;
        std::int32_t height;
        const char* matrix;
    };
    const Row rows[] = {
        {10, 10, "[1,0,0,1,0,0]"},
        {25, 25, "[2.5,0,0,2.5,0,0]"},
        {30, 20, "[2,0,0,2,0,0]"},  // the smaller one, not in the middle
        {-10, 10, "[-1,0,0,-1,0,0]"},
        {0, 10, "[0,0,0,0,0,0]"},
        {167772161, 167772161, "[16777216,0,0,16777216,0,0]"},  // not every integer is a float
    };
    const Document document = Create(kRedSquare);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.matrix);
        const std::string text = Draw(document, {}, row.width, row.height);
        EXPECT_EQ(text.substr(0, text.find('\n')),
                  std::string("{\"op\":\"transform\",\"m\":") + row.matrix + "}");
    }
}

TEST_F(SVGHandlerTest, StyleDataCountsForOneDraw)
{
    const Document document = Create(kVariableSquare);
    EXPECT_EQ(Draw(document), kBlue);  // the variable's own fallback

    const StyleData colors = Style("");
    colors->colors.emplace("ink", kivui::scrivel::Color{1, 0, 0, 1});
    EXPECT_EQ(Draw(document, colors), kRed);
    EXPECT_EQ(Draw(document), kBlue);

    const StyleData sheet = Style(".a{fill:lime;}");
    EXPECT_EQ(Draw(document, sheet), kGreen);
    EXPECT_EQ(Draw(document, colors), kRed);
    EXPECT_EQ(Draw(document, sheet), kGreen);
    EXPECT_EQ(Draw(document), kBlue);
}

TEST_F(SVGHandlerTest, ASheetAndColorsTogether)
{
    const Document document = Create(kVariableSquare);
    const StyleData style = Style(".a{fill:var(--pen,lime);}");
    EXPECT_EQ(Draw(document, style), kGreen);
    style->colors.emplace("pen", kivui::scrivel::Color{1, 0, 0, 1});
    EXPECT_EQ(Draw(document, style), kRed);
    style->colors.clear();
    EXPECT_EQ(Draw(document, style), kGreen);
}

// Handles of somebody else's.
class ForeignDocument : public kivui::svg::ISVGDocument {
public:
    float Width() const override { return 1; }
    float Height() const override { return 1; }
};
class ForeignStyle : public kivui::svg::ICSSData {};

TEST_F(SVGHandlerTest, WhatIsNotItsOwnIsIgnored)
{
    const Document document = Create(kVariableSquare);
    EXPECT_EQ(Draw({}), "");
    EXPECT_EQ(Draw(new ForeignDocument), "");
    const StyleData foreign(new ForeignStyle);
    foreign->colors.emplace("ink", kivui::scrivel::Color{1, 0, 0, 1});
    EXPECT_EQ(Draw(document, foreign), kBlue);
    EXPECT_EQ(Draw({}, Style(".a{fill:red;}")), "");
}

TEST_F(SVGHandlerTest, ADrawReleasesWhatItWasGiven)
{
    Document document = Create(kRedSquare);
    StyleData style = Style("");
    const auto target = kivui::scrivel::CreateRecordingTarget([](std::string_view) {});
    SVGHandler::Get().Render(*target, document, style, 10, 10);
    EXPECT_EQ(document->ReferenceCount(), 1);
    EXPECT_EQ(style->ReferenceCount(), 1);
    // The last references: the document goes behind the draw.
    std::string drawn;
    const auto log = kivui::scrivel::CreateRecordingTarget(
        [&drawn](std::string_view line) { drawn.append(line); });
    SVGHandler::Get().Render(*log, std::move(document), std::move(style), 10, 10);
    EXPECT_NE(drawn.find("fill"), std::string::npos);
    EXPECT_EQ(SVGHandlerState::DocumentCount(), 0u);
}

TEST_F(SVGHandlerTest, ExceptionsOfADrawPassAndLeaveNothing)
{
    struct Row {
        const char* css;
        const char* message;
    };
    const Row rows[] = {
        {".a{clip-path:url;}", "error: invalid string position\n"},
    };
    const Document document = Create(kVariableSquare);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.css);
        const std::string text = Draw(document, Style(row.css));
        EXPECT_EQ(text.substr(text.find("error")), row.message);
        EXPECT_EQ(Draw(document), kBlue);
    }
}

TEST_F(SVGHandlerTest, AFailingTargetIsLeftAsWell)
{
    const Document document = Create(kRedSquare);
    int calls = 0;
    {
        const auto target = kivui::scrivel::CreateRecordingTarget([&calls](std::string_view line) {
            ++calls;
            if (line.find("fill") != std::string_view::npos) {
                throw std::runtime_error("no more paper");
            }
        });
        EXPECT_THROW(SVGHandler::Get().Render(*target, document, {}, 10, 10), std::runtime_error);
    }
    const int callsThen = calls;
    EXPECT_EQ(Draw(document), kRed);
    EXPECT_EQ(calls, callsThen) << "the target that is gone was used again";
}

TEST_F(SVGHandlerTest, TheLastHandleTakesItsDocumentAlong)
{
    Document document = Create(kRedSquare);
    const Document other = Create(kBlueSquare);
    Document copy = document;
    document.reset();
    EXPECT_NE(SVGHandler::Get().FindDocument(0), nullptr);
    EXPECT_EQ(Draw(copy), kRed);
    copy.reset();
    EXPECT_EQ(SVGHandler::Get().FindDocument(0), nullptr);
    EXPECT_EQ(Draw(new VomSVGDocument(0)), "") << "a copy of the id finds nothing";
    EXPECT_EQ(Draw(other), kBlue);
    SVGHandler::Get().Forget(77);  // was never given out
    EXPECT_EQ(SVGHandlerState::DocumentCount(), 1u);
}

TEST_F(SVGHandlerTest, HandlesThatOutliveTheClearingFindNothing)
{
    const Document document = Create(kRedSquare);
    ClearDocuments();
    EXPECT_EQ(SVGHandlerState::DocumentCount(), 0u);
    EXPECT_EQ(SVGHandlerState::NextId(), 0u);
    EXPECT_EQ(document->Width(), 0);
    EXPECT_EQ(document->Height(), 0);
    EXPECT_EQ(Draw(document), "");
    ClearDocuments();  // once more does nothing
    EXPECT_EQ(SVGHandlerState::NextId(), 0u);
}

TEST_F(SVGHandlerTest, IdsAreUsedAgainAfterClearing)
{
    Document old = Create(kRedSquare);
    ClearDocuments();
    const Document fresh = Create(kBlueSquare);
    EXPECT_EQ(IdOf(fresh), 0u);
    EXPECT_EQ(Draw(old), kBlue) << "stands for the new document";
    EXPECT_EQ(old->Width(), 10);
    old.reset();
    EXPECT_EQ(SVGHandlerState::DocumentCount(), 0u) << "and takes it along";
    EXPECT_EQ(Draw(fresh), "");
    EXPECT_EQ(fresh->Width(), 0);
    // The fresh handle has nothing to take along any more.
    const Document next = Create(kRedSquare);
    EXPECT_EQ(Draw(next), kRed);
}

TEST_F(SVGHandlerTest, AnIdThatComesAgainReplacesItsDocument)
{
    Document old = Create(kRedSquare);
    SVGHandlerState::SetNextId(kLastId);
    const Document last = Create(kRedSquare);
    EXPECT_EQ(IdOf(last), kLastId);
    EXPECT_EQ(SVGHandlerState::NextId(), 0u);
    const Document replacing = Create(kBlueSquare);
    EXPECT_EQ(IdOf(replacing), 0u);
    EXPECT_EQ(SVGHandlerState::DocumentCount(), 2u);
    EXPECT_EQ(Draw(old), kBlue);
    old.reset();
    EXPECT_EQ(Draw(replacing), "");
    EXPECT_EQ(Draw(last), kRed);
}

// The counter tells whether there is something to clear, and right behind its wrap it says no.
TEST_F(SVGHandlerTest, RightBehindTheWrapNothingIsCleared)
{
    SVGHandlerState::SetNextId(kLastId);
    const Document last = Create(kRedSquare);
    ClearDocuments();
    EXPECT_EQ(Draw(last), kRed);
    const Document next = Create(kBlueSquare);
    ClearDocuments();
    EXPECT_EQ(Draw(last), "");
    EXPECT_EQ(SVGHandlerState::DocumentCount(), 0u);
}

}  // namespace
}  // namespace svgloom
