// The 2-D drawing layer: a target hands out a factory, which makes paths, pens, brushes and
// shaders, and a surface, which draws with them.
//
// Points are row vectors: x' = x*a + y*c + e, y' = x*b + y*d + f. Numbers are 32-bit floats in user
// units, colours red, green, blue and alpha in 0..1, not premultiplied. The operations of the
// interfaces stand in their table in the order of declaration, which is fixed; new ones go to the
// end. A target and all that its factory made are used by one thread at a time, and a surface takes
// only objects of its own target's factory. Those objects may outlive the target.

#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include <kivui/Export.h>

namespace kivui::scrivel {

struct Point {
    float x = 0;
    float y = 0;

    friend bool operator==(const Point&, const Point&) = default;
};

struct Color {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;

    friend bool operator==(const Color&, const Color&) = default;
};

struct Matrix {
    float a = 1;
    float b = 0;
    float c = 0;
    float d = 1;
    float e = 0;
    float f = 0;

    friend bool operator==(const Matrix&, const Matrix&) = default;
};

enum class LineJoin : std::uint32_t { kTEPMiterJoin, kTEPRoundJoin, kTEPBevelJoin };
enum class LineCap : std::uint32_t { kTEPButtCap, kTEPRoundCap, kTEPSquareCap };

/// What is held by reference. A factory's objects begin with one reference, the caller's.
class KIVUI_API SharedInterface {
public:
    SharedInterface() = default;
    SharedInterface(const SharedInterface&) = delete;
    SharedInterface& operator=(const SharedInterface&) = delete;
    virtual ~SharedInterface();

    virtual void AddReference() const noexcept = 0;
    /// The last reference destroys the object.
    virtual void Release() const noexcept = 0;
};

/// A move or line has one point, a curve three, a close none.
enum class SegmentKind : std::uint8_t { kMove, kLine, kCurve, kClose };

/// A list of segments. A line or curve without a current point begins where it would lead first;
/// one behind a close begins at the closed part's start. Appending throws std::bad_alloc.
class KIVUI_API PathInterface : public SharedInterface {
public:
    virtual void MoveTo(float x, float y) = 0;
    virtual void LineTo(float x, float y) = 0;
    /// A cubic curve to (x, y).
    virtual void CurveTo(float x1, float y1, float x2, float y2, float x, float y) = 0;
    virtual void Close() = 0;
    /// Many at once, or none where memory runs out: `kinds` and the points that belong to them.
    virtual void AddSegments(const SegmentKind* kinds, std::size_t kindCount, const Point* points,
                             std::size_t pointCount) = 0;
};

/// Begins with miter joins of limit 4, butt caps and a solid line.
class KIVUI_API PenInterface : public SharedInterface {
public:
    /// Joins whose length is above `limit` times the width are cut to bevels.
    virtual void SetMiterLimit(float limit) = 0;
    /// Lengths of dashes and gaps in turn, copied. Each part of a path begins the pattern anew; an
    /// odd number of lengths goes round twice. Throws std::bad_alloc.
    ///
    /// The line stays solid for a negative length, a sum that is not finite and above 0, or a
    /// pattern that would cut one stroke into more than 1,000,000 dashes.
    virtual void SetDashPattern(const float* lengths, std::size_t count) = 0;
    virtual void SetLineJoin(LineJoin join) = 0;
    virtual void SetLineCap(LineCap cap) = 0;
};

/// One colour for all of a filled path.
class KIVUI_API BrushInterface : public SharedInterface {};
/// Colours that change along a line.
class KIVUI_API LinearShaderInterface : public SharedInterface {};
/// Colours that change with the distance from a point.
class KIVUI_API RadialShaderInterface : public SharedInterface {};

/// Holds one reference, or none.
template <class Interface>
class SharedPImpl {
public:
    SharedPImpl() = default;
    /// Takes over the reference that a create operation hands out.
    explicit SharedPImpl(Interface* created) noexcept : object_(created) {}
    SharedPImpl(const SharedPImpl& other) noexcept : object_(other.object_)
    {
        if (object_ != nullptr) {
            object_->AddReference();
        }
    }
    SharedPImpl(SharedPImpl&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    SharedPImpl& operator=(SharedPImpl other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }
    ~SharedPImpl()
    {
        if (object_ != nullptr) {
            object_->Release();
        }
    }

    explicit operator bool() const noexcept { return object_ != nullptr; }
    Interface& operator*() const noexcept { return *object_; }
    Interface* operator->() const noexcept { return object_; }

private:
    Interface* object_ = nullptr;
};

using PathP = SharedPImpl<PathInterface>;
using PenP = SharedPImpl<PenInterface>;
using BrushP = SharedPImpl<BrushInterface>;
using LinearShaderP = SharedPImpl<LinearShaderInterface>;
using RadialShaderP = SharedPImpl<RadialShaderInterface>;

/// Makes what a surface draws with. Each operation hands out one reference, which is the caller's;
/// null means that memory ran out.
class KIVUI_API FactoryInterface {
public:
    FactoryInterface() = default;
    FactoryInterface(const FactoryInterface&) = delete;
    FactoryInterface& operator=(const FactoryInterface&) = delete;
    virtual ~FactoryInterface();

    virtual PathInterface* CreatePath() = 0;
    virtual BrushInterface* CreateSolidBrush(const Color& color) = 0;
    /// `offsets` (0..1) stand in rising order; one that falls counts as the largest before it.
    /// Before the first and behind the last offset their colours go on. Both arrays are copied.
    virtual LinearShaderInterface* CreateLinearShader(const Point& start, const Point& end,
                                                      const Color* colors, const float* offsets,
                                                      std::size_t count) = 0;
    /// From `inner` at `center` to `outer` on the circle through `edge` and beyond it.
    virtual RadialShaderInterface* CreateRadialShader(const Point& center, const Point& edge,
                                                      const Color& inner, const Color& outer) = 0;
    /// Pixels draw nothing with a width that is not above 0.
    virtual PenInterface* CreatePen(const Color& color, float width) = 0;
};

/// Draws under a current transform and clip, both of which Save keeps and Restore brings back. All
/// operations but Restore throw std::bad_alloc.
class KIVUI_API SurfaceInterface {
public:
    SurfaceInterface() = default;
    SurfaceInterface(const SurfaceInterface&) = delete;
    SurfaceInterface& operator=(const SurfaceInterface&) = delete;
    virtual ~SurfaceInterface();

    /// Open parts of the path are closed. `nonZero` false is the even-odd rule.
    virtual void FillPath(const PathInterface& path, const BrushInterface& brush, bool nonZero) = 0;
    virtual void FillPathLinear(const PathInterface& path, const LinearShaderInterface& shader,
                                bool nonZero) = 0;
    virtual void FillPathRadial(const PathInterface& path, const RadialShaderInterface& shader,
                                bool nonZero) = 0;
    virtual void StrokePath(const PathInterface& path, const PenInterface& pen) = 0;
    /// Leaves of the clip what lies in the path, antialiased. `transform` acts on the path before
    /// the current transform; null is none. A path without area leaves nothing.
    virtual void ClipPath(const PathInterface& path, bool nonZero, const Matrix* transform) = 0;
    /// The new transform is `matrix` times the current one: it acts first.
    virtual void Concat(const Matrix& matrix) = 0;
    virtual void Save() = 0;
    /// Undoes the last open Save; does nothing without one.
    virtual void Restore() noexcept = 0;
};

/// Owns its factory and its surface.
class KIVUI_API DrawingTarget {
public:
    DrawingTarget() = default;
    DrawingTarget(const DrawingTarget&) = delete;
    DrawingTarget& operator=(const DrawingTarget&) = delete;
    virtual ~DrawingTarget();

    virtual FactoryInterface& Factory() noexcept = 0;
    virtual SurfaceInterface& Surface() noexcept = 0;
};

}  // namespace kivui::scrivel
