// Drawing on pixels: geometry becomes coverage, coverage meets the clip, colours go over what is
// there.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <vector>

#include <kivui/ScrivelTargets.h>

#include "framework/kivui/src/scrivel/Blending.h"
#include "framework/kivui/src/scrivel/ColorRamp.h"
#include "framework/kivui/src/scrivel/Coverage.h"
#include "framework/kivui/src/scrivel/Flattening.h"
#include "framework/kivui/src/scrivel/Geometry.h"
#include "framework/kivui/src/scrivel/Objects.h"
#include "framework/kivui/src/scrivel/Stroking.h"

namespace kivui::scrivel {
namespace {

// The coverage of a clip in a box of its own.
struct Mask {
    Box box;
    std::vector<std::uint8_t> levels;

    const std::uint8_t* At(int x, int y) const
    {
        const auto row = static_cast<std::size_t>(y - box.y0);
        const auto width = static_cast<std::size_t>(box.x1 - box.x0);
        return levels.data() + row * width + static_cast<std::size_t>(x - box.x0);
    }
    std::uint8_t* At(int x, int y)
    {
        return const_cast<std::uint8_t*>(static_cast<const Mask*>(this)->At(x, y));
    }
};

struct State {
    DMatrix matrix;
    Box clip;
    std::shared_ptr<const Mask> mask;  // holds the clip at least; empty: all of the clip is covered
};

// Hands lines to the coverage. The points are already pixels.
class FillSink {
public:
    explicit FillSink(Coverage& coverage) : coverage_(coverage) {}

    void Begin(const DPoint& p) { coverage_.MoveTo(p); }
    void Line(const DPoint& p) { coverage_.LineTo(p); }
    void Curve(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3)
    {
        const int pieces = CurvePieces(p0, p1, p2, p3, DMatrix(), /*halfWidth=*/0);
        for (int i = 1; i < pieces; ++i) {
            coverage_.LineTo(CurvePoint(p0, p1, p2, p3, static_cast<double>(i) / pieces));
        }
        coverage_.LineTo(p3);
    }
    void End(bool) { coverage_.Close(); }

private:
    Coverage& coverage_;
};

class SolidPaint {
public:
    explicit SolidPaint(const Color& color) : pixel_(ToPixel(color)) {}

    static constexpr bool kIsSolid = true;

    void Row(int) {}
    std::uint32_t At(int) const { return pixel_; }

private:
    const std::uint32_t pixel_;
};

class LinearPaint {
public:
    LinearPaint(const LinearShaderObject& shader, const DMatrix& toUser)
        : ramp_(shader.colors, shader.offsets)
    {
        const DPoint start = ToDouble(shader.start);
        const DPoint end = ToDouble(shader.end);
        const double dx = end.x - start.x;
        const double dy = end.y - start.y;
        const double square = dx * dx + dy * dy;
        if (square == 0) {
            origin_ = 1;  // a line without length shows its last colour
            return;
        }
        perX_ = (toUser.a * dx + toUser.b * dy) / square;
        perY_ = (toUser.c * dx + toUser.d * dy) / square;
        const DPoint corner = toUser.Map({0.5, 0.5});
        origin_ = ((corner.x - start.x) * dx + (corner.y - start.y) * dy) / square;
    }

    static constexpr bool kIsSolid = false;

    void Row(int y) { row_ = origin_ + perY_ * y; }
    std::uint32_t At(int x) { return ramp_.At(row_ + perX_ * x); }

private:
    ColorRamp ramp_;
    double origin_ = 0;  // at the first pixel's middle
    double perX_ = 0;
    double perY_ = 0;
    double row_ = 0;
};

class RadialPaint {
public:
    RadialPaint(const RadialShaderObject& shader, const DMatrix& toUser)
        : colors_{shader.inner, shader.outer},
          ramp_(colors_, {0.0f, 1.0f}),
          toUser_(toUser),
          center_(ToDouble(shader.center))
    {
        const DPoint edge = ToDouble(shader.edge);
        const double dx = edge.x - center_.x;
        const double dy = edge.y - center_.y;
        radius_ = std::sqrt(dx * dx + dy * dy);
    }

    static constexpr bool kIsSolid = false;

    void Row(int y) { y_ = y + 0.5; }
    std::uint32_t At(int x)
    {
        const DPoint p = toUser_.Map({x + 0.5, y_});
        const double dx = p.x - center_.x;
        const double dy = p.y - center_.y;
        // A circle without radius shows its outer colour.
        return ramp_.At(radius_ > 0 ? std::sqrt(dx * dx + dy * dy) / radius_ : 1.0);
    }

private:
    const std::vector<Color> colors_;
    ColorRamp ramp_;
    const DMatrix toUser_;
    const DPoint center_;
    double radius_ = 0;
    double y_ = 0;
};

bool IsFinite(const Point& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y);
}

class PixelSurface final : public SurfaceInterface {
public:
    explicit PixelSurface(const PixelBuffer& buffer) : buffer_(buffer)
    {
        state_.clip = {0, 0, buffer.width, buffer.height};
    }

    void FillPath(const PathInterface& path, const BrushInterface& brush, bool nonZero) override
    {
        SolidPaint paint(ObjectOf(brush).color);
        Fill(ObjectOf(path), nonZero, paint);
    }

    void FillPathLinear(const PathInterface& path, const LinearShaderInterface& shader,
                        bool nonZero) override
    {
        const LinearShaderObject& object = ObjectOf(shader);
        const std::optional<DMatrix> toUser = Inverse(state_.matrix);
        if (toUser && !object.colors.empty() && IsFinite(object.start) && IsFinite(object.end)) {
            LinearPaint paint(object, *toUser);
            Fill(ObjectOf(path), nonZero, paint);
        }
    }

    void FillPathRadial(const PathInterface& path, const RadialShaderInterface& shader,
                        bool nonZero) override
    {
        const RadialShaderObject& object = ObjectOf(shader);
        const std::optional<DMatrix> toUser = Inverse(state_.matrix);
        if (toUser && IsFinite(object.center) && IsFinite(object.edge)) {
            RadialPaint paint(object, *toUser);
            Fill(ObjectOf(path), nonZero, paint);
        }
    }

    void StrokePath(const PathInterface& path, const PenInterface& pen) override
    {
        const PathObject& pathObject = ObjectOf(path);
        const PenObject& penObject = ObjectOf(pen);
        if (!IsUsable(state_.matrix) || !Inverse(state_.matrix) || state_.clip.IsEmpty() ||
            !scrivel::IsFinite(pathObject) || !CanDraw(penObject)) {
            return;
        }
        coverage_.Start(state_.clip);
        AddStroke(pathObject, penObject, state_.matrix, coverage_);
        SolidPaint paint(penObject.color);
        Paint(/*nonZero=*/true, paint);
    }

    void ClipPath(const PathInterface& path, bool nonZero, const Matrix* transform) override;

    void Concat(const Matrix& matrix) override
    {
        state_.matrix = Product(ToDouble(matrix), state_.matrix);
    }

    void Save() override { saved_.push_back(state_); }

    void Restore() noexcept override
    {
        if (!saved_.empty()) {
            state_ = std::move(saved_.back());
            saved_.pop_back();
        }
    }

private:
    // Makes `path` the coverage; false if it covers nothing.
    bool Cover(const PathObject& path, const DMatrix& matrix)
    {
        if (!IsUsable(matrix) || state_.clip.IsEmpty() || !scrivel::IsFinite(path)) {
            return false;
        }
        coverage_.Start(state_.clip);
        FillSink sink(coverage_);
        WalkPath(path, matrix, sink);
        return true;
    }

    template <class PaintType>
    void Fill(const PathObject& path, bool nonZero, PaintType& paint)
    {
        if (Cover(path, state_.matrix)) {
            Paint(nonZero, paint);
        }
    }

    template <class PaintType>
    void Paint(bool nonZero, PaintType& paint);

    const PixelBuffer buffer_;
    State state_;
    std::vector<State> saved_;
    Coverage coverage_;
};

template <class PaintType>
void PixelSurface::Paint(bool nonZero, PaintType& paint)
{
    const Mask* const mask = state_.mask.get();
    coverage_.Sweep(nonZero, [&](int x, int y, int length, int level) {
        std::uint32_t* pixel = buffer_.pixels + buffer_.stride * y + x;
        const std::uint8_t* mine = mask != nullptr ? mask->At(x, y) : nullptr;
        const auto all = static_cast<std::uint32_t>(level);
        if constexpr (PaintType::kIsSolid) {
            if (mine == nullptr) {
                const std::uint32_t color = ScalePixel(paint.At(x), all);
                if (color >> 24 == 255) {
                    std::fill(pixel, pixel + length, color);
                    return;
                }
                for (int i = 0; i < length; ++i) {
                    pixel[i] = Over(color, pixel[i]);
                }
                return;
            }
        }
        paint.Row(y);
        for (int i = 0; i < length; ++i) {
            const std::uint32_t own = mine != nullptr ? MultiplyBytes(all, mine[i]) : all;
            if (own != 0) {
                const std::uint32_t color = paint.At(x + i);
                pixel[i] = Over(own == 255 ? color : ScalePixel(color, own), pixel[i]);
            }
        }
    });
}

void PixelSurface::ClipPath(const PathInterface& path, bool nonZero, const Matrix* transform)
{
    const DMatrix matrix =
        transform != nullptr ? Product(ToDouble(*transform), state_.matrix) : state_.matrix;
    if (!Cover(ObjectOf(path), matrix)) {
        state_.clip = {};
        state_.mask.reset();
        return;
    }
    struct Span {
        int x;
        int y;
        int length;
        int level;
    };
    std::vector<Span> spans;
    Box box = {state_.clip.x1, state_.clip.y1, state_.clip.x0, state_.clip.y0};
    std::int64_t fullPixels = 0;
    coverage_.Sweep(nonZero, [&](int x, int y, int length, int level) {
        spans.push_back({x, y, length, level});
        box = {std::min(box.x0, x), std::min(box.y0, y), std::max(box.x1, x + length),
               std::max(box.y1, y + 1)};
        fullPixels += level == 255 ? length : 0;
    });
    if (box.IsEmpty()) {
        state_.clip = {};
        state_.mask.reset();
        return;
    }
    const std::int64_t pixels =
        static_cast<std::int64_t>(box.x1 - box.x0) * static_cast<std::int64_t>(box.y1 - box.y0);
    if (fullPixels == pixels) {
        state_.clip = box;  // a rectangle of whole pixels; a mask that there is goes on
        return;
    }
    auto mask = std::make_shared<Mask>();
    mask->box = box;
    mask->levels.resize(static_cast<std::size_t>(pixels));
    for (const Span& span : spans) {
        std::memset(mask->At(span.x, span.y), span.level, static_cast<std::size_t>(span.length));
    }
    if (state_.mask != nullptr) {
        for (int y = box.y0; y < box.y1; ++y) {
            std::uint8_t* level = mask->At(box.x0, y);
            const std::uint8_t* before = state_.mask->At(box.x0, y);
            for (int x = 0; x < box.x1 - box.x0; ++x) {
                level[x] = static_cast<std::uint8_t>(MultiplyBytes(level[x], before[x]));
            }
        }
    }
    state_.clip = box;
    state_.mask = std::move(mask);
}

class PixelTarget final : public DrawingTarget {
public:
    explicit PixelTarget(const PixelBuffer& buffer) : surface_(buffer) {}

    FactoryInterface& Factory() noexcept override { return factory_; }
    SurfaceInterface& Surface() noexcept override { return surface_; }

private:
    ObjectFactory factory_;
    PixelSurface surface_;
};

}  // namespace

std::unique_ptr<DrawingTarget> CreatePixelTarget(const PixelBuffer& buffer)
{
    const auto isSize = [](int size) { return size >= 1 && size <= kMaxPixels; };
    if (buffer.pixels == nullptr || !isSize(buffer.width) || !isSize(buffer.height) ||
        buffer.stride < buffer.width) {
        return nullptr;
    }
    return std::unique_ptr<DrawingTarget>(new (std::nothrow) PixelTarget(buffer));
}

}  // namespace kivui::scrivel
