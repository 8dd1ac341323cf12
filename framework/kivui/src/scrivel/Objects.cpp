#include "framework/kivui/src/scrivel/Objects.h"

#include <new>

namespace kivui::scrivel {

SharedInterface::~SharedInterface() = default;
FactoryInterface::~FactoryInterface() = default;
SurfaceInterface::~SurfaceInterface() = default;
DrawingTarget::~DrawingTarget() = default;

PathInterface* ObjectFactory::CreatePath()
{
    return new (std::nothrow) PathObject();
}

BrushInterface* ObjectFactory::CreateSolidBrush(const Color& color)
{
    return new (std::nothrow) BrushObject(color);
}

LinearShaderInterface* ObjectFactory::CreateLinearShader(const Point& start, const Point& end,
                                                         const Color* colors, const float* offsets,
                                                         std::size_t count)
{
    try {
        return new LinearShaderObject(start, end, colors, offsets, count);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

RadialShaderInterface* ObjectFactory::CreateRadialShader(const Point& center, const Point& edge,
                                                         const Color& inner, const Color& outer)
{
    return new (std::nothrow) RadialShaderObject(center, edge, inner, outer);
}

PenInterface* ObjectFactory::CreatePen(const Color& color, float width)
{
    return new (std::nothrow) PenObject(color, width);
}

}  // namespace kivui::scrivel
