// The style records as the document keeps them: those that a renderer reads, with the document's
// own fields behind. Inherited styles are shared until an element changes them, so an element
// without properties of its own costs nothing and a long list of dashes is kept once.

#pragma once

#include <cstddef>
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

/// A style that is shared with whoever has the same one, until Edit(). Not for two threads at once,
/// copies that share a style included.
template <class Style>
class SharedStyle {
public:
    /// The defaults, which are one object for the whole process.
    SharedStyle() = default;
    SharedStyle(const SharedStyle& other) : held_(other.held_)
    {
        if (held_ != nullptr) {
            ++held_->owners;
        }
    }
    SharedStyle(SharedStyle&& other) noexcept : held_(std::exchange(other.held_, nullptr)) {}
    SharedStyle& operator=(SharedStyle other) noexcept
    {
        std::swap(held_, other.held_);
        return *this;
    }
    ~SharedStyle()
    {
        if (held_ != nullptr && --held_->owners == 0) {
            delete held_;
        }
    }

    const Style& operator*() const { return held_ != nullptr ? held_->style : Default(); }
    const Style* operator->() const { return &**this; }

    /// Makes the style this object's own.
    Style& Edit()
    {
        if (held_ == nullptr || held_->owners != 1) {
            *this = SharedStyle(new Held{**this, 1});
        }
        return held_->style;
    }
    bool IsSharedWith(const SharedStyle& other) const { return held_ == other.held_; }

private:
    struct Held {
        Style style;
        std::size_t owners;
    };

    explicit SharedStyle(Held* held) : held_(held) {}

    static const Style& Default()
    {
        // Nothing of it lies on the heap: a library that holds it leaves nothing behind when it is
        // unloaded.
        static kivcore::NeverDestroyed<Style> style;
        return *style;
    }

    Held* held_ = nullptr;  // null: the defaults
};

using SharedFillStyle = SharedStyle<DocumentFillStyle>;
using SharedStrokeStyle = SharedStyle<DocumentStrokeStyle>;

}  // namespace SVGLoom
