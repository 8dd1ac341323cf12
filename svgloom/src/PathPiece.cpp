#include "svgloom/src/PathPiece.h"

#include <cstddef>

#include "svgloom/src/ArcToCurve.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/PathTokens.h"

namespace SVGLoom {

namespace {

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

}  // namespace

const char* ReadPieces(const char* text, const char* end, PathState& state, PathBuffer& path)
{
    using Width = PathTokens::Width;
    if (!PathTokens::Supports(Width::k16)) {
        return text;
    }
    const Width width = PathTokens::Supports(Width::k64) ? Width::k64 : Width::k16;
    PathTokens tokens;
    while (text != end) {
        tokens.Find(text, end, width);
        PieceReader reader(tokens, state, path);
        const PathTokens::Place place = reader.Read();
        state = reader.State();
        // What a piece has no room for may begin the next.
        if (place == 0) {
            break;
        }
        text += place;
    }
    return text;
}

}  // namespace SVGLoom
