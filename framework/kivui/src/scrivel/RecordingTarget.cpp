#include <charconv>
#include <cmath>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include <kivui/ScrivelTargets.h>

#include "framework/kivui/src/scrivel/Objects.h"

namespace kivui::scrivel {
namespace {

// One line of JSON.
class Line {
public:
    explicit Line(const char* operation)
    {
        text_ = "{\"op\":\"";
        text_ += operation;
        text_ += '"';
    }

    Line& Name(const char* name)
    {
        text_ += ",\"";
        text_ += name;
        text_ += "\":";
        return *this;
    }
    Line& Word(const char* word)
    {
        text_ += '"';
        text_ += word;
        text_ += '"';
        return *this;
    }
    Line& Bare(const char* text)
    {
        text_ += text;
        return *this;
    }
    Line& Number(float value)
    {
        if (!std::isfinite(value)) {
            return Word(std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf");
        }
        constexpr int kDigits = 9;  // read back to the same float
        char buffer[32];
        const auto result =
            std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value),
                          std::chars_format::general, kDigits);
        text_.append(buffer, result.ptr);
        return *this;
    }
    template <class Range, class Write>
    Line& List(const Range& range, Write&& write)
    {
        text_ += '[';
        bool isFirst = true;
        for (const auto& entry : range) {
            if (!isFirst) {
                text_ += ',';
            }
            isFirst = false;
            write(entry);
        }
        text_ += ']';
        return *this;
    }
    Line& Numbers(std::initializer_list<float> values)
    {
        return List(values, [this](float value) { Number(value); });
    }
    Line& Value(const Point& p) { return Numbers({p.x, p.y}); }
    Line& Value(const Color& c) { return Numbers({c.red, c.green, c.blue, c.alpha}); }
    Line& Value(const Matrix& m) { return Numbers({m.a, m.b, m.c, m.d, m.e, m.f}); }
    Line& Value(bool value) { return Bare(value ? "true" : "false"); }
    Line& Value(const PathObject& path);

    const std::string& Finish()
    {
        text_ += '}';
        return text_;
    }

private:
    std::string text_;
};

struct SegmentRow {
    const char* word;
    int points;
};

// By SegmentKind.
constexpr SegmentRow kSegmentRows[] = {{"M", 1}, {"L", 1}, {"C", 3}, {"Z", 0}};

Line& Line::Value(const PathObject& path)
{
    const Point* point = path.Points().data();
    return List(path.Kinds(), [&](SegmentKind kind) {
        const SegmentRow& row = kSegmentRows[static_cast<std::size_t>(kind)];
        text_ += '[';
        Word(row.word);
        for (int i = 0; i < row.points; ++i, ++point) {
            text_ += ',';
            Number(point->x);
            text_ += ',';
            Number(point->y);
        }
        text_ += ']';
    });
}

// By LineJoin and LineCap.
constexpr const char* kJoinWords[] = {"miter", "round", "bevel"};
constexpr const char* kCapWords[] = {"butt", "round", "square"};

class RecordingSurface final : public SurfaceInterface {
public:
    explicit RecordingSurface(CallSink sink) : sink_(std::move(sink)) {}

    void FillPath(const PathInterface& path, const BrushInterface& brush, bool nonZero) override
    {
        Line line = Begin("fill", path, nonZero);
        sink_(line.Name("color").Value(ObjectOf(brush).color).Finish());
    }

    void FillPathLinear(const PathInterface& path, const LinearShaderInterface& shader,
                        bool nonZero) override
    {
        const LinearShaderObject& object = ObjectOf(shader);
        Line line = Begin("fillLinear", path, nonZero);
        line.Name("from").Value(object.start).Name("to").Value(object.end);
        line.Name("colors").List(object.colors, [&](const Color& color) { line.Value(color); });
        line.Name("offsets").List(object.offsets, [&](float offset) { line.Number(offset); });
        sink_(line.Finish());
    }

    void FillPathRadial(const PathInterface& path, const RadialShaderInterface& shader,
                        bool nonZero) override
    {
        const RadialShaderObject& object = ObjectOf(shader);
        Line line = Begin("fillRadial", path, nonZero);
        line.Name("center").Value(object.center).Name("edge").Value(object.edge);
        line.Name("inner").Value(object.inner).Name("outer").Value(object.outer);
        sink_(line.Finish());
    }

    void StrokePath(const PathInterface& path, const PenInterface& pen) override
    {
        const PenObject& object = ObjectOf(pen);
        Line line("stroke");
        line.Name("path").Value(ObjectOf(path)).Name("color").Value(object.color);
        line.Name("width").Number(object.width).Name("miterLimit").Number(object.miterLimit);
        line.Name("dash").List(object.dash, [&](float length) { line.Number(length); });
        line.Name("join").Word(kJoinWords[static_cast<std::size_t>(object.join)]);
        line.Name("cap").Word(kCapWords[static_cast<std::size_t>(object.cap)]);
        sink_(line.Finish());
    }

    void ClipPath(const PathInterface& path, bool nonZero, const Matrix* transform) override
    {
        Line line("clip");
        line.Name("path").Value(ObjectOf(path));
        line.Name("rule").Word(nonZero ? "nonzero" : "evenodd").Name("transform");
        if (transform != nullptr) {
            line.Value(*transform);
        } else {
            line.Bare("null");
        }
        sink_(line.Finish());
    }

    void Concat(const Matrix& matrix) override
    {
        Line line("transform");
        sink_(line.Name("m").Value(matrix).Finish());
    }

    void Save() override { sink_("{\"op\":\"save\"}"); }

    void Restore() noexcept override
    {
        try {
            sink_("{\"op\":\"restore\"}");
        } catch (...) {
            // Nothing is undone here, and a caller that unwinds could not be told.
        }
    }

private:
    static Line Begin(const char* operation, const PathInterface& path, bool nonZero)
    {
        Line line(operation);
        line.Name("path").Value(ObjectOf(path)).Name("winding").Value(nonZero);
        return line;
    }

    const CallSink sink_;
};

class RecordingTarget final : public DrawingTarget {
public:
    explicit RecordingTarget(CallSink sink) : surface_(std::move(sink)) {}

    FactoryInterface& Factory() noexcept override { return factory_; }
    SurfaceInterface& Surface() noexcept override { return surface_; }

private:
    ObjectFactory factory_;
    RecordingSurface surface_;
};

}  // namespace

std::unique_ptr<DrawingTarget> CreateRecordingTarget(CallSink sink)
{
    return std::unique_ptr<DrawingTarget>(new (std::nothrow) RecordingTarget(std::move(sink)));
}

}  // namespace kivui::scrivel
