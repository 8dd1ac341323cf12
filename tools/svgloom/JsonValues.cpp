#include "tools/svgloom/JsonValues.h"

#include "tools/common/Json.h"

#include <variant>

namespace svgloom {

namespace {

struct KindRow {
    const char* word;
    int coordinates;
};

// By ScrivelSVGPath::Kind.
constexpr KindRow kKindRows[] = {{"M", 2}, {"L", 2}, {"C", 6}, {"Z", 0}};

std::string MembersOf(const SVGLoom::Color& color)
{
    return "\"kind\":\"color\",\"color\":" + JsonColor(color);
}

std::string MembersOf(const SVGLoom::ColorVariable& variable)
{
    return "\"kind\":\"variable\",\"name\":" + tools::JsonUtf8String(variable.name) +
           ",\"fallback\":" + JsonColor(variable.fallback);
}

std::string MembersOf(const SVGLoom::CurrentColor&)
{
    return "\"kind\":\"currentColor\"";
}

}  // namespace

std::string JsonNumbers(std::span<const float> values)
{
    std::string text = "[";
    for (const float value : values)
        text += (text.size() > 1 ? "," : "") + tools::JsonNumber(value);
    return text + "]";
}

std::string JsonColor(const SVGLoom::Color& color)
{
    const float values[] = {color.red, color.green, color.blue, color.alpha};
    return JsonNumbers(values);
}

std::string JsonColorMembers(const SVGLoom::ColorValue& value)
{
    return std::visit([](const auto& each) { return MembersOf(each); }, value);
}

std::string JsonMatrix(const SVGLoom::ScrivelSVGTransform& transform)
{
    const kivui::scrivel::Matrix& m = transform.Matrix();
    const float values[] = {m.a, m.b, m.c, m.d, m.e, m.f};
    return JsonNumbers(values);
}

std::string JsonPath(const SVGLoom::ScrivelSVGPath& path)
{
    std::string text = "[";
    path.ForEach([&](SVGLoom::ScrivelSVGPath::Kind kind, const float* coordinates) {
        const KindRow& row = kKindRows[static_cast<std::size_t>(kind)];
        text += text.size() > 1 ? ",[\"" : "[\"";
        text += row.word;
        text += '"';
        for (int i = 0; i < row.coordinates; ++i)
            text += "," + tools::JsonNumber(coordinates[i]);
        text += ']';
    });
    return text + "]";
}

std::string JsonError(std::string_view what)
{
    return "{\"error\":" + tools::JsonUtf8String(what) + "}";
}

}  // namespace svgloom
