// Path data: commands are read one by one and replayed onto the path at once, so that what stands
// before an error is drawn.

#include <kivcore/Trace.h>

#include <algorithm>
#include <cmath>

#include "svgloom/src/ArcToCurve.h"
#include "svgloom/src/Characters.h"
#include "svgloom/src/NumberReader.h"
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

class PathReader {
public:
    PathReader(const char* current, const char* end, Path& path, PathNotes* notes)
        : current_(current), end_(end), path_(path), notes_(notes)
    {
    }

    void Read()
    {
        if (!ReadCommands()) {
            Note(PathNote::kStopped, current_);
        }
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
    bool ReadCommands()
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
    bool Execute(char command)
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

    Outcome Dispatch(char command)
    {
        const bool relative = command >= 'a';
        Point points[3];
        switch (ToLower(command)) {
            case 'm':
                if (!ReadPoint(points[0], relative)) {
                    return Outcome::kUnreadable;
                }
                start_ = points[0];
                path_.MoveTo(points[0].x, points[0].y);
                position_ = points[0];
                return Outcome::kDone;
            case 'l':
                if (!ReadPoint(points[0], relative)) {
                    return Outcome::kUnreadable;
                }
                return LineTo(points[0]);
            case 'h':
                if (!ReadNext(points[0].x)) {
                    return Outcome::kUnreadable;
                }
                return LineTo({relative ? position_.x + points[0].x : points[0].x, position_.y});
            case 'v':
                if (!ReadNext(points[0].y)) {
                    return Outcome::kUnreadable;
                }
                return LineTo({position_.x, relative ? position_.y + points[0].y : points[0].y});
            case 'c':
                if (!ReadPoint(points[0], relative) || !ReadPoint(points[1], relative) ||
                    !ReadPoint(points[2], relative)) {
                    return Outcome::kUnreadable;
                }
                return CurveTo(points[0], points[1], points[2]);
            case 's':
                if (notes_ != nullptr) {
                    NoteSmoothStart();
                }
                if (!ReadPoint(points[0], relative) || !ReadPoint(points[1], relative)) {
                    return Outcome::kUnreadable;
                }
                // Always the reflection, whatever command came before.
                return CurveTo(Reflected(cubicControl_), points[0], points[1]);
            case 'q':
                if (!ReadPoint(points[0], relative) || !ReadPoint(points[1], relative)) {
                    return Outcome::kUnreadable;
                }
                return QuadTo(points[0], points[1]);
            case 't': {
                if (!ReadPoint(points[0], relative)) {
                    return Outcome::kUnreadable;
                }
                const char before = ToLower(previous_);
                return QuadTo(before == 'q' || before == 't' ? Reflected(quadControl_) : position_,
                              points[0]);
            }
            case 'a':
                return ArcTo(relative);
            case 'z':
                path_.ClosePath();
                position_ = start_;
                return Outcome::kDone;
            default:
                return Outcome::kUnknown;
        }
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
    void NoteSmoothStart()
    {
        const char before = ToLower(previous_);
        if (before != 'c' && before != 's' &&
            (cubicControl_.x != position_.x || cubicControl_.y != position_.y)) {
            Note(PathNote::kSmoothStart, current_);
        }
    }

    Outcome LineTo(const Point& to)
    {
        path_.LineTo(to.x, to.y);
        position_ = to;
        return Outcome::kDone;
    }

    Outcome CurveTo(const Point& first, const Point& second, const Point& to)
    {
        path_.CurveTo(first.x, first.y, second.x, second.y, to.x, to.y);
        cubicControl_ = second;
        position_ = to;
        return Outcome::kDone;
    }

    Outcome QuadTo(const Point& control, const Point& to)
    {
        path_.QuadTo(control.x, control.y, to.x, to.y);
        quadControl_ = control;
        position_ = to;
        return Outcome::kDone;
    }

    Outcome ArcTo(bool relative)
    {
        const char* const start = current_;
        Arc arc;
        if (!ReadNext(arc.rx) || !ReadNext(arc.ry) || !ReadNext(arc.rotationDegrees) ||
            !ReadFlag(arc.large) || !ReadFlag(arc.sweep) || !ReadPoint(arc.to, relative)) {
            return Outcome::kUnreadable;
        }
        if (notes_ != nullptr && IsTurned(arc)) {
            notes_->Add(PathNote::kRotatedArc, start);
        }
        ArcToCurve(position_, arc, path_);
        position_ = arc.to;
        return Outcome::kDone;
    }

    Point Reflected(const Point& control) const
    {
        return {2 * position_.x - control.x, 2 * position_.y - control.y};
    }

    [[gnu::always_inline]] bool ReadNext(float& number)
    {
        SkipSeparator(current_, end_);
        return ReadNumber(current_, end_, number);
    }

    bool ReadPoint(Point& point, bool relative)
    {
        if (!ReadNext(point.x) || !ReadNext(point.y)) {
            return false;
        }
        if (relative) {
            point.x += position_.x;
            point.y += position_.y;
        }
        return true;
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
    const char* end_;
    Path& path_;
    PathNotes* notes_;
    char previous_ = 'm';
    Point position_;
    Point start_;
    Point cubicControl_;
    Point quadControl_;
};

}  // namespace

void SVGStringParser::ParsePath(std::string_view text, Path& path, PathNotes* notes)
{
    PathReader(text.data(), text.data() + text.size(), path, notes).Read();
}

}  // namespace SVGLoom
