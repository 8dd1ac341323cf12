// The recording SVG handler.

#include "api/tests/RecordingFramework.h"

#include "svgbridge/SVGBridge.h"

namespace kivui::svg {

ISVGHandler::ISVGHandler() = default;

ISVGHandler::~ISVGHandler() = default;

}  // namespace kivui::svg

namespace svgloom {

namespace {

class RecordingHandler final : public kivui::svg::ISVGHandler {
public:
    boost::intrusive_ptr<kivui::svg::ISVGDocument> CreateDocument(std::string_view) override
    {
        return {};
    }
    boost::intrusive_ptr<kivui::svg::ICSSData> CreateStyleData(std::string_view) override
    {
        return {};
    }
    void Render(kivui::scrivel::DrawingTarget&, boost::intrusive_ptr<kivui::svg::ISVGDocument>,
                boost::intrusive_ptr<kivui::svg::ICSSData>, std::int32_t, std::int32_t) override
    {
    }
};

}  // namespace

kivui::svg::ISVGHandler& Handler()
{
    static RecordingHandler handler;
    recording::Call("svgloom::Handler");
    recording::Get().svgHandler = static_cast<kivui::svg::ISVGHandler*>(&handler);
    return handler;
}

void ClearDocuments() noexcept
{
    recording::Note("svgloom::ClearDocuments");
}

}  // namespace svgloom
