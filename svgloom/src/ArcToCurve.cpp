// The centre is found from the end points, then the arc is cut into pieces of at most 120 degrees,
// each a cubic curve with its control points on the tangents. All steps are in 32-bit floats and in
// this order, so that every platform gets the same bits.

#include "svgloom/src/ArcToCurve.h"

#include <kivcore/Trace.h>

#include <algorithm>
#include <cmath>

#include "svgloom/src/Angles.h"
#include "svgloom/src/TraceText.h"

namespace SVGLoom {

namespace {

constexpr float kPi = 3.1415927f;
constexpr float kTwoPi = 6.2831855f;
constexpr float kPieceAngle = 2.0943952f;  // 120 degrees
constexpr float kDegreesPerRadian = 180.0f / kPi;

constinit kivcore::debug::TraceSite traceSite("SVGLoom.Parse", 6);

struct Ellipse {
    Point center;
    float rx = 0;
    float ry = 0;

    Point At(float sine, float cosine) const
    {
        return {center.x + rx * cosine, center.y + ry * sine};
    }
};

/// A point of the ellipse with its angle.
struct ArcEnd {
    Point point;
    float angle = 0;
    SineCosine of;
};

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

/// Appends one piece and returns its second control point.
Point AddArcToCurve(const Ellipse& ellipse, const ArcEnd& start, const ArcEnd& end, bool tracing,
                    PathBuffer& path)
{
    const float k = (4.0f / 3.0f) * Tangent((end.angle - start.angle) / 4);
    const Point first = {start.point.x - k * ellipse.rx * start.of.sine,
                         start.point.y + k * ellipse.ry * start.of.cosine};
    const Point second = {end.point.x + k * ellipse.rx * end.of.sine,
                          end.point.y - k * ellipse.ry * end.of.cosine};
    if (tracing) {
        traceSite.Write(
            (TraceText("AddArcToCurve startAngle=") << start.angle << " endAngle=" << end.angle)
                .Text());
        TraceText text("AddArcToCurve startCP=(");
        text.Values(first.x, first.y) << ") endCP=(";
        text.Values(second.x, second.y) << ") EndPoint=(";
        text.Values(end.point.x, end.point.y) << ')';
        traceSite.Write(text.Text());
    }
    path.CurveTo(first, second, end.point);
    return second;
}

/// Enlarges radii that do not reach from `from` to `to`, and finds the centre.
Ellipse FindEllipse(const Point& from, const Arc& arc, bool tracing)
{
    Ellipse ellipse{{}, arc.rx, arc.ry};
    float& rx = ellipse.rx;
    float& ry = ellipse.ry;
    const float dx = (from.x - arc.to.x) / 2;
    const float dy = (from.y - arc.to.y) / 2;
    const float lambda = dx * dx / (rx * rx) + dy * dy / (ry * ry);
    if (lambda > 1) {
        const float factor = std::sqrt(lambda);
        rx *= factor;
        ry *= factor;
    }
    if (tracing) {
        traceSite.Write((TraceText("ArcToCurve final radii: rx=") << rx << " ry=" << ry).Text());
    }
    const float rx2 = rx * rx;
    const float ry2 = ry * ry;
    const float dx2 = dx * dx;
    const float dy2 = dy * dy;
    float c = std::sqrt(std::abs((rx2 * ry2 - rx2 * dy2 - ry2 * dx2) / (ry2 * dx2 + rx2 * dy2)));
    if (arc.large == arc.sweep) {
        c = -c;
    }
    ellipse.center = {c * rx * dy / ry + (from.x + arc.to.x) / 2,
                      -c * ry * dx / rx + (from.y + arc.to.y) / 2};
    return ellipse;
}

/// The sine of the angle of a point of the ellipse.
float SineOf(const Point& point, const Ellipse& ellipse)
{
    return std::clamp((point.y - ellipse.center.y) / ellipse.ry, -1.0f, 1.0f);
}

/// The angle of a point, 0 to a whole turn, from the arc sine.
float AngleOf(const Point& point, const Ellipse& ellipse, float angle)
{
    if (point.x < ellipse.center.x) {
        angle = kPi - angle;
    }
    return angle < 0 ? angle + kTwoPi : angle;
}

}  // namespace

void ArcToCurve(const Point& from, const Arc& arc, PathBuffer& path)
{
    const bool tracing = path.IsEachAtOnce() && traceSite.Enabled();
    if (tracing) {
        TraceArc(from, arc);
    }
    const Ellipse ellipse = FindEllipse(from, arc, tracing);
    const auto [arcSine, endArcSine] = ArcSines(SineOf(from, ellipse), SineOf(arc.to, ellipse));
    float angle = AngleOf(from, ellipse, arcSine);
    float endAngle = AngleOf(arc.to, ellipse, endArcSine);
    if (!arc.sweep && angle < endAngle) {
        endAngle -= kTwoPi;
    } else if (arc.sweep && endAngle < angle) {
        angle -= kTwoPi;
    }
    if (tracing) {
        TracePair("parsePathString ArcToCurve: center(", ellipse.center.x, ellipse.center.y);
        TracePair("parsePathString ArcToCurve: radius(", ellipse.rx, ellipse.ry);
        TracePair("parsePathString ArcToCurve: angles(", angle, endAngle);
        TracePair("parsePathString ArcToCurve: anglesF(", angle * kDegreesPerRadian,
                  endAngle * kDegreesPerRadian);
    }

    const auto addPiece = [&](const ArcEnd& start, const ArcEnd& end) {
        const Point control = AddArcToCurve(ellipse, start, end, tracing, path);
        if (tracing) {
            traceSite.Write(TraceText("parsePathString ArcToCurve: controlPoint: ")
                                .Values(control.x, control.y)
                                .Text());
        }
    };
    // Both angles are within one turn of each other, so this ends after three steps at most; angles
    // that are no numbers end it at once.
    const auto [startOf, endOf] = SinesAndCosines(angle, endAngle);
    ArcEnd start = {from, angle, startOf};
    while (std::abs(endAngle - start.angle) > kPieceAngle) {
        const float step = arc.sweep && endAngle > start.angle ? kPieceAngle : -kPieceAngle;
        const float next = start.angle + step;
        const SineCosine of = SineAndCosine(next);
        const ArcEnd end = {ellipse.At(of.sine, of.cosine), next, of};
        addPiece(start, end);
        start = end;
    }
    addPiece(start, {arc.to, endAngle, endOf});
}

}  // namespace SVGLoom
