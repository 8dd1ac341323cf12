// Path data: commands are read one by one and replayed onto the path at once, so that what stands
// before an error is drawn.

#include <kivcore/Trace.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "svgloom/src/ArcToCurve.h"
#include "svgloom/src/Characters.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/PathBuffer.h"
#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/TraceText.h"

namespace SVGLoom {

namespace {

constinit kivcore::debug::TraceSite unhandledSite("SVGLoom.Parse", 6);

constexpr bool IsClose(char command)
{
    return ToLower(command) == 'z';
}

/// Where a number may begin, the command before it repeats. A "+" begins none here, on purpose: it
/// is an unknown command.
constexpr bool RepeatsCommand(char c)
{
    return IsDigit(c) || c == ',' || c == '-' || c == '.';
}

constexpr char RepeatOf(char command)
{
    return command == 'M' ? 'L' : command == 'm' ? 'l' : command;
}

struct NumberAt {
    const char* next;  // where reading stopped
    float number;      // NaN if it cannot be read: numbers are finite
};

// Called, not inlined, so that a command can read its numbers one after the other without a loop,
// whose end is hard to foresee; both results come back in registers.
[[gnu::noinline]] NumberAt ReadSeparated(const char* current, const char* end)
{
    float number = 0;
    SkipSeparator(current, end);
    return ReadNumber(current, end, number)
               ? NumberAt{current, number}
               : NumberAt{current, std::numeric_limits<float>::quiet_NaN()};
}

// Everything else is inlined into Read(), so that the state stays in registers: its only other home
// would be memory that each number has to pass through.
class PathReader {
public:
    PathReader(const char* current, const char* end, PathBuffer& path, PathNotes* notes)
        : current_(current), end_(end), path_(path), notes_(notes)
    {
    }

    void Read()
    {
        if (!ReadCommands()) {
            Note(PathNote::kStopped, current_);
        }
        path_.Flush();
    }

private:
    enum class Outcome { kDone, kUnreadable, kUnknown };

    void Note(PathNote note, const char* place)
    {
        if (notes_ != nullptr) {
            notes_->Add(note, place);
        }
    }

    /// False if it stopped early.
    [[gnu::always_inline]] bool ReadCommands()
    {
        if (!SkipSpace(current_, end_)) {
            return true;
        }
        if (ToLower(*current_) != 'm') {
            return false;
        }
        while (SkipSpace(current_, end_)) {
            char command = *current_;
            if (!RepeatsCommand(command)) {
                ++current_;
            } else if (IsClose(previous_)) {
                return false;
            } else {
                command = RepeatOf(previous_);
            }
            if (!Execute(command)) {
                return false;
            }
        }
        return true;
    }

    /// Carries out one command, and unknown ones before it. False ends the parse.
    [[gnu::always_inline]] bool Execute(char command)
    {
        for (;;) {
            if (IsClose(previous_)) {
                if (IsClose(command)) {
                    return true;
                }
                if (ToLower(command) != 'm') {
                    // The start of the subpath with its x for both coordinates, on purpose; artwork
                    // has been drawn with it. It is only emitted: relative coordinates count from
                    // the true start. ParsePath.TheMoveBehindACloseTakesXTwice holds this.
                    path_.MoveTo(position_.x, position_.x);
                    if (position_.x != position_.y) {
                        Note(PathNote::kMoveBehindClose, current_);
                    }
                }
            }
            const Outcome outcome = Dispatch(command);
            previous_ = command;
            if (outcome != Outcome::kUnknown) {
                return outcome == Outcome::kDone;
            }
            Note(PathNote::kUnknownCommand, current_ - 1);
            if (unhandledSite.Enabled()) {
                unhandledSite.Write((TraceText("parsePathString UNHANDLED: ") << command).Text());
            }
            // Whatever comes next is the next command, white space included.
            if (current_ == end_) {
                return false;
            }
            command = *current_++;
        }
    }

    [[gnu::always_inline]] Outcome Dispatch(char command)
    {
        const bool relative = command >= 'a';
        // Negative zero adds nothing, not even to the sign of a zero.
        const Point origin = relative ? position_ : Point{-0.0f, -0.0f};
        const char* const start = current_;
        Point points[3];
        float number = 0;
        switch (ToLower(command)) {
            case 'm':
                if (!ReadPoints<1>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                position_ = start_ = points[0];
                path_.MoveTo(position_.x, position_.y);
                return Outcome::kDone;
            case 'l':
                if (!ReadPoints<1>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                return LineTo(points[0]);
            case 'h':
                return ReadNext(number) ? LineTo({number + origin.x, position_.y})
                                        : Outcome::kUnreadable;
            case 'v':
                return ReadNext(number) ? LineTo({position_.x, number + origin.y})
                                        : Outcome::kUnreadable;
            case 'c':
                if (!ReadPoints<3>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                return CurveTo(points[0], points[1], points[2]);
            case 's':
                if (notes_ != nullptr) {
                    NoteSmoothStart(start);
                }
                if (!ReadPoints<2>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                // Always the reflection, whatever command came before.
                return CurveTo(Reflected(cubicControl_), points[0], points[1]);
            case 'q':
                if (!ReadPoints<2>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                return QuadTo(points[0], points[1], start);
            case 't': {
                if (!ReadPoints<1>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                const char before = ToLower(previous_);
                return QuadTo(before == 'q' || before == 't' ? Reflected(quadControl_) : position_,
                              points[0], start);
            }
            case 'a': {
                Arc arc;
                if (!ReadNext(arc.rx) || !ReadNext(arc.ry) || !ReadNext(arc.rotationDegrees) ||
                    !ReadFlag(arc.large) || !ReadFlag(arc.sweep) ||
                    !ReadPoints<1>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                arc.to = points[0];
                return ArcTo(arc, start);
            }
            case 'z':
                path_.ClosePath();
                position_ = start_;
                return Outcome::kDone;
            default:
                return Outcome::kUnknown;
        }
    }

    [[gnu::always_inline]] bool ReadNext(float& number)
    {
        const NumberAt read = ReadSeparated(current_, end_);
        current_ = read.next;
        number = read.number;
        return !std::isnan(number);
    }

    template <int count>
    [[gnu::always_inline]] bool ReadPoints(const Point& origin, Point (&points)[3])
    {
        for (int i = 0; i < count; ++i) {
            float x = 0;
            float y = 0;
            if (!ReadNext(x) || !ReadNext(y)) {
                return false;
            }
            points[i] = {x + origin.x, y + origin.y};
        }
        return true;
    }

    Outcome LineTo(const Point& to)
    {
        path_.LineTo(to);
        position_ = to;
        return Outcome::kDone;
    }

    Outcome CurveTo(const Point& first, const Point& second, const Point& to)
    {
        path_.CurveTo(first, second, to);
        cubicControl_ = second;
        position_ = to;
        return Outcome::kDone;
    }

    Outcome QuadTo(const Point& control, const Point& to, const char* start)
    {
        if (notes_ != nullptr) {
            notes_->AddQuadratic(start, QuadraticDistance(control, to));
        }
        path_.QuadTo(control, to);
        quadControl_ = control;
        position_ = to;
        return Outcome::kDone;
    }

    Outcome ArcTo(const Arc& arc, const char* start)
    {
        if (notes_ != nullptr) {
            NoteArc(arc, start);
        }
        ArcToCurve(Point(position_), arc, path_);
        position_ = arc.to;
        return Outcome::kDone;
    }

    void NoteArc(const Arc& arc, const char* start)
    {
        if (IsTurned(arc)) {
            notes_->Add(PathNote::kRotatedArc, start);
        }
        if (arc.rx < 0 || arc.ry < 0) {
            notes_->Add(PathNote::kNegativeArc, start);
        }
    }

    /// A quadratic curve is drawn up to a sixteenth of the height of its control point away from
    /// where the standard has it.
    float QuadraticDistance(const Point& control, const Point& to) const
    {
        constexpr float kPart = 1.0f / 16;
        const Point a = {control.x - position_.x, control.y - position_.y};
        const Point b = {to.x - position_.x, to.y - position_.y};
        const float base = std::max(std::hypot(b.x, b.y), std::hypot(a.x, a.y));
        return base > 0 ? kPart * std::abs(a.x * b.y - a.y * b.x) / base : 0;
    }

    /// Whether the rotation of an arc would show. Circles, as drawing programs round them, have
    /// none.
    static bool IsTurned(const Arc& arc)
    {
        constexpr float kHalfTurn = 180;
        constexpr float kRoundness = 0.01f;
        const float rx = std::abs(arc.rx);
        const float ry = std::abs(arc.ry);
        return std::fmod(arc.rotationDegrees, kHalfTurn) != 0 &&
               std::abs(rx - ry) > kRoundness * std::max(rx, ry);
    }

    /// Where the standard reflects nothing, the control point is where the path is.
    void NoteSmoothStart(const char* start)
    {
        const char before = ToLower(previous_);
        if (before != 'c' && before != 's' &&
            (cubicControl_.x != position_.x || cubicControl_.y != position_.y)) {
            Note(PathNote::kSmoothStart, start);
        }
    }

    Point Reflected(const Point& control) const
    {
        return {2 * position_.x - control.x, 2 * position_.y - control.y};
    }

    /// A single "0" or "1"; flags may touch each other and the number behind them.
    bool ReadFlag(bool& flag)
    {
        SkipSeparator(current_, end_);
        if (current_ == end_ || (*current_ != '0' && *current_ != '1')) {
            return false;
        }
        flag = *current_++ == '1';
        return true;
    }

    const char* current_;
    const char* const end_;
    PathBuffer& path_;
    PathNotes* const notes_;
    char previous_ = 'm';
    Point position_;
    Point start_;
    Point cubicControl_;
    Point quadControl_;
};

}  // namespace

void SVGStringParser::ParsePath(std::string_view text, Path& path, PathNotes* notes)
{
    const bool traces = unhandledSite.Enabled();
    PathBuffer buffer(path, traces ? PathBuffer::Mode::kEachAtOnce : PathBuffer::Mode::kPacked);
    PathReader(text.data(), text.data() + text.size(), buffer, notes).Read();
}

}  // namespace SVGLoom
