// The centre is found from the end points, then the arc is cut into pieces of at most 120 degrees,
// each a cubic curve with its control points on the tangents. All steps are in 32-bit floats and in
// this order, so that every platform gets the same bits.

#include "svgloom/src/ArcToCurve.h"

#include <kivcore/Trace.h>

#include <cmath>
#include <cstring>
#include <string_view>

#include "svgloom/src/ArcAngles.h"
#include "svgloom/src/PathBuffer.h"
#include "svgloom/src/TraceText.h"

namespace SVGLoom {

namespace {

using lanes::Four;
using lanes::FourBits;

constexpr float kPieceAngle = 2.0943952f;  // 120 degrees
constexpr float kDegreesPerRadian = 180.0f / kPi;

constinit kivcore::debug::TraceSite traceSite("SVGLoom.Parse", 6);

/// Both twice, x and y.
struct Ellipse {
    Four center;
    Four radii;
};

/// Two ends of an arc or piece.
struct Span {
    Four points;
    Four directions;  // sine and cosine of each
    float startAngle;
    float endAngle;
};

/// Enlarges `radii` that do not reach from one point to the other, and finds the centre.
[[gnu::always_inline]] inline Ellipse FindEllipse(const Four& points, Four radii, bool isNegative)
{
    const Four others = __builtin_shufflevector(points, points, 2, 3, 0, 1);
    const Four d = (points - others) * 0.5f;
    const Four d2 = d * d;
    const Four parts = d2 / (radii * radii);
    const float lambda = parts[0] + parts[1];
    if (lambda > 1) {
        radii *= std::sqrt(lambda);
    }
    const Four radii2 = radii * radii;
    const Four first = radii2 * __builtin_shufflevector(d2, d2, 1, 0, 3, 2);
    const Four second = __builtin_shufflevector(first, first, 1, 0, 3, 2);
    const Four product = radii2 * __builtin_shufflevector(radii2, radii2, 1, 0, 3, 2);
    const Four quotient = (product - first - second) / (second + first);
    const Four root = lanes::SquareRoot(lanes::Size(quotient));
    // The differences of the end point have the other sign.
    static constexpr FourBits kSigns[] = {{0, INT32_MIN, INT32_MIN, 0},
                                          {INT32_MIN, 0, 0, INT32_MIN}};
    const Four c = lanes::Negated(__builtin_shufflevector(root, root, 0, 0, 0, 0),
                                  kSigns[isNegative ? 1 : 0]) *
                   radii;
    return {c * __builtin_shufflevector(d, d, 1, 0, 3, 2) /
                    __builtin_shufflevector(radii, radii, 1, 0, 3, 2) +
                (points + others) * 0.5f,
            radii};
}

/// Where the ends lie on the ellipse.
[[gnu::always_inline]] inline ArcEnds FindEnds(const Four& points, const Ellipse& ellipse,
                                               bool sweep)
{
    Four sines = (points - ellipse.center) / ellipse.radii;
    sines = sines < -1.0f ? Four{} - 1.0f : sines;
    sines = sines > 1.0f ? Four{} + 1.0f : sines;
    const FourBits areLeft = points < ellipse.center;
    return {__builtin_shufflevector(sines, Four{}, 1, 3, 4, 5),
            __builtin_shufflevector(areLeft, FourBits{}, 0, 2, 4, 5), sweep};
}

/// The control points of one piece.
[[gnu::always_inline]] inline Four AddArcToCurve(const Span& span, const Four& radii)
{
    constexpr Four kTangents = {-1, 1, 1, -1};
    const float k = (4.0f / 3.0f) * Tangent((span.endAngle - span.startAngle) / 4);
    return span.points + k * radii * (span.directions * kTangents);
}

/// Whether there is another piece behind the one from `angle`. Both angles are within one turn of
/// each other, so that happens three times at most; for angles that are no numbers, never.
bool HasMore(float angle, float endAngle)
{
    return std::abs(endAngle - angle) > kPieceAngle;
}

float AngleBehind(float angle, float endAngle, bool sweep)
{
    static constexpr float kSteps[] = {-kPieceAngle, kPieceAngle};
    return angle + kSteps[static_cast<int>(sweep) & static_cast<int>(endAngle > angle)];
}

std::size_t CountPieces(const Span& arc, bool sweep)
{
    std::size_t count = 1;
    for (float angle = arc.startAngle;
         count < ArcQueue::kMostPieces && HasMore(angle, arc.endAngle); ++count) {
        angle = AngleBehind(angle, arc.endAngle, sweep);
    }
    return count;
}

/// Calls visit(piece) for each of as many pieces as there are.
template <class Visit>
[[gnu::always_inline]] inline void ForEachPiece(const Span& arc, const Ellipse& ellipse, bool sweep,
                                                std::size_t count, Visit&& visit)
{
    Span piece = arc;
    for (std::size_t i = 1; i < count; ++i) {
        piece.endAngle = AngleBehind(piece.startAngle, arc.endAngle, sweep);
        const auto [sine, cosine] = SineAndCosine(piece.endAngle);
        const Four directions = {sine, cosine, sine, cosine};
        const Four points = ellipse.center + ellipse.radii * Four{cosine, sine, cosine, sine};
        piece.points = __builtin_shufflevector(piece.points, points, 0, 1, 4, 5);
        piece.directions = __builtin_shufflevector(piece.directions, directions, 0, 1, 4, 5);
        visit(piece);
        piece = {points, directions, piece.endAngle, arc.endAngle};
    }
    piece.points = __builtin_shufflevector(piece.points, arc.points, 0, 1, 6, 7);
    piece.directions = __builtin_shufflevector(piece.directions, arc.directions, 0, 1, 6, 7);
    piece.endAngle = arc.endAngle;
    visit(piece);
}

void TraceArc(const Point& from, const Arc& arc)
{
    const float large = arc.large ? 1 : 0;
    const float sweep = arc.sweep ? 1 : 0;
    traceSite.Write("ArcToCurve ----------------------------------------------");
    TraceText text("parsePathString ArcToCurve: rx=");
    text << arc.rx << " ry=" << arc.ry << " large=" << large << " sweep=" << sweep;
    text << " previous=(";
    text.Values(from.x, from.y) << ')' << " next=(";
    text.Values(arc.to.x, arc.to.y) << ')';
    traceSite.Write(text.Text());
    traceSite.Write(
        TraceText("parsePathString ELLIPTICAL: ")
            .Values(arc.rx, arc.ry, arc.rotationDegrees, large, sweep, arc.to.x, arc.to.y)
            .Text());
}

void TracePair(std::string_view opening, float first, float second)
{
    traceSite.Write((TraceText(opening).Values(first, second) << ')').Text());
}

void TraceEllipse(const Ellipse& ellipse, float angle, float endAngle)
{
    traceSite.Write(
        (TraceText("ArcToCurve final radii: rx=") << ellipse.radii[0] << " ry=" << ellipse.radii[1])
            .Text());
    TracePair("parsePathString ArcToCurve: center(", ellipse.center[0], ellipse.center[1]);
    TracePair("parsePathString ArcToCurve: radius(", ellipse.radii[0], ellipse.radii[1]);
    TracePair("parsePathString ArcToCurve: angles(", angle, endAngle);
    TracePair("parsePathString ArcToCurve: anglesF(", angle * kDegreesPerRadian,
              endAngle * kDegreesPerRadian);
}

void TracePiece(const Span& piece, const Four& controls)
{
    traceSite.Write((TraceText("AddArcToCurve startAngle=")
                     << piece.startAngle << " endAngle=" << piece.endAngle)
                        .Text());
    TraceText text("AddArcToCurve startCP=(");
    text.Values(controls[0], controls[1]) << ") endCP=(";
    text.Values(controls[2], controls[3]) << ") EndPoint=(";
    text.Values(piece.points[2], piece.points[3]) << ')';
    traceSite.Write(text.Text());
}

std::uint8_t* WriteCurve(const Four& controls, const Four& points, std::uint8_t* at)
{
    *at = static_cast<std::uint8_t>(PathSegments::Kind::kCurve);
    std::memcpy(at + 1, &controls, sizeof controls);
    const float to[] = {points[2], points[3]};
    std::memcpy(at + 1 + sizeof controls, to, sizeof to);
    return at + PathSegments::kMaxBytes;
}

}  // namespace

void ArcToCurve(const Point& from, const Arc& arc, PathBuffer& path)
{
    const bool isTracing = traceSite.Enabled();
    if (isTracing) {
        TraceArc(from, arc);
    }
    const Four points = {from.x, from.y, arc.to.x, arc.to.y};
    const Ellipse ellipse =
        FindEllipse(points, Four{arc.rx, arc.ry, arc.rx, arc.ry}, arc.large == arc.sweep);
    const ArcAngles of = AnglesOf(FindEnds(points, ellipse, arc.sweep));
    if (isTracing) {
        TraceEllipse(ellipse, of.angles[0], of.angles[1]);
    }
    const Span span = {points, of.directions, of.angles[0], of.angles[1]};
    ForEachPiece(span, ellipse, arc.sweep, CountPieces(span, arc.sweep), [&](const Span& piece) {
        const Four controls = AddArcToCurve(piece, ellipse.radii);
        if (isTracing) {
            TracePiece(piece, controls);
        }
        path.CurveTo({controls[0], controls[1]}, {controls[2], controls[3]},
                     {piece.points[2], piece.points[3]});
        if (isTracing) {
            traceSite.Write(TraceText("parsePathString ArcToCurve: controlPoint: ")
                                .Values(controls[2], controls[3])
                                .Text());
        }
    });
}

void ArcQueue::FindAngles()
{
    for (std::size_t i = 0; i < count_; ++i) {
        Item& item = items_[i];
        const Ellipse ellipse = FindEllipse(item.points, item.radii, item.large == item.sweep);
        item.center = ellipse.center;
        item.radii = ellipse.radii;
    }
    for (std::size_t i = 0; i < count_; ++i) {
        Item& item = items_[i];
        const ArcAngles of = AnglesOf(FindEnds(item.points, {item.center, item.radii}, item.sweep));
        item.angles = of.angles;
        item.directions = of.directions;
    }
}

std::uint8_t* ArcQueue::Write(std::uint8_t* block, std::uint8_t* end)
{
    FindAngles();
    std::ptrdiff_t moved = 0;
    for (std::size_t i = 0; i < count_; ++i) {
        Item& item = items_[i];
        const Span span = {item.points, item.directions, item.angles[0], item.angles[1]};
        const Ellipse ellipse = {item.center, item.radii};
        const std::size_t pieces = CountPieces(span, item.sweep);
        std::uint8_t* at = block + item.offset + moved;
        if (pieces != item.pieces) [[unlikely]] {
            const std::uint8_t* const behind = at + item.pieces * PathSegments::kMaxBytes;
            std::uint8_t* const to = at + pieces * PathSegments::kMaxBytes;
            std::memmove(to, behind, static_cast<std::size_t>(end - behind));
            moved += to - behind;
            end += to - behind;
            item.pieces = pieces;
        }
        ForEachPiece(span, ellipse, item.sweep, item.pieces, [&](const Span& piece) {
            at = WriteCurve(AddArcToCurve(piece, ellipse.radii), piece.points, at);
        });
    }
    count_ = 0;
    return end;
}

}  // namespace SVGLoom
