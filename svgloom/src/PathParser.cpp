// Path data: commands are read one by one and replayed onto the path at once, so that what stands
// before an error is drawn.

#include <kivcore/Trace.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "svgloom/src/ArcToCurve.h"
#include "svgloom/src/Characters.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/PathBuffer.h"
#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/TraceText.h"

namespace SVGLoom {

namespace {

constinit kivcore::debug::TraceSite unhandledSite("SVGLoom.Parse", 6);

/// What stands behind a command letter.
struct Arguments {
    std::uint8_t numbers = 0;
    std::uint8_t flags = 0;  // a bit for each of the numbers that is a flag of one digit
    bool isKnown = false;
};

constexpr std::size_t kMostNumbers = 7;

/// By the lower-case letter.
constexpr Arguments ArgumentsOf(char command)
{
    switch (command) {
        case 'm':
        case 'l':
        case 't':
            return {2, 0, true};
        case 'h':
        case 'v':
            return {1, 0, true};
        case 'c':
            return {6, 0, true};
        case 's':
        case 'q':
            return {4, 0, true};
        case 'a':
            return {kMostNumbers, 1 << 3 | 1 << 4, true};
        case 'z':
            return {0, 0, true};
        default:
            return {};
    }
}

// One read instead of a switch: what comes next is hard to foresee.
constexpr auto kArguments = [] {
    std::array<Arguments, 128> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = ArgumentsOf(ToLower(static_cast<char>(i)));
    }
    return table;
}();

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

// Everything is inlined into Read(), so that the state stays in registers: its only other home
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
        const auto index = static_cast<unsigned char>(command);
        const Arguments arguments = index < kArguments.size() ? kArguments[index] : Arguments();
        if (!arguments.isKnown) {
            return Outcome::kUnknown;
        }
        const char* const start = current_;
        if (notes_ != nullptr && ToLower(command) == 's') {
            NoteSmoothStart();
        }
        float numbers[kMostNumbers];
        // The one place where numbers are read: code that is met often is foreseen best.
        for (unsigned i = 0; i < arguments.numbers; ++i) {
            SkipSeparator(current_, end_);
            const bool isFlag = (arguments.flags >> i & 1U) != 0;
            if (isFlag ? !ReadFlag(numbers[i]) : !ReadNumber(current_, end_, numbers[i])) {
                return Outcome::kUnreadable;
            }
        }
        const bool relative = command >= 'a';
        const Point origin = relative ? position_ : Point();
        const auto point = [&numbers, relative, &origin](int at) {
            const Point given = {numbers[at], numbers[at + 1]};
            return relative ? Point{given.x + origin.x, given.y + origin.y} : given;
        };
        switch (ToLower(command)) {
            case 'm':
                position_ = start_ = point(0);
                path_.MoveTo(position_.x, position_.y);
                break;
            case 'l':
                LineTo(point(0));
                break;
            case 'h':
                LineTo({relative ? position_.x + numbers[0] : numbers[0], position_.y});
                break;
            case 'v':
                LineTo({position_.x, relative ? position_.y + numbers[0] : numbers[0]});
                break;
            case 'c':
                CurveTo(point(0), point(2), point(4));
                break;
            case 's':
                // Always the reflection, whatever command came before.
                CurveTo(Reflected(cubicControl_), point(0), point(2));
                break;
            case 'q':
                QuadTo(point(0), point(2));
                break;
            case 't': {
                const char before = ToLower(previous_);
                QuadTo(before == 'q' || before == 't' ? Reflected(quadControl_) : position_,
                       point(0));
                break;
            }
            case 'a':
                ArcTo({numbers[0], numbers[1], numbers[2], numbers[3] != 0, numbers[4] != 0,
                       point(5)},
                      start);
                break;
            default:
                path_.ClosePath();
                position_ = start_;
                break;
        }
        return Outcome::kDone;
    }

    void LineTo(const Point& to)
    {
        path_.LineTo(to);
        position_ = to;
    }

    void CurveTo(const Point& first, const Point& second, const Point& to)
    {
        path_.CurveTo(first, second, to);
        cubicControl_ = second;
        position_ = to;
    }

    void QuadTo(const Point& control, const Point& to)
    {
        path_.QuadTo(control, to);
        quadControl_ = control;
        position_ = to;
    }

    void ArcTo(const Arc& arc, const char* start)
    {
        if (notes_ != nullptr && IsTurned(arc)) {
            notes_->Add(PathNote::kRotatedArc, start);
        }
        ArcToCurve(Point(position_), arc, path_);
        position_ = arc.to;
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

    Point Reflected(const Point& control) const
    {
        return {2 * position_.x - control.x, 2 * position_.y - control.y};
    }

    /// A single "0" or "1"; flags may touch each other and the number behind them.
    bool ReadFlag(float& flag)
    {
        if (current_ == end_ || (*current_ != '0' && *current_ != '1')) {
            return false;
        }
        flag = *current_++ == '1' ? 1.0f : 0.0f;
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
