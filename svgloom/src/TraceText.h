// Texts of traces: numbers as "%g" writes them in the C locale, points as "x, y".

#pragma once

#include <string>
#include <string_view>

namespace SVGLoom {

/// Built only where the channel is on.
class TraceText {
public:
    explicit TraceText(std::string_view opening) : text_(opening) {}

    TraceText& operator<<(std::string_view text)
    {
        text_ += text;
        return *this;
    }
    TraceText& operator<<(char c)
    {
        text_ += c;
        return *this;
    }
    TraceText& operator<<(float value);
    /// Joined by ", ".
    template <class... More>
    TraceText& Values(float first, More... more)
    {
        *this << first;
        ((*this << ", " << more), ...);
        return *this;
    }

    const std::string& Text() const { return text_; }

private:
    std::string text_;
};

}  // namespace SVGLoom
