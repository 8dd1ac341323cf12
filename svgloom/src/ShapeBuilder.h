// The shapes, and the lengths that they are made of.

#pragma once

#include <cmath>
#include <memory>

#include "svgloom/renderer/SVGRenderer.h"
#include "svgloom/src/Attributes.h"
#include "svgloom/src/ElementNames.h"

namespace SVGLoom {

/// Whether a length counts as there.
inline bool IsTiny(float value)
{
    constexpr float kEpsilon = 1.1920929e-07f;
    return std::abs(value) < kEpsilon;
}

/// Reads attributes as lengths. Percentages are of the viewBox, in the direction of the attribute.
class LengthReader {
public:
    /// `viewBox` has to stand as long as this object.
    explicit LengthReader(const Rect& viewBox) : viewBox_(viewBox) {}

    /// Writes `value` if the attribute is there and can be read, and tells whether it did.
    bool Read(const Attributes& attributes, AttributeName name, float& value) const;
    /// `otherwise` where it is not there or cannot be read.
    float Get(const Attributes& attributes, AttributeName name, float otherwise) const
    {
        Read(attributes, name, otherwise);
        return otherwise;
    }

private:
    const Rect& viewBox_;
};

/// Builds the path of a shape.
///
/// @param name the element's; any that is no shape gives an empty pointer, and so does a shape
///             without extent (a rect, circle or ellipse) or without a point (a polygon or
///             polyline)
/// @throws std::bad_alloc
std::unique_ptr<Path> BuildShape(ElementName name, const Attributes& attributes,
                                 const Rect& viewBox, SVGRenderer& renderer);

}  // namespace SVGLoom
