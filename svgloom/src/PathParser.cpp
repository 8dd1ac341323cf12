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
#include "svgloom/src/PathTokens.h"
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

constexpr bool IsFlag(char c)
{
    return c == '0' || c == '1';
}

constexpr char RepeatOf(char command)
{
    return command == 'M' ? 'L' : command == 'm' ? 'l' : command;
}

/// What commands leave to those behind them.
struct PathState {
    char previous = 'm';  // command
    Point position;
    Point start;
    Point cubicControl;
    Point quadControl;
};

Point Reflected(const Point& position, const Point& control)
{
    return {2 * position.x - control.x, 2 * position.y - control.y};
}

/// The start of a subpath behind a close without a move: its start with its x for both coordinates,
/// on purpose; artwork has been drawn with it. It is only emitted: relative coordinates count from
/// the true start. ParsePath.TheMoveBehindACloseTakesXTwice holds this.
void MoveBehindClose(const PathState& state, PathBuffer& path)
{
    path.MoveTo(state.position.x, state.position.x);
}

/// Carries out the commands of a piece, as far as they are what they should be. All is inlined into
/// Read(), so that the state stays in registers.
class PieceReader {
public:
    PieceReader(const PathTokens& tokens, const PathState& state, PathBuffer& path)
        : tokens_(tokens),
          path_(path),
          state_(state),
          command_(tokens.Commands()),
          number_(tokens.Numbers()),
          value_(tokens.Values())
    {
    }

    /// Returns the place of the first command or repeat that is not carried out; the end of the
    /// piece if there is none.
    [[gnu::always_inline]] PathTokens::Place Read()
    {
        next_ = *command_;
        if (IsClose(state_.previous) && !GoBehindClose(state_.previous)) {
            return *number_;
        }
        PathTokens::Place place = 0;
        char command = RepeatOf(state_.previous);
        if (!HasMore()) {
            if (next_ == tokens_.End()) {
                return next_;
            }
            command = TakeCommand(place);
        }
        for (;;) {
            const PathTokens::Place* const first = number_;
            if (!Execute(command)) [[unlikely]] {
                if (number_ == first && !IsClose(command)) {
                    return place;
                }
                state_.previous = command;
                return *number_;
            }
            state_.previous = command;
            if (next_ == tokens_.End()) {
                return next_;
            }
            command = TakeCommand(place);
        }
    }

    const PathState& State() const { return state_; }

private:
    enum class Origin { kPage, kPosition };

    /// One command with its repeats. False if it, or a repeat, is not carried out; the numbers of
    /// that are still to be taken.
    [[gnu::always_inline]] bool Execute(char& command)
    {
        switch (command) {
            case 'M':
                return MoveTo<Origin::kPage>();
            case 'm':
                return MoveTo<Origin::kPosition>();
            case 'L':
                return LineTo<Origin::kPage>();
            case 'l':
                return LineTo<Origin::kPosition>();
            case 'H':
                return HorizontalTo<Origin::kPage>();
            case 'h':
                return HorizontalTo<Origin::kPosition>();
            case 'V':
                return VerticalTo<Origin::kPage>();
            case 'v':
                return VerticalTo<Origin::kPosition>();
            case 'C':
                return CurveTo<Origin::kPage>();
            case 'c':
                return CurveTo<Origin::kPosition>();
            case 'S':
                return SmoothCurveTo<Origin::kPage>();
            case 's':
                return SmoothCurveTo<Origin::kPosition>();
            case 'Q':
                return QuadTo<Origin::kPage>();
            case 'q':
                return QuadTo<Origin::kPosition>();
            case 'T':
                return SmoothQuadTo<Origin::kPage>();
            case 't':
                return SmoothQuadTo<Origin::kPosition>();
            case 'A':
                return ArcTo<Origin::kPage>();
            case 'a':
                return ArcTo<Origin::kPosition>();
            case 'Z':
            case 'z':
                return Close(command);
            default:
                return false;
        }
    }

    /// Returns the next command, and where it stands.
    char TakeCommand(PathTokens::Place& place)
    {
        place = next_;
        next_ = *++command_;
        return *tokens_.At(place);
    }
    bool Has(std::size_t count) const { return number_[count - 1] < next_; }
    bool HasMore() const { return *number_ < next_; }
    void Take(std::size_t count)
    {
        number_ += count;
        value_ += count;
    }
    template <Origin origin>
    float X(float x) const
    {
        return origin == Origin::kPosition ? x + state_.position.x : x;
    }
    template <Origin origin>
    float Y(float y) const
    {
        return origin == Origin::kPosition ? y + state_.position.y : y;
    }
    template <Origin origin>
    Point PointAt(std::size_t index) const
    {
        return {X<origin>(value_[index]), Y<origin>(value_[index + 1])};
    }

    void AddLine(const Point& to)
    {
        path_.LineTo(to);
        state_.position = to;
    }
    void AddCurve(const Point& first, const Point& second, const Point& to)
    {
        path_.CurveTo(first, second, to);
        state_.cubicControl = second;
        state_.position = to;
    }
    void AddQuad(const Point& control, const Point& to)
    {
        path_.QuadTo(control, to);
        state_.quadControl = control;
        state_.position = to;
    }

    template <Origin origin>
    bool MoveTo()
    {
        if (!Has(2)) {
            return false;
        }
        state_.position = state_.start = PointAt<origin>(0);
        path_.MoveTo(state_.position.x, state_.position.y);
        Take(2);
        return !HasMore() || LineTo<origin>();
    }
    template <Origin origin>
    bool LineTo()
    {
        do {
            if (!Has(2)) {
                return false;
            }
            AddLine(PointAt<origin>(0));
            Take(2);
        } while (HasMore());
        return true;
    }
    template <Origin origin>
    bool HorizontalTo()
    {
        do {
            if (!Has(1)) {
                return false;
            }
            AddLine({X<origin>(value_[0]), state_.position.y});
            Take(1);
        } while (HasMore());
        return true;
    }
    template <Origin origin>
    bool VerticalTo()
    {
        do {
            if (!Has(1)) {
                return false;
            }
            AddLine({state_.position.x, Y<origin>(value_[0])});
            Take(1);
        } while (HasMore());
        return true;
    }
    template <Origin origin>
    bool CurveTo()
    {
        do {
            if (!Has(6)) {
                return false;
            }
            AddCurve(PointAt<origin>(0), PointAt<origin>(2), PointAt<origin>(4));
            Take(6);
        } while (HasMore());
        return true;
    }
    template <Origin origin>
    bool SmoothCurveTo()
    {
        do {
            if (!Has(4)) {
                return false;
            }
            // Always the reflection, whatever command came before.
            AddCurve(Reflected(state_.position, state_.cubicControl), PointAt<origin>(0),
                     PointAt<origin>(2));
            Take(4);
        } while (HasMore());
        return true;
    }
    template <Origin origin>
    bool QuadTo()
    {
        do {
            if (!Has(4)) {
                return false;
            }
            AddQuad(PointAt<origin>(0), PointAt<origin>(2));
            Take(4);
        } while (HasMore());
        return true;
    }
    template <Origin origin>
    bool SmoothQuadTo()
    {
        const char before = ToLower(state_.previous);
        bool isBehindQuad = before == 'q' || before == 't';
        do {
            if (!Has(2)) {
                return false;
            }
            AddQuad(isBehindQuad ? Reflected(state_.position, state_.quadControl) : state_.position,
                    PointAt<origin>(0));
            Take(2);
            isBehindQuad = true;
        } while (HasMore());
        return true;
    }
    template <Origin origin>
    bool ArcTo()
    {
        do {
            // Flags may touch each other and the number behind them. There is a token behind each
            // that is looked at, so the byte behind it can be.
            std::size_t count = 5;
            if (!Has(count)) {
                return false;
            }
            const char* const large = tokens_.At(number_[3]);
            const char* sweep = large + 1;
            if (IsDigit(*sweep)) {
                --count;
            } else if (Has(count + 1)) {
                sweep = tokens_.At(number_[4]);
            } else {
                return false;
            }
            const bool touchesNumber = IsDigit(sweep[1]) || sweep[1] == '.';
            const std::size_t x = count;
            count += touchesNumber ? 1 : 2;
            if (!Has(count) || !IsFlag(*large) || large[1] == '.' || !IsFlag(*sweep)) {
                return false;
            }
            Point to;
            if (touchesNumber) {
                const char* current = sweep + 1;
                if (!ReadNumber(current, tokens_.At(tokens_.End()), to.x)) {
                    return false;
                }
            } else {
                to.x = value_[x];
            }
            to.y = value_[count - 1];
            Arc arc;
            arc.rx = value_[0];
            arc.ry = value_[1];
            arc.rotationDegrees = value_[2];
            arc.large = *large == '1';
            arc.sweep = *sweep == '1';
            arc.to = {X<origin>(to.x), Y<origin>(to.y)};
            ArcToCurve(Point(state_.position), arc, path_);
            state_.position = arc.to;
            Take(count);
        } while (HasMore());
        return true;
    }
    bool Close(char& command)
    {
        path_.ClosePath();
        state_.position = state_.start;
        return GoBehindClose(command);
    }
    /// Skips further closes, and makes the move that takes the place of `command` then. False if
    /// there are numbers.
    bool GoBehindClose(char& command)
    {
        for (; next_ != tokens_.End() && !HasMore(); next_ = *++command_) {
            const char following = *tokens_.At(next_);
            if (!IsClose(following)) {
                if (ToLower(following) != 'm') {
                    MoveBehindClose(state_, path_);
                    command = 'm';
                }
                return true;
            }
        }
        return !HasMore();
    }

    const PathTokens& tokens_;
    PathBuffer& path_;
    PathState state_;
    const PathTokens::Place* command_;
    const PathTokens::Place* number_;
    const float* value_;
    PathTokens::Place next_ = 0;  // where the numbers of the command end
};

// Everything but the numbers is inlined into Read(), so that the state stays in registers: its only
// other home would be memory that each number has to pass through.
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
        return ToLower(*at_) == 'm' &&
               (notes_ != nullptr || !PathTokens::IsSupported() || ReadPieces()) &&
               ReadCommands(end_);
    }

    /// False if it stopped before the end.
    bool ReadPieces()
    {
        // So much is read step by step behind what is not as in most paths.
        constexpr std::ptrdiff_t kSteps = 1024;
        PathTokens tokens;
        while (at_ != end_) {
            tokens.Find(at_, end_);
            PieceReader piece(tokens, state_, path_);
            const PathTokens::Place place = piece.Read();
            state_ = piece.State();
            at_ += place;
            // What a piece has no room for may begin the next.
            if (place == 0 && !ReadCommands(end_ - at_ > kSteps ? at_ + kSteps : end_)) {
                return false;
            }
        }
        return true;
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
        ArcToCurve(Point(state_.position), arc, path_);
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
