#include "svgbridge/VomSVGDocument.h"

#include "svgbridge/SVGHandler.h"

#include <cmath>

namespace svgloom {

namespace {

float SizeOf(std::uint32_t id, float SVGLoom::Rect::*side)
{
    const SVGLoom::SVGDocumentImpl* const document = SVGHandler::Get().FindDocument(id);
    const float size = document != nullptr ? std::trunc(document->ViewBox().*side) : 0.0f;
    return std::isfinite(size) ? size : 0.0f;
}

}  // namespace

VomSVGDocument::~VomSVGDocument()
{
    SVGHandler::Get().Forget(id_);
}

float VomSVGDocument::Width() const
{
    return SizeOf(id_, &SVGLoom::Rect::width);
}

float VomSVGDocument::Height() const
{
    return SizeOf(id_, &SVGLoom::Rect::height);
}

}  // namespace svgloom
