#include "svgbridge/SVGBridge.h"

#include "svgbridge/SVGHandler.h"

namespace svgloom {

kivui::svg::ISVGHandler& Handler()
{
    return SVGHandler::Get();
}

void ClearDocuments() noexcept
{
    SVGHandler::Get().Clear();
}

}  // namespace svgloom
