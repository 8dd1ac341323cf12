// Each part of the path becomes a list of points, curves cut into pieces. Without dashes the list
// is outlined as it is; else it is cut along its length, and each dash is outlined. AGG computes
// joins and caps; the order of the outline is ours.

#include "framework/kivui/src/scrivel/Stroking.h"

#include <agg2/agg_math_stroke.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "framework/kivui/src/scrivel/Flattening.h"

namespace kivui::scrivel {
namespace {

using Vertex = agg::vertex_dist;

struct OutlinePoint {
    OutlinePoint(double px, double py) : x(px), y(py) {}

    double x;
    double y;
};

// What AGG's stroke computation hands its points to.
class OutlinePoints {
public:
    using value_type = OutlinePoint;

    void add(const OutlinePoint& point)  // NOLINT(readability-identifier-naming): AGG's name
    {
        points_.push_back(point);
    }
    void remove_all() { points_.clear(); }  // NOLINT(readability-identifier-naming)
    const std::vector<OutlinePoint>& All() const { return points_; }

private:
    std::vector<OutlinePoint> points_;
};

agg::line_cap_e CapOf(LineCap cap)
{
    switch (cap) {
        case LineCap::kTEPRoundCap:
            return agg::round_cap;
        case LineCap::kTEPSquareCap:
            return agg::square_cap;
        case LineCap::kTEPButtCap:
            break;
    }
    return agg::butt_cap;
}

agg::line_join_e JoinOf(LineJoin join)
{
    switch (join) {
        case LineJoin::kTEPRoundJoin:
            return agg::round_join;
        case LineJoin::kTEPBevelJoin:
            return agg::bevel_join;
        case LineJoin::kTEPMiterJoin:
            break;
    }
    return agg::miter_join_revert;  // to a plain bevel above the limit
}

// Outlines lists of points that lie apart, each with its distance to the next (of a closed list's
// last point to the first).
class Outliner {
public:
    Outliner(const PenObject& pen, const DMatrix& matrix, Coverage& coverage)
        : matrix_(matrix), coverage_(coverage), cap_(pen.cap)
    {
        const double width = static_cast<double>(pen.width);
        math_.width(width);
        math_.line_cap(CapOf(pen.cap));
        math_.line_join(JoinOf(pen.join));
        math_.miter_limit(static_cast<double>(pen.miterLimit));
        math_.inner_join(agg::inner_jag);
        // An arc is cut into so many pieces that it is a fiftieth of a pixel off at most (AGG
        // allows an eighth at scale 1), but never more than some thousand.
        constexpr double kFineness = 0.125 / 0.02;
        constexpr double kFinest = 1e-6;
        math_.approximation_scale(
            std::min(LargestScale(matrix) * kFineness, 0.125 / (width / 2 * kFinest)));
    }

    void Open(const std::vector<Vertex>& list)
    {
        const std::size_t last = list.size() - 1;
        Begin();
        math_.calc_cap(points_, list[0], list[1], list[0].dist);
        Add();
        for (std::size_t i = 1; i < last; ++i) {
            Join(list[i - 1], list[i], list[i + 1], list[i - 1].dist, list[i].dist);
        }
        math_.calc_cap(points_, list[last], list[last - 1], list[last - 1].dist);
        Add();
        for (std::size_t i = last - 1; i > 0; --i) {
            Join(list[i + 1], list[i], list[i - 1], list[i].dist, list[i - 1].dist);
        }
        coverage_.Close();
    }

    void Closed(const std::vector<Vertex>& list)
    {
        const std::size_t count = list.size();
        Begin();
        for (std::size_t i = 0; i < count; ++i) {
            const Vertex& before = list[(i + count - 1) % count];
            Join(before, list[i], list[(i + 1) % count], before.dist, list[i].dist);
        }
        coverage_.Close();
        Begin();
        for (std::size_t i = count; i-- > 0;) {
            const Vertex& before = list[(i + count - 1) % count];
            Join(list[(i + 1) % count], list[i], before, list[i].dist, before.dist);
        }
        coverage_.Close();
    }

    // A line of no length: its caps, if they reach beyond its ends.
    void Dot(const DPoint& at, const DPoint& direction)
    {
        if (cap_ == LineCap::kTEPButtCap) {
            return;
        }
        const Vertex middle(at.x, at.y);
        Begin();
        AddDotCap(middle, direction.x, direction.y);
        AddDotCap(middle, -direction.x, -direction.y);
        coverage_.Close();
    }

private:
    void Begin() { isFirst_ = true; }

    void Join(const Vertex& v0, const Vertex& v1, const Vertex& v2, double length1, double length2)
    {
        math_.calc_join(points_, v0, v1, v2, length1, length2);
        Add();
    }

    // The cap of a line that leads from `middle` into the direction, whose length is 1. AGG takes
    // the direction from a difference of points, which would be lost far from the origin.
    void AddDotCap(const Vertex& middle, double dx, double dy)
    {
        math_.calc_cap(points_, Vertex(0, 0), Vertex(dx, dy), 1);
        Add(middle.x, middle.y);
    }

    void Add(double x = 0, double y = 0)
    {
        for (const OutlinePoint& point : points_.All()) {
            const DPoint mapped = matrix_.Map({x + point.x, y + point.y});
            if (isFirst_) {
                coverage_.MoveTo(mapped);
                isFirst_ = false;
            } else {
                coverage_.LineTo(mapped);
            }
        }
    }

    agg::math_stroke<OutlinePoints> math_;
    OutlinePoints points_;
    const DMatrix matrix_;
    Coverage& coverage_;
    const LineCap cap_;
    bool isFirst_ = true;
};

// Collects one part after the other as a list of points that lie apart, and hands it on.
template <class Use>
class PartCollector {
public:
    PartCollector(const PenObject& pen, const DMatrix& matrix, Use& use)
        : matrix_(matrix),
          halfWidth_(LargestScale(matrix) * static_cast<double>(pen.width) / 2),
          use_(use)
    {
    }

    void Begin(const DPoint& p)
    {
        list_.clear();
        list_.emplace_back(p.x, p.y);
    }
    void Line(const DPoint& p)
    {
        Vertex next(p.x, p.y);
        if (list_.back()(next)) {  // notes the distance
            list_.push_back(next);
        }
    }
    void Curve(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3)
    {
        const int pieces = StrokePieces(p0, p1, p2, p3, matrix_, halfWidth_);
        const Cubic cubic(p0, p1, p2, p3);
        for (int i = 1; i < pieces; ++i) {
            Line(cubic.At(static_cast<double>(i) / pieces));
        }
        Line(p3);
    }
    void End(bool closed)
    {
        // The last point of a closed part is its first one again.
        if (closed && list_.size() > 1 && !list_.back()(list_.front())) {
            list_.pop_back();
            static_cast<void>(list_.back()(list_.front()));
        }
        use_(list_, closed && list_.size() > 1);
    }

private:
    const DMatrix matrix_;
    const double halfWidth_;
    Use& use_;
    std::vector<Vertex> list_;
};

template <class Use>
void ForEachPart(const PathObject& path, const PenObject& pen, const DMatrix& matrix, Use use)
{
    PartCollector<Use> collector(pen, matrix, use);
    WalkPath(path, DMatrix(), collector);
}

double LengthOf(const std::vector<Vertex>& list, bool closed)
{
    double length = 0;
    for (std::size_t i = 0; i + (closed ? 0 : 1) < list.size(); ++i) {
        length += list[i].dist;
    }
    return length;
}

// Cuts lists along a pattern.
class Dasher {
public:
    Dasher(const std::vector<float>& pattern, Outliner& outliner)
        : pattern_(pattern), outliner_(outliner)
    {
    }

    void Cut(const std::vector<Vertex>& list, bool closed)
    {
        index_ = 0;
        isOn_ = true;
        left_ = Length(0);
        dash_.clear();
        first_.clear();
        keepFirst_ = closed;
        direction_ = {1, 0};
        AddPoint({list[0].x, list[0].y});
        const std::size_t edges = closed ? list.size() : list.size() - 1;
        for (std::size_t i = 0; i < edges; ++i) {
            const Vertex& from = list[i];
            const Vertex& to = list[(i + 1) % list.size()];
            direction_ = {(to.x - from.x) / from.dist, (to.y - from.y) / from.dist};
            double at = 0;
            while (left_ < from.dist - at) {
                at += left_;
                const DPoint cut = {from.x + direction_.x * at, from.y + direction_.y * at};
                Turn(cut);
            }
            left_ -= from.dist - at;
            if (isOn_) {
                AddPoint({to.x, to.y});
            }
        }
        Finish(closed);
    }

private:
    double Length(std::size_t index) const
    {
        return static_cast<double>(pattern_[index % pattern_.size()]);
    }

    // From a dash to a gap or back.
    void Turn(const DPoint& cut)
    {
        if (isOn_) {
            AddPoint(cut);
            if (keepFirst_) {
                first_ = dash_;
                firstDirection_ = direction_;
                keepFirst_ = false;
            } else {
                Draw(dash_, direction_);
            }
            dash_.clear();
        } else {
            AddPoint(cut);
        }
        isOn_ = !isOn_;
        ++index_;
        left_ = Length(index_);
    }

    // The first dash of a closed part waits for the last one, which may run into it.
    void Finish(bool closed)
    {
        if (closed && keepFirst_) {
            // One dash all around.
            if (dash_.size() > 2 && !dash_.back()(dash_.front())) {
                dash_.pop_back();
                static_cast<void>(dash_.back()(dash_.front()));
                outliner_.Closed(dash_);
                return;
            }
        }
        if (closed && isOn_ && !first_.empty() && !dash_.empty()) {
            for (const Vertex& vertex : first_) {
                AddPoint({vertex.x, vertex.y});
            }
            Draw(dash_, direction_);
            return;
        }
        if (isOn_ && !dash_.empty()) {
            Draw(dash_, direction_);
        }
        if (!first_.empty()) {
            Draw(first_, firstDirection_);
        }
    }

    void AddPoint(const DPoint& p)
    {
        Vertex next(p.x, p.y);
        if (dash_.empty() || dash_.back()(next)) {
            dash_.push_back(next);
        }
    }

    void Draw(const std::vector<Vertex>& dash, const DPoint& direction)
    {
        if (dash.size() > 1) {
            outliner_.Open(dash);
        } else {
            outliner_.Dot({dash[0].x, dash[0].y}, direction);
        }
    }

    const std::vector<float>& pattern_;
    Outliner& outliner_;
    std::size_t index_ = 0;
    bool isOn_ = true;
    double left_ = 0;  // of the dash or gap in hand
    DPoint direction_;
    std::vector<Vertex> dash_;
    std::vector<Vertex> first_;
    DPoint firstDirection_;
    bool keepFirst_ = false;
};

bool IsDashed(const PathObject& path, const PenObject& pen, const DMatrix& matrix)
{
    if (pen.dash.empty()) {
        return false;
    }
    double sum = 0;
    for (const float length : pen.dash) {
        if (!(length >= 0)) {
            return false;
        }
        sum += static_cast<double>(length);
    }
    if (!(sum > 0 && std::isfinite(sum))) {
        return false;
    }
    double dashes = 0;
    const double dashesPerLength = static_cast<double>(pen.dash.size()) / (2 * sum);
    ForEachPart(path, pen, matrix, [&](const std::vector<Vertex>& list, bool closed) {
        dashes += 1 + LengthOf(list, closed) * dashesPerLength;
    });
    return dashes <= kMaxDashes;
}

}  // namespace

bool CanDraw(const PenObject& pen)
{
    return pen.width > 0 && std::isfinite(pen.width) && std::isfinite(pen.miterLimit);
}

void AddStroke(const PathObject& path, const PenObject& pen, const DMatrix& matrix,
               Coverage& coverage)
{
    Outliner outliner(pen, matrix, coverage);
    Dasher dasher(pen.dash, outliner);
    const bool isDashed = IsDashed(path, pen, matrix);
    ForEachPart(path, pen, matrix, [&](const std::vector<Vertex>& list, bool closed) {
        if (list.size() < 2) {
            outliner.Dot({list[0].x, list[0].y}, {1, 0});
        } else if (isDashed) {
            dasher.Cut(list, closed);
        } else if (closed) {
            outliner.Closed(list);
        } else {
            outliner.Open(list);
        }
    });
}

}  // namespace kivui::scrivel
