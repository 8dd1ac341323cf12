// A handler without documents, and drawings as lines of text.

#pragma once

#include <gtest/gtest.h>

#include <kivui/ScrivelTargets.h>

#include "svgbridge/SVGHandler.h"
#include "svgbridge/VomSVGDocument.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace svgloom {

/// Looks into the handler, and sets the counter where a test cannot create four billion documents.
class SVGHandlerState {
public:
    static std::uint32_t NextId() { return SVGHandler::Get().nextId_; }
    static void SetNextId(std::uint32_t id) { SVGHandler::Get().nextId_ = id; }
    static std::size_t DocumentCount() { return SVGHandler::Get().documents_.size(); }
};

class BridgeTest : public testing::Test {
protected:
    using Document = boost::intrusive_ptr<kivui::svg::ISVGDocument>;
    using StyleData = boost::intrusive_ptr<kivui::svg::ICSSData>;

    BridgeTest() { Empty(); }
    ~BridgeTest() override { Empty(); }

    static void Empty()
    {
        SVGHandlerState::SetNextId(1);
        SVGHandler::Get().Clear();
    }

    static Document Create(std::string_view svg) { return SVGHandler::Get().CreateDocument(svg); }
    static StyleData Style(std::string_view css) { return SVGHandler::Get().CreateStyleData(css); }

    static std::uint32_t IdOf(const Document& document)
    {
        return dynamic_cast<const VomSVGDocument&>(*document).Id();
    }

    /// What a draw asks the surface to do, without saves and restores; those have to be balanced.
    static std::string Draw(const Document& document, const StyleData& style = {},
                            std::int32_t width = 10, std::int32_t height = 10)
    {
        std::string text;
        int depth = 0;
        const auto target = kivui::scrivel::CreateRecordingTarget([&](std::string_view line) {
            if (line == R"({"op":"save"})") {
                ++depth;
            } else if (line == R"({"op":"restore"})") {
                --depth;
            } else {
                text.append(line).append("\n");
            }
        });
        try {
            SVGHandler::Get().Render(*target, document, style, width, height);
        } catch (const std::exception& error) {
            text.append("error: ").append(error.what()).append("\n");
        }
        EXPECT_EQ(depth, 0);
        return text;
    }
};

}  // namespace svgloom
