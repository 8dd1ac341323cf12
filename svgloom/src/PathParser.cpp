// Path data: commands are read one by one and replayed onto the path at once, so that what stands
// before an error is drawn.

#include <kivcore/Trace.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "svgloom/src/ArcToCurve.h"
#include "svgloom/src/Characters.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/NumberWindow.h"
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

/// A text with the operations of NumberWindow, read byte by byte.
class PlainText {
public:
    using Place = const char*;
    struct Outcome {
        Place next;
        bool isRead;
    };

    PlainText(const char* text, const char* end) : text_(text), end_(end) {}

    Place First() const { return text_; }
    static Place Behind(Place at) { return at + 1; }
    static const char* PointerTo(Place at) { return at; }
    bool Look(Place& at, char& c) const
    {
        if (at == end_) {
            return false;
        }
        c = *at;
        return true;
    }
    bool LookBehindSpace(Place& at, char& c) const
    {
        SkipSpace(at, end_);
        return Look(at, c);
    }
    bool ReadFlag(Place& at, bool& flag) const
    {
        SkipSeparator(at, end_);
        if (at == end_ || (*at != '0' && *at != '1')) {
            return false;
        }
        flag = *at++ == '1';
        return true;
    }
    template <std::size_t count>
    [[gnu::always_inline]] Outcome Read(Place at, float (&numbers)[count]) const
    {
// The end of a loop is hard to foresee.
#pragma GCC unroll 6
        for (float& number : numbers) {
            const NumberAt read = ReadSeparated(at, end_);
            at = read.next;
            number = read.number;
            if (std::isnan(number)) {
                return {at, false};
            }
        }
        return {at, true};
    }

private:
    const char* const text_;
    const char* const end_;
};

// Everything but the numbers is inlined into Read(), so that the state stays in registers: its only
// other home would be memory that each number has to pass through.
template <class Text>
class PathReader {
public:
    PathReader(Text& text, PathBuffer& path, PathNotes* notes)
        : text_(text), path_(path), notes_(notes), at_(text.First())
    {
    }

    void Read()
    {
        if (!ReadCommands()) {
            Note(PathNote::kStopped, at_);
        }
        path_.Flush();
    }

private:
    using Place = typename Text::Place;

    enum class Outcome { kDone, kUnreadable, kUnknown };

    void Note(PathNote note, Place place)
    {
        if (notes_ != nullptr) {
            notes_->Add(note, text_.PointerTo(place));
        }
    }

    /// False if it stopped early.
    [[gnu::always_inline]] bool ReadCommands()
    {
        char command = '\0';
        if (!text_.LookBehindSpace(at_, command)) {
            return true;
        }
        if (ToLower(command) != 'm') {
            return false;
        }
        while (text_.LookBehindSpace(at_, command)) {
            if (!RepeatsCommand(command)) {
                at_ = text_.Behind(at_);
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
                        Note(PathNote::kMoveBehindClose, at_);
                    }
                }
            }
            const Outcome outcome = Dispatch(command);
            previous_ = command;
            if (outcome != Outcome::kUnknown) {
                return outcome == Outcome::kDone;
            }
            if (notes_ != nullptr) {
                notes_->Add(PathNote::kUnknownCommand, text_.PointerTo(at_) - 1);
            }
            if (unhandledSite.Enabled()) {
                unhandledSite.Write((TraceText("parsePathString UNHANDLED: ") << command).Text());
            }
            // Whatever comes next is the next command, white space included.
            if (!text_.Look(at_, command)) {
                return false;
            }
            at_ = text_.Behind(at_);
        }
    }

    [[gnu::always_inline]] Outcome Dispatch(char command)
    {
        const bool relative = command >= 'a';
        // Negative zero adds nothing, not even to the sign of a zero.
        const Point origin = relative ? position_ : Point{-0.0f, -0.0f};
        const char* const start = text_.PointerTo(at_);
        Point points[3];
        float number[1] = {};
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
                return ReadNumbers(number) ? LineTo({number[0] + origin.x, position_.y})
                                           : Outcome::kUnreadable;
            case 'v':
                return ReadNumbers(number) ? LineTo({position_.x, number[0] + origin.y})
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
                float shape[3] = {};
                if (!ReadNumbers(shape) || !text_.ReadFlag(at_, arc.large) ||
                    !text_.ReadFlag(at_, arc.sweep) || !ReadPoints<1>(origin, points)) {
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
                position_ = start_;
                return Outcome::kDone;
            default:
                return Outcome::kUnknown;
        }
    }

    template <std::size_t count>
    [[gnu::always_inline]] bool ReadNumbers(float (&numbers)[count])
    {
        const auto outcome = text_.Read(at_, numbers);
        at_ = outcome.next;
        return outcome.isRead;
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
            notes_->Add(PathNote::kSmoothStart, start);
        }
    }

    Point Reflected(const Point& control) const
    {
        return {2 * position_.x - control.x, 2 * position_.y - control.y};
    }

    Text& text_;
    PathBuffer& path_;
    PathNotes* const notes_;
    Place at_;
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
    // From here on what a window costs pays.
    constexpr std::size_t kLong = 1024;
    const char* const end = text.data() + text.size();
    if (text.size() < kLong) {
        PlainText plain(text.data(), end);
        PathReader(plain, buffer, notes).Read();
    } else {
        NumberWindow window(text.data(), end);
        PathReader(window, buffer, notes).Read();
    }
}

}  // namespace SVGLoom
