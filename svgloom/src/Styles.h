// The style records as the document keeps them: those that a renderer reads, with the document's
// own fields behind. Inherited styles are shared until an element changes them, so an element
// without properties of its own costs nothing and a long list of dashes is kept once.

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <kivcore/NeverDestroyed.h>

#include "svgloom/renderer/Records.h"
#include "svgloom/src/ColorValue.h"
#include "svgloom/src/NameMap.h"

namespace SVGLoom {

struct DocumentFillStyle : FillStyle {
    std::optional<ColorValue> paintValue;  // resolved when drawn; empty: the paint is used as it is
    bool visible = true;                   // read and kept; nothing tests it
    ColorValue color;                      // the "color" property; opaque black
    FillRule clipRule = FillRule::kNonZero;
};

struct DocumentStrokeStyle : StrokeStyle {
    std::optional<ColorValue> paintValue;
};

/// Not inherited: each element begins with the defaults.
struct DocumentGraphicStyle : GraphicStyle {
    bool display = true;  // read and kept; nothing tests it
    float stopOpacity = 1;
    ColorValue stopColor;  // opaque black
};

using ClipPathTable = NameMap<std::shared_ptr<ClippingPath>>;

/// A style that is shared with whoever has the same one, until Edit().
template <class Style>
class SharedStyle {
public:
    /// The defaults, which are one object for the whole process.
    SharedStyle() : style_(Default()) {}

    const Style& operator*() const { return *style_; }
    const Style* operator->() const { return style_.get(); }

    /// Makes the style this object's own.
    Style& Edit()
    {
        if (style_.use_count() != 1) {
            style_ = std::make_shared<Style>(*style_);
        }
        return *style_;
    }
    bool IsSharedWith(const SharedStyle& other) const { return style_ == other.style_; }

private:
    static std::shared_ptr<Style> Default()
    {
        // Owned by nobody, so its count is 0, and never edited. Nothing of it lies on the heap: a
        // library that holds it leaves nothing behind when it is unloaded.
        static kivcore::NeverDestroyed<Style> style;
        return {std::shared_ptr<void>(), &*style};
    }

    std::shared_ptr<Style> style_;
};

using SharedFillStyle = SharedStyle<DocumentFillStyle>;
using SharedStrokeStyle = SharedStyle<DocumentStrokeStyle>;

}  // namespace SVGLoom
