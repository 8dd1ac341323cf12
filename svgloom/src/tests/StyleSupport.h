// Style records as one readable line: what differs from the defaults.

#pragma once

#include <string>

#include "svgloom/src/Styles.h"
#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom::testing_support {

inline std::string Text(const ColorValue& value)
{
    if (const ColorVariable* const variable = std::get_if<ColorVariable>(&value)) {
        return "var(" + variable->name + ", " + Text(variable->fallback) + ")";
    }
    return value.index() == 2 ? "current" : Text(std::get<Color>(value));
}

inline std::string Text(const Paint& paint, const std::optional<ColorValue>& value)
{
    const Gradient* const gradient = std::get_if<Gradient>(&paint);
    if (gradient != nullptr) {
        return "gradient of " + std::to_string(gradient->stops.size());
    }
    return value.has_value() ? Text(*value) : "unset";
}

class Differences {
public:
    template <class Value>
    void Add(const char* name, const Value& have, const Value& standard, const std::string& text)
    {
        if (have != standard) {
            text_.append(text_.empty() ? "" : " ").append(name).append("=").append(text);
        }
    }
    void Add(const char* name, float have, float standard)
    {
        Add(name, have, standard, Text(have));
    }
    void Add(const char* name, bool have, bool standard)
    {
        Add(name, have, standard, have ? "true" : "false");
    }
    template <class Enum>
    void AddEnum(const char* name, Enum have)
    {
        Add(name, have, Enum{}, std::to_string(static_cast<unsigned>(have)));
    }
    std::string Written() const { return text_; }

private:
    std::string text_;
};

inline std::string Describe(const DocumentGraphicStyle& graphic, const DocumentFillStyle& fill,
                            const DocumentStrokeStyle& stroke)
{
    Differences d;
    d.Add("opacity", graphic.opacity, 1.0f);
    d.Add("clip", graphic.clippingPath != nullptr, false);
    d.Add("transform", graphic.transform != nullptr, false);
    d.Add("display", graphic.display, true);
    d.Add("stopOpacity", graphic.stopOpacity, 1.0f);
    d.Add("stopColor", graphic.stopColor, ColorValue(), Text(graphic.stopColor));
    d.Add("hasFill", fill.hasFill, true);
    d.AddEnum("fillRule", fill.fillRule);
    d.Add("fillOpacity", fill.fillOpacity, 1.0f);
    const std::string fillPaint = Text(fill.paint, fill.paintValue);
    d.Add("fill", fillPaint, std::string("unset"), fillPaint);
    d.Add("visible", fill.visible, true);
    d.Add("color", fill.color, ColorValue(), Text(fill.color));
    d.AddEnum("clipRule", fill.clipRule);
    d.Add("hasStroke", stroke.hasStroke, false);
    d.Add("strokeOpacity", stroke.strokeOpacity, 1.0f);
    d.Add("lineWidth", stroke.lineWidth, 1.0f);
    d.AddEnum("lineCap", stroke.lineCap);
    d.AddEnum("lineJoin", stroke.lineJoin);
    d.Add("miterLimit", stroke.miterLimit, 4.0f);
    std::string dashes;
    for (const float dash : stroke.dashArray) {
        dashes += (dashes.empty() ? "" : ",") + Text(dash);
    }
    d.Add("dashes", dashes, std::string(), dashes);
    d.Add("dashOffset", stroke.dashOffset, 0.0f);
    const std::string strokePaint = Text(stroke.paint, stroke.paintValue);
    d.Add("stroke", strokePaint, std::string("unset"), strokePaint);
    return d.Written();
}

}  // namespace SVGLoom::testing_support
