#include "svgloom/src/PathPiece.h"

#include <cstddef>
#include <cstring>

#include "svgloom/src/ArcToCurve.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/PathRows.h"
#include "svgloom/src/PathTokens.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace SVGLoom {

#if defined(__x86_64__)

// What PathTokens needs at least.
#define KIV_VECTORS gnu::target("avx")

namespace {

/// Four whole numbers, or a mask.
[[KIV_VECTORS, gnu::always_inline]] inline __m128i VectorOf(const PathRow::Lanes& lanes)
{
    int bytes = 0;
    static_assert(sizeof bytes == sizeof lanes);
    std::memcpy(&bytes, lanes.data(), sizeof bytes);
    return _mm_cvtepi8_epi32(_mm_cvtsi32_si128(bytes));
}

[[KIV_VECTORS, gnu::always_inline]] inline __m128 Choose(const PathRow::Lanes& mask, __m128 set,
                                                         __m128 clear)
{
    return _mm_blendv_ps(clear, set, _mm_castsi128_ps(VectorOf(mask)));
}

[[KIV_VECTORS, gnu::always_inline]] inline __m128 VectorOf(const Point& lower, const Point& upper)
{
    return _mm_setr_ps(lower.x, lower.y, upper.x, upper.y);
}

[[KIV_VECTORS, gnu::always_inline]] inline Point LowerOf(__m128 vector)
{
    return {_mm_cvtss_f32(vector), _mm_cvtss_f32(_mm_movehdup_ps(vector))};
}

[[KIV_VECTORS, gnu::always_inline]] inline Point UpperOf(__m128 vector)
{
    return LowerOf(_mm_movehl_ps(vector, vector));
}

[[KIV_VECTORS, gnu::always_inline]] inline __m128 LowerTwice(__m128 vector)
{
    return _mm_movelh_ps(vector, vector);
}

[[KIV_VECTORS, gnu::always_inline]] inline __m128 UpperAndLower(__m128 upper, __m128 lower)
{
    return _mm_shuffle_ps(upper, lower, _MM_SHUFFLE(1, 0, 3, 2));
}

constexpr std::size_t IndexOf(char command)
{
    return static_cast<unsigned char>(command - 'A');
}

/// Carries out the commands of a piece, as far as they are what they should be. All is inlined into
/// Read(), so that the state stays in registers.
class PieceReader {
public:
    [[KIV_VECTORS, gnu::always_inline]] PieceReader(const PathTokens& tokens,
                                                    const PathState& state, PathBuffer& path)
        : tokens_(tokens),
          path_(path),
          previous_(state.previous),
          position_(VectorOf(state.position, state.position)),
          start_(VectorOf(state.start, state.start)),
          controls_(VectorOf(state.quadControl, state.cubicControl)),
          command_(tokens.Commands()),
          number_(tokens.Numbers()),
          value_(tokens.Values())
    {
    }

    /// Returns the place of the first command or repeat that is not carried out; the end of the
    /// piece if there is none.
    [[KIV_VECTORS, gnu::always_inline]] PathTokens::Place Read()
    {
        next_ = *command_;
        if (IsClose(previous_) && !GoBehindClose(previous_)) {
            return *number_;
        }
        PathTokens::Place place = 0;
        char command = RepeatOf(previous_);
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
                previous_ = command;
                return *number_;
            }
            previous_ = command;
            if (next_ == tokens_.End()) {
                return next_;
            }
            command = TakeCommand(place);
        }
    }

    [[KIV_VECTORS, gnu::always_inline]] PathState State() const
    {
        return {previous_, LowerOf(position_), LowerOf(start_), UpperOf(controls_),
                LowerOf(controls_)};
    }

private:
    enum class Origin { kPage, kPosition };

    /// One command with its repeats. False if it, or a repeat, is not carried out; the numbers of
    /// that are still to be taken.
    [[KIV_VECTORS, gnu::always_inline]] bool Execute(char& command)
    {
        if (IndexOf(command) >= kPathLetters) {
            return false;
        }
        if (kPathRows[IndexOf(command)].count != 0) {
            return AddSegments(command);
        }
        switch (command) {
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
    [[KIV_VECTORS, gnu::always_inline]] Point PointAt(float x, float y) const
    {
        const Point position = LowerOf(position_);
        return origin == Origin::kPosition ? Point{x + position.x, y + position.y} : Point{x, y};
    }

    /// A move, line or curve with its repeats.
    [[KIV_VECTORS, gnu::always_inline]] bool AddSegments(char command)
    {
        // A negative zero adds nothing, not even to the sign of a zero.
        const __m128 nothing = _mm_set1_ps(-0.0f);
        const PathRow* row = &kPathRows[IndexOf(command)];
        for (;;) {
            if (!Has(row->count)) {
                return false;
            }
            const __m128 numbers = _mm_loadu_ps(value_);
            const __m128 reflected = _mm_sub_ps(_mm_add_ps(position_, position_), controls_);
            const __m128 controls =
                _mm_add_ps(Choose(row->reflects, UpperAndLower(reflected, numbers), numbers),
                           Choose(row->controlOrigin, position_, nothing));
            const __m128 endNumbers =
                _mm_permutevar_ps(_mm_loadu_ps(value_ + row->endNumber), VectorOf(row->endNumbers));
            const __m128 end = _mm_add_ps(Choose(row->endGiven, endNumbers, nothing),
                                          Choose(row->endOrigin, position_, nothing));
            path_.AppendVectors(row->kind, controls, row->controlBytes, end);
            position_ = LowerTwice(end);
            start_ = Choose(row->starts, position_, start_);
            controls_ = Choose(row->keeps, controls, controls_);
            Take(row->count);
            if (!HasMore()) {
                return true;
            }
            if (row->kind == PathSegments::Kind::kMove) {
                row = &kPathRows[IndexOf(RepeatOf(command))];
            }
        }
    }
    template <Origin origin>
    [[KIV_VECTORS, gnu::always_inline]] bool SmoothQuadTo()
    {
        const char before = ToLower(previous_);
        bool isBehindQuad = before == 'q' || before == 't';
        do {
            if (!Has(2)) {
                return false;
            }
            const Point position = LowerOf(position_);
            const Point control = isBehindQuad ? Reflected(position, LowerOf(controls_)) : position;
            const Point to = PointAt<origin>(value_[0], value_[1]);
            path_.QuadTo(control, to);
            controls_ = VectorOf(control, UpperOf(controls_));
            position_ = VectorOf(to, to);
            Take(2);
            isBehindQuad = true;
        } while (HasMore());
        return true;
    }
    template <Origin origin>
    [[KIV_VECTORS, gnu::always_inline]] bool ArcTo()
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
            arc.to = PointAt<origin>(to.x, to.y);
            path_.ArcTo(LowerOf(position_), arc);
            position_ = VectorOf(arc.to, arc.to);
            Take(count);
        } while (HasMore());
        return true;
    }
    [[KIV_VECTORS, gnu::always_inline]] bool Close(char& command)
    {
        path_.ClosePath();
        position_ = start_;
        return GoBehindClose(command);
    }
    /// Skips further closes, and makes the move that takes the place of `command` then. False if
    /// there are numbers.
    [[KIV_VECTORS, gnu::always_inline]] bool GoBehindClose(char& command)
    {
        for (; next_ != tokens_.End() && !HasMore(); next_ = *++command_) {
            const char following = *tokens_.At(next_);
            if (!IsClose(following)) {
                if (ToLower(following) != 'm') {
                    MoveBehindClose(State(), path_);
                    command = 'm';
                }
                return true;
            }
        }
        return !HasMore();
    }

    const PathTokens& tokens_;
    PathBuffer& path_;
    char previous_;
    __m128 position_;  // twice
    __m128 start_;     // of the subpath, twice
    __m128 controls_;  // the last control points of a quadratic and of a cubic curve
    const PathTokens::Place* command_;
    const PathTokens::Place* number_;
    const float* value_;
    PathTokens::Place next_ = 0;  // where the numbers of the command end
};

}  // namespace

[[KIV_VECTORS]] const char* ReadPieces(const char* text, const char* end, PathState& state,
                                       PathBuffer& path)
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

#else

const char* ReadPieces(const char* text, const char*, PathState&, PathBuffer&)
{
    return text;
}

#endif

}  // namespace SVGLoom
