#include "svgloom/src/TraceText.h"

#include <charconv>

namespace SVGLoom {

TraceText& TraceText::operator<<(float value)
{
    constexpr int kDigits = 6;  // those of "%g"
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value),
                                      std::chars_format::general, kDigits);
    text_.append(buffer, result.ptr);
    return *this;
}

}  // namespace SVGLoom
