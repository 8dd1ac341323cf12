#include "svgloom/renderer/ScrivelSVGRenderer.h"

#include <kivcore/Trace.h>

#include <array>
#include <charconv>
#include <new>
#include <string>
#include <variant>

#include "svgloom/renderer/ScrivelSVGPath.h"
#include "svgloom/renderer/ScrivelSVGTransform.h"

namespace SVGLoom {
namespace {

namespace scrivel = kivui::scrivel;

constinit kivcore::debug::TraceSite traceDraw("SVGLoom.Draw", 6);

// Objects that a document hands back are this renderer's own.
const ScrivelSVGPath& OwnPath(const Path& path)
{
    return static_cast<const ScrivelSVGPath&>(path);
}

const ScrivelSVGTransform& OwnTransform(const Transform& transform)
{
    return static_cast<const ScrivelSVGTransform&>(transform);
}

template <class Interface>
scrivel::SharedPImpl<Interface> Require(Interface* created)
{
    if (created == nullptr) {
        throw std::bad_alloc();
    }
    return scrivel::SharedPImpl<Interface>(created);
}

scrivel::Color WithOpacity(const Color& color, float opacity)
{
    return {color.red, color.green, color.blue, color.alpha * opacity};
}

scrivel::Color ToScrivel(const Color& color)
{
    return {color.red, color.green, color.blue, color.alpha};
}

struct KindRow {
    const char* traceText;
    int coordinates;
};

// By ScrivelSVGPath::Kind, whose order is that of scrivel::SegmentKind.
constexpr KindRow kKindRows[] = {
    {"BuildPath MoveTo: ", 2},
    {"BuildPath LineTo: ", 2},
    {"BuildPath CurveTo: ", 6},
    {"BuildPath ClosePath", 0},
};

// Numbers as "%g" writes them, joined by ", ".
void TraceSegment(ScrivelSVGPath::Kind kind, const float* coordinates)
{
    constexpr int kDigits = 6;
    const KindRow& row = kKindRows[static_cast<std::size_t>(kind)];
    std::string text = row.traceText;
    for (int i = 0; i < row.coordinates; ++i) {
        char buffer[32];
        const auto result =
            std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(coordinates[i]),
                          std::chars_format::general, kDigits);
        text += i == 0 ? "" : ", ";
        text.append(buffer, result.ptr);
    }
    traceDraw.Write(text);
}

// Hands segments on, many at a time.
class SegmentBatch {
public:
    explicit SegmentBatch(scrivel::PathInterface& path) : path_(path) {}

    void Add(ScrivelSVGPath::Kind kind, const float* coordinates)
    {
        if (kindCount_ == kMost) {
            Flush();
        }
        kinds_[kindCount_++] = static_cast<scrivel::SegmentKind>(kind);
        switch (kind) {
            case ScrivelSVGPath::Kind::kMove:
            case ScrivelSVGPath::Kind::kLine:
                AddPoint(coordinates);
                break;
            case ScrivelSVGPath::Kind::kCurve:
                AddPoint(coordinates);
                AddPoint(coordinates + 2);
                AddPoint(coordinates + 4);
                break;
            case ScrivelSVGPath::Kind::kClose:
                break;
        }
    }
    void Flush()
    {
        path_.AddSegments(kinds_.data(), kindCount_, points_.data(), pointCount_);
        kindCount_ = 0;
        pointCount_ = 0;
    }

private:
    static constexpr std::size_t kMost = 32;

    void AddPoint(const float* coordinates)
    {
        points_[pointCount_++] = {coordinates[0], coordinates[1]};
    }

    scrivel::PathInterface& path_;
    std::array<scrivel::SegmentKind, kMost> kinds_;
    std::array<scrivel::Point, 3 * kMost> points_;
    std::size_t kindCount_ = 0;
    std::size_t pointCount_ = 0;
};

struct JoinRow {
    LineJoin join;
    scrivel::LineJoin scrivelJoin;
    const char* traceText;
};

constexpr JoinRow kJoinRows[] = {
    {LineJoin::kRound, scrivel::LineJoin::kTEPRoundJoin,
     "DrawPathInScrivel Stroke - kTEPRoundJoin"},
    {LineJoin::kBevel, scrivel::LineJoin::kTEPBevelJoin,
     "DrawPathInScrivel Stroke - kTEPBevelJoin"},
};

struct CapRow {
    LineCap cap;
    scrivel::LineCap scrivelCap;
    const char* traceText;
};

constexpr CapRow kCapRows[] = {
    {LineCap::kRound, scrivel::LineCap::kTEPRoundCap, "DrawPathInScrivel Stroke - kTEPRoundCap"},
    {LineCap::kSquare, scrivel::LineCap::kTEPSquareCap, "DrawPathInScrivel Stroke - kTEPSquareCap"},
};

scrivel::LineJoin JoinOf(LineJoin join)
{
    for (const JoinRow& row : kJoinRows) {
        if (row.join == join) {
            traceDraw.Report(row.traceText);
            return row.scrivelJoin;
        }
    }
    return scrivel::LineJoin::kTEPMiterJoin;
}

scrivel::LineCap CapOf(LineCap cap)
{
    for (const CapRow& row : kCapRows) {
        if (row.cap == cap) {
            traceDraw.Report(row.traceText);
            return row.scrivelCap;
        }
    }
    return scrivel::LineCap::kTEPButtCap;
}

}  // namespace

// Pops what was pushed, however the drawing ends.
class ScrivelSVGRenderer::PushedState {
public:
    PushedState(std::shared_ptr<ScrivelSVGRenderer> renderer, const GraphicStyle& style)
        : renderer_(std::move(renderer))
    {
        renderer_->PushState(style);
    }
    PushedState(const PushedState&) = delete;
    PushedState& operator=(const PushedState&) = delete;
    ~PushedState() { renderer_->PopState(); }

private:
    const std::shared_ptr<ScrivelSVGRenderer> renderer_;
};

ScrivelSVGRenderer::~ScrivelSVGRenderer()
{
    Unbind();
}

void ScrivelSVGRenderer::Bind(scrivel::DrawingTarget& target) noexcept
{
    Unbind();
    target_ = &target;
}

void ScrivelSVGRenderer::Unbind() noexcept
{
    while (!opacities_.empty()) {
        PopState();
    }
    std::vector<float>().swap(opacities_);
    target_ = nullptr;
}

std::unique_ptr<ImageData> ScrivelSVGRenderer::CreateImageData(std::string_view, ImageFormat)
{
    return std::unique_ptr<ImageData>(new (std::nothrow) ScrivelSVGImageData());
}

std::unique_ptr<Path> ScrivelSVGRenderer::CreatePath()
{
    return std::unique_ptr<Path>(new (std::nothrow) ScrivelSVGPath());
}

std::unique_ptr<Path> ScrivelSVGRenderer::CreatePathOf(const PathSegments& segments)
{
    return ScrivelSVGPath::Create(segments);
}

std::unique_ptr<Transform> ScrivelSVGRenderer::CreateTransform(float a, float b, float c, float d,
                                                               float e, float f)
{
    return std::unique_ptr<Transform>(new (std::nothrow) ScrivelSVGTransform(a, b, c, d, e, f));
}

void ScrivelSVGRenderer::PushState(const GraphicStyle& style)
{
    // The outermost opacity is taken as given.
    opacities_.push_back(opacities_.empty() ? style.opacity : style.opacity * opacities_.back());
    if (target_ == nullptr) {
        return;
    }
    try {
        target_->Surface().Save();
    } catch (...) {
        opacities_.pop_back();
        throw;
    }
    try {
        if (style.transform != nullptr) {
            target_->Surface().Concat(OwnTransform(*style.transform).Matrix());
        }
        if (style.clippingPath != nullptr) {
            Clip(*style.clippingPath);
        }
    } catch (...) {
        PopState();
        throw;
    }
}

void ScrivelSVGRenderer::PopState()
{
    if (opacities_.empty()) {
        return;
    }
    if (target_ != nullptr) {
        target_->Surface().Restore();
    }
    opacities_.pop_back();
}

void ScrivelSVGRenderer::DrawPath(const Path& path, const GraphicStyle& graphic,
                                  const FillStyle& fill, const StrokeStyle& stroke)
{
    if (target_ == nullptr || (!fill.hasFill && !stroke.hasStroke)) {
        return;
    }
    const scrivel::PathP built = BuildPath(&OwnPath(path), /*isTraced=*/true);
    const PushedState state(shared_from_this(), graphic);
    if (fill.hasFill) {
        Fill(*built, fill);
    }
    if (stroke.hasStroke) {
        Stroke(*built, stroke);
    }
}

// Images of documents are not shown. ScrivelSVGRenderer.ImagesAreNotDrawn holds this.
void ScrivelSVGRenderer::DrawImage(const ImageData&, const GraphicStyle&, const Rect&, const Rect&)
{
}

scrivel::PathP ScrivelSVGRenderer::BuildPath(const ScrivelSVGPath* path, bool isTraced) const
{
    scrivel::PathP built = Require(target_->Factory().CreatePath());
    if (path == nullptr) {
        return built;
    }
    const bool traces = isTraced && traceDraw.Enabled();
    SegmentBatch batch(*built);
    path->ForEach([&](ScrivelSVGPath::Kind kind, const float* coordinates) {
        if (traces) {
            TraceSegment(kind, coordinates);
        }
        batch.Add(kind, coordinates);
    });
    batch.Flush();
    return built;
}

void ScrivelSVGRenderer::Clip(const ClippingPath& clip) const
{
    // A clip without content leaves nothing, like an empty path.
    const ScrivelSVGPath* path =
        clip.hasClipContent && clip.path != nullptr ? &OwnPath(*clip.path) : nullptr;
    target_->Surface().ClipPath(
        *BuildPath(path, /*isTraced=*/false), clip.clipRule != FillRule::kEvenOdd,
        clip.transform != nullptr ? &OwnTransform(*clip.transform).Matrix() : nullptr);
}

void ScrivelSVGRenderer::Fill(const scrivel::PathInterface& path, const FillStyle& fill) const
{
    const bool nonZero = fill.fillRule != FillRule::kEvenOdd;
    if (const Color* color = std::get_if<Color>(&fill.paint)) {
        const float opacity = fill.fillOpacity * opacities_.back();
        const scrivel::BrushP brush =
            Require(target_->Factory().CreateSolidBrush(WithOpacity(*color, opacity)));
        target_->Surface().FillPath(path, *brush, nonZero);
    } else if (const Gradient* gradient = std::get_if<Gradient>(&fill.paint)) {
        FillGradient(path, *gradient, nonZero);
    }
}

// No opacity reaches a gradient, neither the fill's nor those of the states: artwork was drawn for
// this. ScrivelSVGRenderer.GradientsTakeNoOpacity holds it.
void ScrivelSVGRenderer::FillGradient(const scrivel::PathInterface& path, const Gradient& gradient,
                                      bool nonZero) const
{
    if (gradient.stops.size() < 2) {
        return;
    }
    const auto map = [&](float x, float y) {
        return gradient.transform != nullptr ? OwnTransform(*gradient.transform).Map(x, y)
                                             : scrivel::Point{x, y};
    };
    if (gradient.type == GradientType::kLinear) {
        std::vector<scrivel::Color> colors;
        std::vector<float> offsets;
        colors.reserve(gradient.stops.size());
        offsets.reserve(gradient.stops.size());
        for (const ColorStop& stop : gradient.stops) {
            colors.push_back(ToScrivel(stop.color));
            offsets.push_back(stop.offset);
        }
        const scrivel::LinearShaderP shader = Require(target_->Factory().CreateLinearShader(
            map(gradient.x1, gradient.y1), map(gradient.x2, gradient.y2), colors.data(),
            offsets.data(), colors.size()));
        target_->Surface().FillPathLinear(path, *shader, nonZero);
    } else if (gradient.type == GradientType::kRadial) {
        // The stops between, all offsets and the focal point are not used, and a gradient transform
        // that stretches unevenly still gives a circle.
        // ScrivelSVGRenderer.RadialGradientsUseFirstAndLastStop holds this.
        const scrivel::RadialShaderP shader = Require(target_->Factory().CreateRadialShader(
            map(gradient.cx, gradient.cy), map(gradient.cx + gradient.r, gradient.cy),
            ToScrivel(gradient.stops[0].color), ToScrivel(gradient.stops.Last().color)));
        target_->Surface().FillPathRadial(path, *shader, nonZero);
    }
}

void ScrivelSVGRenderer::Stroke(const scrivel::PathInterface& path, const StrokeStyle& stroke) const
{
    const Color* color = std::get_if<Color>(&stroke.paint);
    if (const Gradient* gradient = std::get_if<Gradient>(&stroke.paint)) {
        // A pen has one colour: that of the first stop.
        color = gradient->stops.empty() ? nullptr : &gradient->stops[0].color;
    }
    if (color == nullptr) {
        return;
    }
    const float opacity = stroke.strokeOpacity * opacities_.back();
    const scrivel::PenP pen =
        Require(target_->Factory().CreatePen(WithOpacity(*color, opacity), stroke.lineWidth));
    pen->SetMiterLimit(stroke.miterLimit);
    if (!stroke.dashArray.empty()) {
        // The dash offset is not applied. ScrivelSVGRenderer.Strokes holds this.
        pen->SetDashPattern(stroke.dashArray.data(), stroke.dashArray.size());
    }
    pen->SetLineJoin(JoinOf(stroke.lineJoin));
    pen->SetLineCap(CapOf(stroke.lineCap));
    target_->Surface().StrokePath(path, *pen);
}

}  // namespace SVGLoom
