// How much of each pixel an area covers: lines in, runs of equal coverage out, exact areas in whole
// numbers. What lies outside the box is clipped.

#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "framework/kivui/src/scrivel/Geometry.h"

namespace kivui::scrivel {

/// Pixels x0 <= x < x1, y0 <= y < y1.
struct Box {
    int x0 = 0;
    int y0 = 0;
    int x1 = 0;
    int y1 = 0;

    bool IsEmpty() const { return x0 >= x1 || y0 >= y1; }
};

/// Each line leaves in every pixel that it passes how much it changes the coverage there and from
/// the next pixel on, so a pixel's coverage is the sum along its row. The changes stand in a table
/// of the box, or of a few rows of it at a time where it is large; marks tell which are not 0.
/// After an exception Start begins anew.
class Coverage {
public:
    /// Begins an area; what an earlier one left is dropped. Only coverage inside `box` counts. The
    /// box is not empty, and no side is above 32,767.
    void Start(const Box& box);
    /// Begins a part; the one before is closed.
    void MoveTo(const DPoint& p)
    {
        Close();
        start_ = {ToSubpixels(p.x), ToSubpixels(p.y)};
        current_ = start_;
        isInside_ = IsInside(current_);
    }
    /// Any numbers; those beyond reach are clamped.
    void LineTo(const DPoint& p)
    {
        const DPoint to = {ToSubpixels(p.x), ToSubpixels(p.y)};
        const bool inside = IsInside(to);
        if (isInside_ && inside) {
            Emit(current_, to);
        } else {
            Clip(current_, to);
        }
        current_ = to;
        isInside_ = inside;
    }
    void Close();

    /// Calls sink.Row(y) and then sink.Run(x, length, level) for the runs of pixels in it that are
    /// covered, from the left; the level is 1 to 255. Rows come from the top, some without runs.
    template <class Sink>
    void Sweep(bool nonZero, Sink& sink);

private:
    static constexpr int kSubpixelBits = 8;
    static constexpr int kSubpixels = 1 << kSubpixelBits;
    static constexpr int kNone = -1;
    using Mark = std::uint64_t;
    static constexpr std::size_t kMarkBits = 64;

    // A line in 256ths of a pixel from the box's corner, inside of it.
    struct Line {
        int x0;
        int y0;
        int x1;
        int y1;
    };
    // A line inside one band, from its first row.
    struct Piece {
        Line line;
        int next;  // of the same band; or kNone
    };

    static double Round(double value);
    static double ToSubpixels(double pixels);
    template <bool kNonZero>
    static int LevelOf(std::int64_t area);

    bool IsInside(const DPoint& p) const
    {
        return p.x >= left_ && p.x <= right_ && p.y >= top_ && p.y <= bottom_;
    }
    void Clip(const DPoint& from, const DPoint& to);
    /// Both points inside the box.
    void Emit(const DPoint& from, const DPoint& to)
    {
        if (from.y != to.y) {  // level lines cover nothing by themselves
            Add({static_cast<int>(from.x - left_), static_cast<int>(from.y - top_),
                 static_cast<int>(to.x - left_), static_cast<int>(to.y - top_)});
        }
    }
    void Add(const Line& line)
    {
        if (bandHeads_.empty()) {
            Draw(line);
        } else {
            Keep(line);
        }
    }
    void Keep(const Line& line);
    void KeepPiece(std::size_t band, const Line& line);
    /// Puts the line's changes into the table.
    void Draw(const Line& line);
    void DrawInRow(int row, int x0, int x1, int height, int sign);
    void DrawUpright(int x, int y0, int y1, int sign);
    template <bool kNonZero, class Sink>
    void SweepBands(Sink& sink);
    template <bool kNonZero, class Sink>
    void SweepRows(int y, Sink& sink);
    template <bool kNonZero, class Sink>
    void SweepRow(std::int64_t* changes, Mark* marks, Sink& sink);

    Box box_;
    // The box and points in 256ths of a pixel, whole numbers.
    double left_ = 0;
    double top_ = 0;
    double right_ = 0;
    double bottom_ = 0;
    DPoint start_;
    DPoint current_;
    bool isInside_ = true;

    // The table: width + 2 changes a row, in units of 2^-17 of a pixel. All are 0 between areas.
    std::vector<std::int64_t> changes_;
    std::vector<Mark> marks_;  // a bit for each: it, and maybe the next one, is not 0
    std::size_t rowLength_ = 0;
    std::size_t rowMarks_ = 0;
    int firstRow_ = 0;  // of those that changed
    int lastRow_ = kNone;
    bool isInUse_ = false;  // the table may hold changes

    // Where the table does not hold all of the box: its lines by bands of rows.
    int bandRows_ = 0;
    std::vector<int> bandHeads_;
    std::vector<Piece> pieces_;
};

inline double Coverage::Round(double value)
{
    // Of doubles this large the fraction has no digits; halves go to the even number.
    constexpr double kNoFraction = 6755399441055744.0;  // 1.5 * 2^52
    constexpr double kReach = 1125899906842624.0;       // 2^50
    return std::fabs(value) < kReach ? (value + kNoFraction) - kNoFraction : value;
}

inline double Coverage::ToSubpixels(double pixels)
{
    // Products of two of these stay finite.
    constexpr double kReach = 1e60;
    const double value = Round(pixels * kSubpixels);
    return value > -kReach ? (value < kReach ? value : kReach) : -kReach;
}

template <bool kNonZero>
int Coverage::LevelOf(std::int64_t area)
{
    constexpr int kShift = 2 * kSubpixelBits + 1;
    constexpr std::int64_t kWhole = std::int64_t{1} << kShift;
    std::int64_t covered = area < 0 ? -area : area;
    if constexpr (!kNonZero) {
        covered &= 2 * kWhole - 1;
        covered = covered > kWhole ? 2 * kWhole - covered : covered;
    }
    covered = covered < kWhole ? covered : kWhole;
    return static_cast<int>((covered * 255 + kWhole / 2) >> kShift);
}

template <class Sink>
void Coverage::Sweep(bool nonZero, Sink& sink)
{
    Close();
    if (nonZero) {
        SweepBands<true>(sink);
    } else {
        SweepBands<false>(sink);
    }
    isInUse_ = false;
}

template <bool kNonZero, class Sink>
void Coverage::SweepBands(Sink& sink)
{
    if (bandHeads_.empty()) {
        SweepRows<kNonZero>(box_.y0, sink);
        return;
    }
    int y = box_.y0;
    for (const int head : bandHeads_) {
        for (int i = head; i != kNone; i = pieces_[static_cast<std::size_t>(i)].next) {
            Draw(pieces_[static_cast<std::size_t>(i)].line);
        }
        SweepRows<kNonZero>(y, sink);
        y += bandRows_;
    }
}

template <bool kNonZero, class Sink>
void Coverage::SweepRows(int y, Sink& sink)
{
    for (int row = firstRow_; row <= lastRow_; ++row) {
        sink.Row(y + row);
        SweepRow<kNonZero>(changes_.data() + static_cast<std::size_t>(row) * rowLength_,
                           marks_.data() + static_cast<std::size_t>(row) * rowMarks_, sink);
    }
    firstRow_ = bandRows_;
    lastRow_ = kNone;
}

template <bool kNonZero, class Sink>
void Coverage::SweepRow(std::int64_t* changes, Mark* marks, Sink& sink)
{
    const int left = box_.x0;
    const int width = box_.x1 - box_.x0;
    const std::size_t words = rowMarks_;
    int from = 0;
    int level = 0;
    std::int64_t area = 0;
    Mark carry = 0;
    for (std::size_t i = 0; i < words; ++i) {
        const Mark own = marks[i];
        Mark changed = own | own << 1 | carry;
        carry = own >> (kMarkBits - 1);
        marks[i] = 0;
        for (; changed != 0; changed &= changed - 1) {
            const auto x = static_cast<int>(i * kMarkBits) + std::countr_zero(changed);
            if (level != 0 && from < width) {
                sink.Run(left + from, (x < width ? x : width) - from, level);
            }
            from = x;
            area += changes[x];
            changes[x] = 0;
            level = LevelOf<kNonZero>(area);
        }
    }
    // Lines right of the box were dropped, so what the last one leaves goes on to its end.
    if (level != 0 && from < width) {
        sink.Run(left + from, width - from, level);
    }
}

}  // namespace kivui::scrivel
