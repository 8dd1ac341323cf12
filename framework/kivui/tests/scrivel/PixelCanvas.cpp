#include "framework/kivui/tests/scrivel/PixelCanvas.h"

#include <charconv>
#include <limits>

namespace kivui::scrivel {
namespace {

std::string_view NextWord(std::string_view& text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == std::string_view::npos) {
        text = {};
        return {};
    }
    const std::size_t end = text.find(' ', begin);
    const std::string_view word = text.substr(begin, end - begin);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end);
    return word;
}

float NumberOf(std::string_view word)
{
    if (word == "nan") {
        return std::numeric_limits<float>::quiet_NaN();
    }
    if (word == "inf") {
        return std::numeric_limits<float>::infinity();
    }
    if (word == "big" || word == "-big") {
        return word == "big" ? 3e38f : -3e38f;
    }
    float value = 0;
    std::from_chars(word.data(), word.data() + word.size(), value);
    return value;
}

}  // namespace

PathP PixelCanvas::Path(std::string_view data)
{
    PathP path(Factory().CreatePath());
    const auto number = [&] { return NumberOf(NextWord(data)); };
    for (std::string_view word = NextWord(data); !word.empty(); word = NextWord(data)) {
        if (word == "Z") {
            path->Close();
            continue;
        }
        float n[6] = {};
        for (int i = 0; i < (word == "C" ? 6 : 2); ++i) {
            n[i] = number();
        }
        if (word == "M") {
            path->MoveTo(n[0], n[1]);
        } else if (word == "L") {
            path->LineTo(n[0], n[1]);
        } else {
            path->CurveTo(n[0], n[1], n[2], n[3], n[4], n[5]);
        }
    }
    return path;
}

void PixelCanvas::Fill(std::string_view data, const Color& color, bool nonZero)
{
    const BrushP brush(Factory().CreateSolidBrush(color));
    Surface().FillPath(*Path(data), *brush, nonZero);
}

void PixelCanvas::Stroke(std::string_view data, float width,
                         const std::function<void(PenInterface&)>& set)
{
    const PenP pen(Factory().CreatePen({0, 0, 0, 1}, width));
    set(*pen);
    Surface().StrokePath(*Path(data), *pen);
}

void PixelCanvas::Clip(std::string_view data, bool nonZero)
{
    Surface().ClipPath(*Path(data), nonZero, nullptr);
}

std::string PixelCanvas::Picture() const
{
    std::string text;
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x) {
            const int alpha = AlphaAt(x, y);
            text += alpha == 0     ? '.'
                    : alpha == 255 ? '#'
                                   : static_cast<char>('0' + alpha * 10 / 255);
        }
        text += '\n';
    }
    return text;
}

double PixelCanvas::Area() const
{
    double sum = 0;
    for (const std::uint32_t pixel : pixels_) {
        sum += pixel >> 24;
    }
    return sum / 255;
}

}  // namespace kivui::scrivel
