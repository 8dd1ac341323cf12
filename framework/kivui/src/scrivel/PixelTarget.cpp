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
        const int pieces = CurvePieces(p0, p1, p2, p3);
        if (pieces > 1) {
            const Cubic cubic(p0, p1, p2, p3);
            const double step = 1.0 / pieces;
            for (int i = 1; i < pieces; ++i) {
                coverage_.LineTo(cubic.At(i * step));
            }
        }
        coverage_.LineTo(p3);
    }
    void End(bool) { coverage_.Close(); }

private:
    Coverage& coverage_;
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

// One colour over the pixels of runs.
class SolidSink {
public:
    SolidSink(const PixelBuffer& buffer, std::uint32_t color)
        : pixels_(buffer.pixels), stride_(buffer.stride), color_(color)
    {
    }

    void Row(int y) { row_ = pixels_ + stride_ * y; }
    void Run(int x, int length, int level)
    {
        std::uint32_t* pixel = row_ + x;
        const auto share = static_cast<std::uint32_t>(level);
        if (length == 1) {
            *pixel = Over(color_, share, *pixel);
            return;
        }
        std::uint32_t* const end = pixel + length;
        const std::uint32_t left = 255 - MultiplyBytes(color_ >> 24, share);
        if (left == 0) {
            std::fill(pixel, end, color_);
            return;
        }
        const WidePixel own = Widen(color_) * share;
        for (; pixel != end; ++pixel) {
            *pixel = DivideAndNarrow(own + Widen(*pixel) * left);
        }
    }

private:
    std::uint32_t* const pixels_;
    const std::ptrdiff_t stride_;
    const std::uint32_t color_;
    std::uint32_t* row_ = nullptr;
};

// The same through the coverage of a clip.
class MaskedSolidSink {
public:
    MaskedSolidSink(const PixelBuffer& buffer, const Mask& mask, std::uint32_t color)
        : pixels_(buffer.pixels), stride_(buffer.stride), mask_(mask), color_(color)
    {
    }

    void Row(int y)
    {
        row_ = pixels_ + stride_ * y;
        y_ = y;
    }
    void Run(int x, int length, int level)
    {
        std::uint32_t* const pixel = row_ + x;
        const std::uint8_t* const mask = mask_.At(x, y_);
        const auto share = static_cast<std::uint32_t>(level);
        for (int i = 0; i < length; ++i) {
            if (mask[i] != 0) {
                pixel[i] = Over(color_, MultiplyBytes(share, mask[i]), pixel[i]);
            }
        }
    }

private:
    std::uint32_t* const pixels_;
    const std::ptrdiff_t stride_;
    const Mask& mask_;
    const std::uint32_t color_;
    std::uint32_t* row_ = nullptr;
    int y_ = 0;
};

// A shader's colours over the pixels of runs, through the coverage of a clip if there is one.
template <class Paint>
class ShaderSink {
public:
    ShaderSink(const PixelBuffer& buffer, const Mask* mask, Paint& paint)
        : pixels_(buffer.pixels), stride_(buffer.stride), mask_(mask), paint_(paint)
    {
    }

    void Row(int y)
    {
        row_ = pixels_ + stride_ * y;
        y_ = y;
        paint_.Row(y);
    }
    void Run(int x, int length, int level)
    {
        std::uint32_t* const pixel = row_ + x;
        const std::uint8_t* const mask = mask_ != nullptr ? mask_->At(x, y_) : nullptr;
        const auto all = static_cast<std::uint32_t>(level);
        for (int i = 0; i < length; ++i) {
            const std::uint32_t share = mask != nullptr ? MultiplyBytes(all, mask[i]) : all;
            if (share != 0) {
                pixel[i] = Over(paint_.At(x + i), share, pixel[i]);
            }
        }
    }

private:
    std::uint32_t* const pixels_;
    const std::ptrdiff_t stride_;
    const Mask* const mask_;
    Paint& paint_;
    std::uint32_t* row_ = nullptr;
    int y_ = 0;
};

// The runs of a clip.
struct RunSink {
    struct Entry {
        int x;
        int y;
        int length;
        int level;
    };

    void Row(int rowY) { y = rowY; }
    void Run(int x, int length, int level)
    {
        entries.push_back({x, y, length, level});
        box = {std::min(box.x0, x), std::min(box.y0, y), std::max(box.x1, x + length),
               std::max(box.y1, y + 1)};
        fullPixels += level == 255 ? length : 0;
    }

    std::vector<Entry>& entries;
    Box box;  // around them
    std::int64_t fullPixels = 0;
    int y = 0;
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
        if (Cover(ObjectOf(path), state_.matrix)) {
            PaintSolid(nonZero, ObjectOf(brush).color);
        }
    }

    void FillPathLinear(const PathInterface& path, const LinearShaderInterface& shader,
                        bool nonZero) override
    {
        const LinearShaderObject& object = ObjectOf(shader);
        const std::optional<DMatrix> toUser = Inverse(state_.matrix);
        if (toUser && !object.colors.empty() && IsFinite(object.start) && IsFinite(object.end)) {
            LinearPaint paint(object, *toUser);
            if (Cover(ObjectOf(path), state_.matrix)) {
                PaintShader(nonZero, paint);
            }
        }
    }

    void FillPathRadial(const PathInterface& path, const RadialShaderInterface& shader,
                        bool nonZero) override
    {
        const RadialShaderObject& object = ObjectOf(shader);
        const std::optional<DMatrix> toUser = Inverse(state_.matrix);
        if (toUser && IsFinite(object.center) && IsFinite(object.edge)) {
            RadialPaint paint(object, *toUser);
            if (Cover(ObjectOf(path), state_.matrix)) {
                PaintShader(nonZero, paint);
            }
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
        PaintSolid(/*nonZero=*/true, penObject.color);
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

    void PaintSolid(bool nonZero, const Color& color);
    template <class Paint>
    void PaintShader(bool nonZero, Paint& paint);

    const PixelBuffer buffer_;
    State state_;
    std::vector<State> saved_;
    Coverage coverage_;
    std::vector<RunSink::Entry> runs_;
};

void PixelSurface::PaintSolid(bool nonZero, const Color& color)
{
    if (state_.mask == nullptr) {
        SolidSink sink(buffer_, ToPixel(color));
        coverage_.Sweep(nonZero, sink);
    } else {
        MaskedSolidSink sink(buffer_, *state_.mask, ToPixel(color));
        coverage_.Sweep(nonZero, sink);
    }
}

template <class Paint>
void PixelSurface::PaintShader(bool nonZero, Paint& paint)
{
    ShaderSink<Paint> sink(buffer_, state_.mask.get(), paint);
    coverage_.Sweep(nonZero, sink);
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
    runs_.clear();
    RunSink sink{runs_, {state_.clip.x1, state_.clip.y1, state_.clip.x0, state_.clip.y0}};
    coverage_.Sweep(nonZero, sink);
    const Box& box = sink.box;
    if (box.IsEmpty()) {
        state_.clip = {};
        state_.mask.reset();
        return;
    }
    const std::int64_t pixels =
        static_cast<std::int64_t>(box.x1 - box.x0) * static_cast<std::int64_t>(box.y1 - box.y0);
    if (sink.fullPixels == pixels) {
        state_.clip = box;  // a rectangle of whole pixels; a mask that there is goes on
        return;
    }
    auto mask = std::make_shared<Mask>();
    mask->box = box;
    mask->levels.resize(static_cast<std::size_t>(pixels));
    for (const RunSink::Entry& run : runs_) {
        std::memset(mask->At(run.x, run.y), run.level, static_cast<std::size_t>(run.length));
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
