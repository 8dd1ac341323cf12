// Path data: commands are read one by one and replayed onto the path at once, so that what stands
// before an error is drawn.

#include <kivcore/Trace.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "svgloom/src/ArcToCurve.h"
#include "svgloom/src/Characters.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/PathBuffer.h"
#include "svgloom/src/PathPiece.h"
#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/TraceText.h"

namespace SVGLoom {

namespace {

constinit kivcore::debug::TraceSite unhandledSite("SVGLoom.Parse", 6);

/// Where a number may begin, the command before it repeats. A "+" begins none here, on purpose: it
/// is an unknown command.
constexpr bool RepeatsCommand(char c)
{
    return IsDigit(c) || c == ',' || c == '-' || c == '.';
}

/// Reads step by step, and leaves to ReadPieces what is as in most paths.
class PathReader {
public:
    PathReader(std::string_view text, PathBuffer& path, PathNotes* notes)
        : at_(text.data()), end_(text.data() + text.size()), path_(path), notes_(notes)
    {
    }

    void Read()
    {
        if (!ReadAll()) {
            Note(PathNote::kStopped, at_);
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
    bool ReadAll()
    {
        if (!SkipSpace(at_, end_)) {
            return true;
        }
        if (ToLower(*at_) != 'm') {
            return false;
        }
        // So much is read step by step where something is not as in most paths, and all for notes.
        constexpr std::ptrdiff_t kSteps = 1024;
        while (notes_ == nullptr && (at_ = ReadPieces(at_, end_, state_, path_)) != end_) {
            if (!ReadCommands(end_ - at_ > kSteps ? at_ + kSteps : end_)) {
                return false;
            }
        }
        return ReadCommands(end_);
    }

    /// Reads commands that begin before `limit`. False if it stopped early.
    [[gnu::noinline]] bool ReadCommands(const char* limit)
    {
        while (at_ < limit && SkipSpace(at_, end_)) {
            char command = *at_;
            if (!RepeatsCommand(command)) {
                ++at_;
            } else if (IsClose(state_.previous)) {
                return false;
            } else {
                command = RepeatOf(state_.previous);
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
            if (IsClose(state_.previous)) {
                if (IsClose(command)) {
                    return true;
                }
                if (ToLower(command) != 'm') {
                    MoveBehindClose(state_, path_);
                    if (state_.position.x != state_.position.y) {
                        Note(PathNote::kMoveBehindClose, at_);
                    }
                }
            }
            const Outcome outcome = Dispatch(command);
            state_.previous = command;
            if (outcome != Outcome::kUnknown) {
                return outcome == Outcome::kDone;
            }
            if (notes_ != nullptr) {
                notes_->Add(PathNote::kUnknownCommand, at_ - 1);
            }
            if (unhandledSite.Enabled()) {
                unhandledSite.Write((TraceText("parsePathString UNHANDLED: ") << command).Text());
            }
            // Whatever comes next is the next command, white space included.
            if (at_ == end_) {
                return false;
            }
            command = *at_++;
        }
    }

    [[gnu::always_inline]] Outcome Dispatch(char command)
    {
        const bool relative = command >= 'a';
        // Negative zero adds nothing, not even to the sign of a zero.
        const Point origin = relative ? state_.position : Point{-0.0f, -0.0f};
        const char* const start = at_;
        Point points[3];
        float number[1] = {};
        switch (ToLower(command)) {
            case 'm':
                if (!ReadPoints<1>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                state_.position = state_.start = points[0];
                path_.MoveTo(state_.position.x, state_.position.y);
                return Outcome::kDone;
            case 'l':
                if (!ReadPoints<1>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                return LineTo(points[0]);
            case 'h':
                return ReadNumbers(number) ? LineTo({number[0] + origin.x, state_.position.y})
                                           : Outcome::kUnreadable;
            case 'v':
                return ReadNumbers(number) ? LineTo({state_.position.x, number[0] + origin.y})
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
                return CurveTo(Reflected(state_.position, state_.cubicControl), points[0],
                               points[1]);
            case 'q':
                if (!ReadPoints<2>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                return QuadTo(points[0], points[1], start);
            case 't': {
                if (!ReadPoints<1>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                const char before = ToLower(state_.previous);
                return QuadTo(before == 'q' || before == 't'
                                  ? Reflected(state_.position, state_.quadControl)
                                  : state_.position,
                              points[0], start);
            }
            case 'a': {
                Arc arc;
                float shape[3] = {};
                if (!ReadNumbers(shape) || !ReadFlag(arc.large) || !ReadFlag(arc.sweep) ||
                    !ReadPoints<1>(origin, points)) {
                    return Outcome::kUnreadable;
                }
                arc.rx = shape[0];
                arc.ry = shape[1];
                arc.rotationDegrees = shape[2];
                arc.to = points[0];
                return ArcTo(arc, start);
            }
            case 'z':
                path_.ClosePath();
                state_.position = state_.start;
                return Outcome::kDone;
            default:
                return Outcome::kUnknown;
        }
    }

    template <std::size_t count>
    [[gnu::always_inline]] bool ReadNumbers(float (&numbers)[count])
    {
        for (float& number : numbers) {
            SkipSeparator(at_, end_);
            if (!ReadNumber(at_, end_, number)) {
                return false;
            }
        }
        return true;
    }

    bool ReadFlag(bool& flag)
    {
        SkipSeparator(at_, end_);
        if (at_ == end_ || !IsFlag(*at_)) {
            return false;
        }
        flag = *at_++ == '1';
        return true;
    }

    template <std::size_t count>
    [[gnu::always_inline]] bool ReadPoints(const Point& origin, Point (&points)[3])
    {
        float numbers[2 * count] = {};
        if (!ReadNumbers(numbers)) {
            return false;
        }
        for (std::size_t i = 0; i < count; ++i) {
            points[i] = {numbers[2 * i] + origin.x, numbers[2 * i + 1] + origin.y};
        }
        return true;
    }

    Outcome LineTo(const Point& to)
    {
        path_.LineTo(to);
        state_.position = to;
        return Outcome::kDone;
    }

    Outcome CurveTo(const Point& first, const Point& second, const Point& to)
    {
        path_.CurveTo(first, second, to);
        state_.cubicControl = second;
        state_.position = to;
        return Outcome::kDone;
    }

    Outcome QuadTo(const Point& control, const Point& to, const char* start)
    {
        if (notes_ != nullptr) {
            notes_->AddQuadratic(start, QuadraticDistance(control, to));
        }
        path_.QuadTo(control, to);
        state_.quadControl = control;
        state_.position = to;
        return Outcome::kDone;
    }

    Outcome ArcTo(const Arc& arc, const char* start)
    {
        if (notes_ != nullptr) {
            NoteArc(arc, start);
        }
        path_.ArcTo(state_.position, arc);
        state_.position = arc.to;
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
        const Point a = {control.x - state_.position.x, control.y - state_.position.y};
        const Point b = {to.x - state_.position.x, to.y - state_.position.y};
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
        const char before = ToLower(state_.previous);
        if (before != 'c' && before != 's' &&
            (state_.cubicControl.x != state_.position.x ||
             state_.cubicControl.y != state_.position.y)) {
            notes_->Add(PathNote::kSmoothStart, start);
        }
    }

    const char* at_;
    const char* const end_;
    PathBuffer& path_;
    PathNotes* const notes_;
    PathState state_;
};

}  // namespace

void SVGStringParser::ParsePath(std::string_view text, Path& path, PathNotes* notes)
{
    const bool traces = unhandledSite.Enabled();
    PathBuffer buffer(path, traces ? PathBuffer::Mode::kEachAtOnce : PathBuffer::Mode::kPacked);
    PathReader(text, buffer, notes).Read();
}

}  // namespace SVGLoom
