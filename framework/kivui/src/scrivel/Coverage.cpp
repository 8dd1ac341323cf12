#include "framework/kivui/src/scrivel/Coverage.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace kivui::scrivel {
namespace {

// Of the table: 1 MiB. A picture of 361 by 361 pixels is drawn in one go.
constexpr std::size_t kMaxChanges = std::size_t{1} << 17;

}  // namespace

void Coverage::Start(const Box& box)
{
    if (isInUse_) {
        // An exception ended the area before.
        std::fill(changes_.begin(), changes_.end(), 0);
        std::fill(marks_.begin(), marks_.end(), Mark{0});
        isInUse_ = false;
    }
    box_ = box;
    left_ = static_cast<double>(box.x0) * kSubpixels;
    top_ = static_cast<double>(box.y0) * kSubpixels;
    right_ = static_cast<double>(box.x1) * kSubpixels;
    bottom_ = static_cast<double>(box.y1) * kSubpixels;
    start_ = {left_, top_};
    current_ = start_;
    isInside_ = true;

    // A line on the right border marks the pixel behind the row, and changes the one behind that.
    rowLength_ = static_cast<std::size_t>(box.x1 - box.x0) + 2;
    rowMarks_ = (rowLength_ + kMarkBits - 1) / kMarkBits;
    const int rows = box.y1 - box.y0;
    bandRows_ = std::min(rows, static_cast<int>(kMaxChanges / rowLength_));
    const auto tableRows = static_cast<std::size_t>(bandRows_);
    if (changes_.size() < tableRows * rowLength_) {
        changes_.resize(tableRows * rowLength_);
    }
    if (marks_.size() < tableRows * rowMarks_) {
        marks_.resize(tableRows * rowMarks_);
    }
    firstRow_ = bandRows_;
    lastRow_ = kNone;
    constexpr std::size_t kKeptPieces = std::size_t{1} << 16;
    if (pieces_.capacity() > kKeptPieces) {
        std::vector<Piece>().swap(pieces_);
    }
    pieces_.clear();
    bandHeads_.clear();
    if (bandRows_ < rows) {
        bandHeads_.resize(static_cast<std::size_t>((rows + bandRows_ - 1) / bandRows_), kNone);
    }
    isInUse_ = true;
}

void Coverage::Close()
{
    const bool inside = IsInside(start_);
    if (isInside_ && inside) {
        Emit(current_, start_);
    } else {
        Clip(current_, start_);
    }
    current_ = start_;
    isInside_ = inside;
}

void Coverage::Clip(const DPoint& from, const DPoint& to)
{
    double x0 = from.x;
    double y0 = from.y;
    double x1 = to.x;
    double y1 = to.y;
    if (y0 == y1 || (y0 <= top_ && y1 <= top_) || (y0 >= bottom_ && y1 >= bottom_)) {
        return;
    }
    if (x0 >= right_ && x1 >= right_) {
        return;
    }
    const double slope = (x1 - x0) / (y1 - y0);
    const auto xAt = [&](double y) { return Round(from.x + (y - from.y) * slope); };
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
        const double y = Round(from.y + (x - from.x) / slope);
        return std::clamp(y, std::min(y0, y1), std::max(y0, y1));
    };
    if (x0 < left_ && x1 < left_) {
        Emit({left_, y0}, {left_, y1});
        return;
    }
    if (x0 < left_) {
        const double y = yAt(left_);
        Emit({left_, y0}, {left_, y});
        x0 = left_;
        y0 = y;
    } else if (x1 < left_) {
        const double y = yAt(left_);
        Emit({left_, y}, {left_, y1});
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
    Emit({x0, y0}, {x1, y1});
}

// Cuts the line where bands meet.
void Coverage::Keep(const Line& line)
{
    const bool falls = line.y0 < line.y1;
    const Line down = falls ? line : Line{line.x1, line.y1, line.x0, line.y0};
    const int bandHeight = bandRows_ * kSubpixels;
    const double slope = static_cast<double>(down.x1 - down.x0) / (down.y1 - down.y0);
    int x0 = down.x0;
    int y0 = down.y0;
    while (y0 < down.y1) {
        const int band = y0 / bandHeight;
        const int top = band * bandHeight;
        const int y1 = std::min(top + bandHeight, down.y1);
        const int x1 =
            y1 == down.y1 ? down.x1 : static_cast<int>(Round(down.x0 + slope * (y1 - down.y0)));
        const Line piece =
            falls ? Line{x0, y0 - top, x1, y1 - top} : Line{x1, y1 - top, x0, y0 - top};
        KeepPiece(static_cast<std::size_t>(band), piece);
        x0 = x1;
        y0 = y1;
    }
}

void Coverage::KeepPiece(std::size_t band, const Line& line)
{
    if (pieces_.size() == static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw std::bad_alloc();
    }
    pieces_.push_back({line, bandHeads_[band]});
    bandHeads_[band] = static_cast<int>(pieces_.size() - 1);
}

void Coverage::Draw(const Line& line)
{
    // From the top down, so that both directions give the same picture.
    const bool falls = line.y0 < line.y1;
    const int sign = falls ? 1 : -1;
    const Line down = falls ? line : Line{line.x1, line.y1, line.x0, line.y0};
    const int first = down.y0 >> kSubpixelBits;
    const int last = (down.y1 - 1) >> kSubpixelBits;
    firstRow_ = std::min(firstRow_, first);
    lastRow_ = std::max(lastRow_, last);
    if (first == last) {
        DrawInRow(first, down.x0, down.x1, down.y1 - down.y0, sign);
        return;
    }
    if (down.x0 == down.x1) {
        DrawUpright(down.x0, down.y0, down.y1, sign);
        return;
    }
    // Where it crosses from row to row: x with 32 more binary digits, and a half to round by.
    constexpr int kShift = 32;
    constexpr double kScale = 4294967296.0;
    const auto perLine =
        static_cast<std::int64_t>((down.x1 - down.x0) * kScale / (down.y1 - down.y0));
    std::int64_t at = (static_cast<std::int64_t>(down.x0) << kShift) +
                      (std::int64_t{1} << (kShift - 1)) +
                      perLine * (((first + 1) << kSubpixelBits) - down.y0);
    auto x = static_cast<int>(at >> kShift);
    DrawInRow(first, down.x0, x, ((first + 1) << kSubpixelBits) - down.y0, sign);
    for (int row = first + 1; row < last; ++row) {
        at += perLine * kSubpixels;
        const auto next = static_cast<int>(at >> kShift);
        DrawInRow(row, x, next, kSubpixels, sign);
        x = next;
    }
    DrawInRow(last, x, down.x1, down.y1 - (last << kSubpixelBits), sign);
}

// `height` is that of the line in the row, 1 to 256. A change counts twice the covered area.
inline void Coverage::DrawInRow(int row, int x0, int x1, int height, int sign)
{
    std::int64_t* const changes = changes_.data() + static_cast<std::size_t>(row) * rowLength_;
    Mark* const marks = marks_.data() + static_cast<std::size_t>(row) * rowMarks_;
    constexpr int kFraction = kSubpixels - 1;
    const auto mark = [marks](int x) {
        const auto bit = static_cast<std::size_t>(x);
        marks[bit / kMarkBits] |= Mark{1} << (bit % kMarkBits);
    };
    const auto change = [&](int x, int right, int pieceHeight) {
        // `right` is twice the mean distance from the pixel's left side.
        const int area = sign * pieceHeight * right;
        changes[x] += sign * pieceHeight * 2 * kSubpixels - area;
        changes[x + 1] += area;
        mark(x);
    };
    if (x0 > x1) {
        std::swap(x0, x1);
    }
    int x = x0 >> kSubpixelBits;
    const int lastX = x1 >> kSubpixelBits;
    if (x == lastX) {
        change(x, (x0 & kFraction) + (x1 & kFraction), height);
        return;
    }
    // Where it crosses from pixel to pixel: y with 20 more binary digits, and a half to round by.
    constexpr int kShift = 20;
    const int perUnit = (height << kShift) / (x1 - x0);
    int at = (1 << (kShift - 1)) + perUnit * (kSubpixels - (x0 & kFraction));
    int done = at >> kShift;
    change(x, (x0 & kFraction) + kSubpixels, done);
    for (++x; x < lastX; ++x) {
        at += perUnit * kSubpixels;
        const int next = at >> kShift;
        change(x, kSubpixels, next - done);
        done = next;
    }
    change(x, x1 & kFraction, height - done);
}

void Coverage::DrawUpright(int x, int y0, int y1, int sign)
{
    const auto column = static_cast<std::size_t>(x >> kSubpixelBits);
    const int right = sign * 2 * (x & (kSubpixels - 1));
    const int first = y0 >> kSubpixelBits;
    const int last = (y1 - 1) >> kSubpixelBits;
    std::int64_t* change = changes_.data() + static_cast<std::size_t>(first) * rowLength_ + column;
    Mark* mark = marks_.data() + static_cast<std::size_t>(first) * rowMarks_ + column / kMarkBits;
    const Mark bit = Mark{1} << (column % kMarkBits);
    for (int row = first; row <= last; ++row) {
        const int top = row == first ? y0 : row << kSubpixelBits;
        const int bottom = row == last ? y1 : (row + 1) << kSubpixelBits;
        const int height = bottom - top;
        change[0] += sign * height * 2 * kSubpixels - height * right;
        change[1] += height * right;
        *mark |= bit;
        change += rowLength_;
        mark += rowMarks_;
    }
}

}  // namespace kivui::scrivel
