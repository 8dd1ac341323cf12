// What the tests of the value parsers share: inputs in blocks of exactly their size, floats as
// short text, and receivers that write down what they are asked to do.

#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "svgloom/renderer/SVGRenderer.h"

namespace SVGLoom::testing_support {

/// A copy of a text with nothing behind it, so that sanitizers see one byte too far.
class ExactText {
public:
    explicit ExactText(std::string_view text)
        : bytes_(std::make_unique<char[]>(text.size())), size_(text.size())
    {
        std::copy(text.begin(), text.end(), bytes_.get());
    }
    const char* begin() const { return bytes_.get(); }
    const char* end() const { return bytes_.get() + size_; }
    std::string_view View() const { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_;
};

/// The shortest text that reads back as `value`.
inline std::string Text(float value)
{
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return {buffer, result.ptr};
}

inline std::string Text(const Color& color)
{
    return Text(color.red) + " " + Text(color.green) + " " + Text(color.blue) + " " +
           Text(color.alpha);
}

/// "Name(1, 2)" for each call, separated by "; ".
class CallLog {
public:
    template <class... Values>
    void Add(const char* name, Values... values)
    {
        if (!text_.empty()) {
            text_ += "; ";
        }
        text_ += name;
        text_ += '(';
        [[maybe_unused]] const char* separator = "";
        ((text_ += separator, text_ += Text(values), separator = ", "), ...);
        text_ += ')';
    }
    const std::string& Written() const { return text_; }

private:
    std::string text_;
};

class RecordingTransform : public Transform {
public:
    void SetMatrix(float a, float b, float c, float d, float e, float f) override
    {
        log.Add("SetMatrix", a, b, c, d, e, f);
    }
    void Rotate(float angleDegrees) override { log.Add("Rotate", angleDegrees); }
    void Translate(float tx, float ty) override { log.Add("Translate", tx, ty); }
    void Scale(float sx, float sy) override { log.Add("Scale", sx, sy); }
    void Concat(float a, float b, float c, float d, float e, float f) override
    {
        log.Add("Concat", a, b, c, d, e, f);
    }

    CallLog log;
};

class RecordingPath : public Path {
public:
    void AddRect(float x, float y, float width, float height) override
    {
        log.Add("AddRect", x, y, width, height);
    }
    void AddRoundedRect(float x, float y, float width, float height, float rx, float ry) override
    {
        log.Add("AddRoundedRect", x, y, width, height, rx, ry);
    }
    void AddEllipse(float cx, float cy, float rx, float ry) override
    {
        log.Add("AddEllipse", cx, cy, rx, ry);
    }
    void MoveTo(float x, float y) override { log.Add("M", x, y); }
    void LineTo(float x, float y) override { log.Add("L", x, y); }
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override
    {
        log.Add("C", x1, y1, x2, y2, x, y);
    }
    void QuadTo(float cx, float cy, float x, float y) override { log.Add("Q", cx, cy, x, y); }
    void ClosePath() override { log.Add("Z"); }

    CallLog log;
};

}  // namespace SVGLoom::testing_support
