#include "framework/kivui/src/scrivel/Coverage.h"

#include <cmath>
#include <limits>
#include <utility>

namespace kivui::scrivel {
namespace {

constexpr double kSubpixels = 256;
// Products of two of these stay finite.
constexpr double kReach = 1e60;
// AGG draws lines that are longer than 16,384 pixels twice over.
constexpr double kMaxLineLength = 16000 * kSubpixels;

// To the nearest whole number, halves upwards. std::floor is a call on the processors that we build
// for.
double Round(double value)
{
    constexpr double kAllWhole = 4503599627370496.0;  // 2^52: larger doubles have no fraction
    if (!(std::fabs(value) < kAllWhole)) {
        return value;
    }
    const double raised = value + 0.5;
    const auto whole = static_cast<double>(static_cast<std::int64_t>(raised));
    return whole > raised ? whole - 1 : whole;
}

double ToSubpixels(double pixels)
{
    const double value = Round(pixels * kSubpixels);
    if (!(value > -kReach)) {
        return -kReach;
    }
    return value < kReach ? value : kReach;
}

}  // namespace

void Coverage::Start(const Box& box)
{
    if (cells_ == nullptr) {
        // No limit: the number of cells follows the path and the box.
        cells_ = std::make_unique<Cells>(std::numeric_limits<unsigned>::max());
    }
    cells_->reset();
    box_ = box;
    left_ = box.x0 * kSubpixels;
    top_ = box.y0 * kSubpixels;
    right_ = box.x1 * kSubpixels;
    bottom_ = box.y1 * kSubpixels;
    start_ = {};
    current_ = {};
}

void Coverage::MoveTo(const DPoint& p)
{
    Close();
    start_ = {ToSubpixels(p.x), ToSubpixels(p.y)};
    current_ = start_;
}

void Coverage::LineTo(const DPoint& p)
{
    const DPoint to = {ToSubpixels(p.x), ToSubpixels(p.y)};
    Line(current_.x, current_.y, to.x, to.y);
    current_ = to;
}

void Coverage::Close()
{
    Line(current_.x, current_.y, start_.x, start_.y);
    current_ = start_;
}

void Coverage::Line(double x0, double y0, double x1, double y1)
{
    // Level lines cover nothing by themselves.
    if (y0 == y1 || (y0 <= top_ && y1 <= top_) || (y0 >= bottom_ && y1 >= bottom_)) {
        return;
    }
    if (x0 >= right_ && x1 >= right_) {
        return;
    }
    if (x0 >= left_ && x1 >= left_ && x0 <= right_ && x1 <= right_ && y0 >= top_ && y1 >= top_ &&
        y0 <= bottom_ && y1 <= bottom_) {
        Emit(x0, y0, x1, y1);
        return;
    }
    const double slope = (x1 - x0) / (y1 - y0);
    const double fromX = x0;
    const double fromY = y0;
    const auto xAt = [&](double y) { return Round(fromX + (y - fromY) * slope); };
    for (auto [x, y] : {std::pair(&x0, &y0), std::pair(&x1, &y1)}) {
        if (*y < top_) {
            *x = xAt(top_);
            *y = top_;
        } else if (*y > bottom_) {
            *x = xAt(bottom_);
            *y = bottom_;
        }
    }
    // Left of the box a line still counts for all pixels to its right: it runs along the border.
    // Where it crosses, both pieces take the same rounded y, so that no coverage is lost.
    const auto yAt = [&](double x) {
        const double y = Round(fromY + (x - fromX) / slope);
        const double low = y0 < y1 ? y0 : y1;
        const double high = y0 < y1 ? y1 : y0;
        return y < low ? low : (y > high ? high : y);
    };
    if (x0 < left_ && x1 < left_) {
        Emit(left_, y0, left_, y1);
        return;
    }
    if (x0 < left_) {
        const double y = yAt(left_);
        Emit(left_, y0, left_, y);
        x0 = left_;
        y0 = y;
    } else if (x1 < left_) {
        const double y = yAt(left_);
        Emit(left_, y, left_, y1);
        x1 = left_;
        y1 = y;
    }
    if (x0 >= right_ && x1 >= right_) {
        return;
    }
    if (x0 > right_) {
        y0 = yAt(right_);
        x0 = right_;
    } else if (x1 > right_) {
        y1 = yAt(right_);
        x1 = right_;
    }
    Emit(x0, y0, x1, y1);
}

void Coverage::Emit(double x0, double y0, double x1, double y1)
{
    if (y0 == y1) {
        return;
    }
    if (std::fabs(x1 - x0) > kMaxLineLength) {
        const double x = Round((x0 + x1) / 2);
        const double y = Round((y0 + y1) / 2);
        Emit(x0, y0, x, y);
        Emit(x, y, x1, y1);
        return;
    }
    Use use(*this);
    cells_->line(static_cast<int>(x0), static_cast<int>(y0), static_cast<int>(x1),
                 static_cast<int>(y1));
    use.Done();
}

void Coverage::Sort()
{
    Use use(*this);
    cells_->sort_cells();
    use.Done();
}

}  // namespace kivui::scrivel
