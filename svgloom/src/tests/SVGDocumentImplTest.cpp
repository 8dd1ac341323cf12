#include "svgloom/src/SVGDocumentImpl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "framework/kivcore/tests/VirtualSlot.h"
#include "svgloom/src/tests/DocumentSupport.h"
#include "svgloom/src/tests/TraceListener.h"

namespace SVGLoom {
namespace {

using testing_support::ChildAt;
using testing_support::RecordingRenderer;
using testing_support::TestDocument;
using testing_support::Text;
using testing_support::TraceListener;

TEST(SVGDocumentImpl, AnEmptyOneDrawsItsRoot)
{
    auto renderer = std::make_shared<RecordingRenderer>();
    SVGDocumentImpl document(renderer);
    EXPECT_EQ(Text(document.ViewBox()), "0 0 320 200");
    EXPECT_TRUE(document.Root().children.empty());
    EXPECT_TRUE(document.Ids().empty());
    document.Parse(nullptr);
    document.Render({}, 320, 200);
    EXPECT_EQ(renderer->lines,
              (std::vector<std::string>{"push transform=[Translate(-0, -0); Scale(1, 1)]", "push",
                                        "pop", "pop"}));
}

TEST(SVGDocumentImpl, TheSmallerScaleCountsForBothDirections)
{
    struct Case {
        std::string_view viewBox;
        float width;
        float height;
        std::string_view want;
    };
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr Case kCases[] = {
        {"0 0 200 200", 100, 50, "Translate(-0, -0); Scale(0.25, 0.25)"},
        {"0 0 200 200", 50, 100, "Translate(-0, -0); Scale(0.25, 0.25)"},
        {"3 7 24 24", 48, 96, "Translate(-3, -7); Scale(2, 2)"},
        {"-3 -7 24 24", 24, 24, "Translate(3, 7); Scale(1, 1)"},
        // Passed on as it comes.
        {"0 0 0 24", 24, 24, "Translate(-0, -0); Scale(1, 1)"},
        {"0 0 0 0", 24, 24, "Translate(-0, -0); Scale(inf, inf)"},
        {"0 0 -24 24", 24, 24, "Translate(-0, -0); Scale(-1, -1)"},
        {"0 0 24 24", 0, 24, "Translate(-0, -0); Scale(0, 0)"},
        {"0 0 24 24", kInfinity, 24, "Translate(-0, -0); Scale(1, 1)"},
    };
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.viewBox);
        TestDocument test("<svg viewBox='" + std::string(row.viewBox) + "'/>");
        test.document->Render({}, row.width, row.height);
        ASSERT_FALSE(test.renderer->lines.empty());
        EXPECT_EQ(test.renderer->lines[0], "push transform=[" + std::string(row.want) + "]");
    }
}

TEST(SVGDocumentImpl, OneElementById)
{
    TestDocument test(
        "<svg viewBox='0 0 30 40'><g id='g'><path id='a' d='M1 2'/></g>"
        "<defs><path id='d' d='M3 4'/></defs><path id='a' d='M5 6'/></svg>");
    EXPECT_EQ(test.Draw("a"), "path M(1, 2) fill=0 0 0 1");
    EXPECT_EQ(test.Draw("g"), "push | path M(1, 2) fill=0 0 0 1 | pop");
    EXPECT_EQ(test.Draw("d"), "path M(3, 4) fill=0 0 0 1");
    for (const std::string_view id : {"x", "", "A"}) {
        test.Draw(id);
        EXPECT_TRUE(test.renderer->lines.empty()) << id;
    }
    EXPECT_EQ(test.document->Ids().size(), 3u);
}

TEST(SVGDocumentImpl, EmptyIdsLeadNowhere)
{
    TestDocument test("<svg><path id=''/><path/></svg>");
    EXPECT_TRUE(test.document->Ids().empty());
}

TEST(SVGDocumentImpl, AnUnknownIdDetachesTheSheetToo)
{
    TestDocument test("<svg viewBox='0 0 1 1'><path class='a'/></svg>");
    StyleSheet sheet;
    sheet.Add(".a{fill:red;}");
    test.document->AttachStyleSheet(&sheet);
    test.Draw("x");
    EXPECT_EQ(test.Draw(), "push | push | path  fill=0 0 0 1 | pop | pop");
}

TEST(SVGDocumentImpl, KindsAndSlots)
{
    using Document = SVGDocumentImpl;
    EXPECT_EQ(static_cast<unsigned>(Document::ElementKind::kImage), 0u);
    EXPECT_EQ(static_cast<unsigned>(Document::ElementKind::kGraphic), 1u);
    EXPECT_EQ(static_cast<unsigned>(Document::ElementKind::kGroup), 2u);
    EXPECT_EQ(static_cast<unsigned>(Document::ElementKind::kReference), 3u);
    EXPECT_EQ(kivcore::testing_support::VirtualSlot(&Document::Element::Kind), 1);

    const DocumentGraphicStyle style;
    EXPECT_EQ(Document::Image(style, {}, nullptr, {}, {}).Kind(), Document::ElementKind::kImage);
    EXPECT_EQ(Document::Graphic(style, {}, {}, {}, nullptr).Kind(),
              Document::ElementKind::kGraphic);
    EXPECT_EQ(Document::Group(style, {}).Kind(), Document::ElementKind::kGroup);
    EXPECT_EQ(Document::Reference(style, {}, {}, {}, "").Kind(), Document::ElementKind::kReference);
}

TEST(SVGDocumentImpl, ElementsKeepTheirClassNames)
{
    const TestDocument test("<svg><g class='b a  b\ta'/><g/></svg>");
    const auto& svg = static_cast<const SVGDocumentImpl::Group&>(ChildAt(test.document->Root(), 0));
    const ClassSet& classes = ChildAt(svg, 0).classes;
    EXPECT_EQ(std::vector<std::string>(classes.begin(), classes.end()),
              (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(ChildAt(svg, 1).classes.empty());
}

TEST(SVGDocumentImpl, SymbolsGoWithTheDocument)
{
    std::vector<std::weak_ptr<SVGDocumentImpl::Element>> symbols;
    for (const std::string_view content :
         {"<symbol id='s'><path/></symbol>", "<symbol id='s'><symbol id='t'/></symbol>",
          "<symbol id='s'/><path clip-path='x'/>",
          "<symbol id='s'><path clip-path='x'/></symbol>"}) {
        auto renderer = std::make_shared<RecordingRenderer>();
        auto document = std::make_unique<SVGDocumentImpl>(renderer);
        std::string text = "<svg>" + std::string(content) + "</svg>";
        const xml::RapidXMLDocument tree(text.data());
        try {
            document->Parse(tree.GetFirstNode().get());
        } catch (const std::out_of_range&) {
            EXPECT_NE(content.find("clip-path"), std::string_view::npos);
        }
        symbols.push_back(*document->Ids().Find("s"));
        EXPECT_FALSE(symbols.back().expired());
        document.reset();
        EXPECT_TRUE(symbols.back().expired()) << content;
    }
    // Without an id only the group itself holds it; leak checkers see what stays.
    TestDocument("<svg><symbol><path/></symbol></svg>");
}

TEST(SVGDocumentImpl, ARendererThatMakesNothingIsOutOfMemory)
{
    const std::string svg =
        "<svg><path transform='scale(1)'/><use href='#a' x='1'/><symbol viewBox='1 2 3 4'/>"
        "<linearGradient gradientTransform='scale(2)'/><rect width='1' height='1'/></svg>";
    auto counting = std::make_shared<RecordingRenderer>();
    CreateDocument(svg, counting);
    const std::size_t creations = counting->creations;
    EXPECT_EQ(creations, 6u);
    for (std::size_t i = 1; i <= creations; ++i) {
        auto renderer = std::make_shared<RecordingRenderer>();
        renderer->failingCreation = i;
        EXPECT_THROW(CreateDocument(svg, renderer), std::bad_alloc) << i;
    }
    auto renderer = std::make_shared<RecordingRenderer>();
    const auto document = CreateDocument("<svg/>", renderer);
    renderer->failingCreation = renderer->creations + 1;
    EXPECT_THROW(document->Render({}, 1, 1), std::bad_alloc);
    EXPECT_EQ(renderer->depth, 0);
}

TEST(CreateDocument, MalformedXmlGivesAnEmptyDocument)
{
    TraceListener listener("SVGLoom.Parse", 6);
    std::string error;
    auto renderer = std::make_shared<RecordingRenderer>();
    const auto document = CreateDocument("<svg viewBox='0 0 1 1'><path></svg>", renderer, &error);
    EXPECT_EQ(error, "invalid closing tag name");
    EXPECT_EQ(listener.messages, std::vector<std::string>{"6 invalid closing tag name"});
    EXPECT_EQ(Text(document->ViewBox()), "0 0 320 200");
    EXPECT_TRUE(document->Root().children.empty());

    CreateDocument("<svg/>", renderer, &error);
    EXPECT_EQ(error, "");
}

TEST(CreateDocument, AnyLengthOfAText)
{
    constexpr std::string_view kText =
        "<svg viewBox='0 0 1 1'><style>.a{fill:red;}</style><g class='a'><path d='M0 "
        "0h1'/></g></svg>";
    for (std::size_t length = 0; length <= kText.size(); ++length) {
        const TestDocument test(kText.substr(0, length));
        EXPECT_EQ(test.document->Root().children.empty(), length != kText.size());
    }
    TestDocument nul(std::string_view("<svg viewBox='0 0 1 1'/>\0<", 26));
    EXPECT_EQ(Text(nul.document->ViewBox()), "0 0 1 1");
}

TEST(CreateDocument, DeepTextsAreRejected)
{
    std::string text = "<svg viewBox='0 0 1 1'>";
    for (int i = 0; i < 511; ++i) {
        text += "<g>";
    }
    std::string tooDeep = text + "<g>";
    for (int i = 0; i < 511; ++i) {
        text += "</g>";
        tooDeep += "</g>";
    }
    const TestDocument deepest(text + "</svg>");
    EXPECT_EQ(Text(deepest.document->ViewBox()), "0 0 1 1");
    const TestDocument rejected(tooDeep + "</g></svg>");
    EXPECT_EQ(Text(rejected.document->ViewBox()), "0 0 320 200");
}

}  // namespace
}  // namespace SVGLoom
