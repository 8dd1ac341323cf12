// How much of each pixel an area covers: lines in, spans of equal coverage out. Exact areas, by
// AGG's cells; what lies outside the box is clipped before it becomes AGG's integers.

#pragma once

#include <agg2/agg_rasterizer_cells_aa.h>

#include <cstdint>
#include <memory>

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

class Coverage {
public:
    /// Begins an area; what an earlier one left is dropped. Only coverage inside `box` counts.
    void Start(const Box& box);
    /// Begins a part; the one before is closed.
    void MoveTo(const DPoint& p);
    /// Any numbers; those beyond reach are clamped.
    void LineTo(const DPoint& p);
    void Close();

    /// Calls span(x, y, length, coverage) for all runs of pixels with a coverage above 0 (at most
    /// 255), rows from the top, each from the left.
    template <class Span>
    void Sweep(bool nonZero, Span&& span);

private:
    struct Cell {
        int x;
        int y;
        int cover;
        int area;

        void initial()
        {
            x = 0x7FFFFFFF;
            y = 0x7FFFFFFF;
            cover = 0;
            area = 0;
        }
        void style(const Cell&) {}
        bool not_equal(int otherX, int otherY, const Cell&) const
        {
            return otherX != x || otherY != y;
        }
    };
    using Cells = agg::rasterizer_cells_aa<Cell>;

    // AGG frees its tables before it asks for larger ones, and would free them again after a
    // failure; cells that a failure interrupts are left behind instead.
    class Use {
    public:
        explicit Use(Coverage& coverage) : coverage_(coverage) {}
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use()
        {
            if (!isDone_) {
                static_cast<void>(coverage_.cells_.release());
            }
        }
        void Done() { isDone_ = true; }

    private:
        Coverage& coverage_;
        bool isDone_ = false;
    };

    static int CoverageOf(std::int64_t area, bool nonZero);
    void Line(double x0, double y0, double x1, double y1);
    void Emit(double x0, double y0, double x1, double y1);
    void Sort();

    std::unique_ptr<Cells> cells_;
    Box box_;
    // The box and points in 256ths of a pixel, whole numbers.
    double left_ = 0;
    double top_ = 0;
    double right_ = 0;
    double bottom_ = 0;
    DPoint start_;
    DPoint current_;
};

inline int Coverage::CoverageOf(std::int64_t area, bool nonZero)
{
    constexpr int kShift = 17;  // a whole pixel is 2 * 256 * 256
    constexpr std::int64_t kWhole = std::int64_t{1} << kShift;
    std::int64_t covered = area < 0 ? -area : area;
    if (!nonZero) {
        covered &= 2 * kWhole - 1;
        if (covered > kWhole) {
            covered = 2 * kWhole - covered;
        }
    } else if (covered > kWhole) {
        covered = kWhole;
    }
    return static_cast<int>((covered * 255 + kWhole / 2) >> kShift);
}

template <class Span>
void Coverage::Sweep(bool nonZero, Span&& span)
{
    Close();
    if (cells_ == nullptr) {
        return;
    }
    Sort();
    if (cells_->total_cells() == 0) {
        return;
    }
    const int last = cells_->max_y() < box_.y1 ? cells_->max_y() : box_.y1 - 1;
    for (int y = cells_->min_y(); y <= last; ++y) {
        unsigned left = cells_->scanline_num_cells(static_cast<unsigned>(y));
        const Cell* const* cell = cells_->scanline_cells(static_cast<unsigned>(y));
        std::int64_t cover = 0;
        while (left != 0) {
            int x = (*cell)->x;
            std::int64_t area = 0;
            for (; left != 0 && (*cell)->x == x; ++cell, --left) {
                area += (*cell)->area;
                cover += (*cell)->cover;
            }
            if (x >= box_.x1) {
                break;
            }
            if (area != 0) {
                const int level = CoverageOf(cover * 512 - area, nonZero);
                if (level != 0) {
                    span(x, y, 1, level);
                }
                ++x;
            }
            // Lines right of the box were dropped, so what the last cell leaves goes on to its end.
            const int end = left != 0 && (*cell)->x < box_.x1 ? (*cell)->x : box_.x1;
            if (end > x) {
                const int level = CoverageOf(cover * 512, nonZero);
                if (level != 0) {
                    span(x, y, end - x, level);
                }
            }
        }
    }
}

}  // namespace kivui::scrivel
