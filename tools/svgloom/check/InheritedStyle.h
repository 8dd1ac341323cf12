// The style of an element as the engine resolves it, as far as it tells whether something is drawn
// differently.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/AttributeNames.h"
#include "tools/svgloom/check/Gradients.h"
#include "tools/svgloom/check/References.h"
#include "tools/svgloom/check/Reporter.h"
#include "tools/svgloom/check/SourceText.h"

namespace svgloom {

enum class PaintKind : std::uint8_t { kPlain, kCurrentColor, kGradient };

/// What an element has from those around it, and passes on.
struct InheritedStyle {
    std::shared_ptr<const StyleTexts> texts = std::make_shared<StyleTexts>();
    bool hasFill = true;
    bool hasStroke = false;
    bool isStrokeOffByWidth = false;
    PaintKind fill = PaintKind::kPlain;
    PaintKind stroke = PaintKind::kPlain;
    std::string_view fillGradient;
    float fillOpacity = 1;
    float opacity = 1;  // the product of the groups around
    bool hasCap = false;
    bool hasJoin = false;
};

/// The style of one element.
struct ElementStyle {
    InheritedStyle inherited;
    float opacity = 1;
    PropertyBits set = 0;
    bool hasClip = false;
    bool clipsAll = false;  // by a clip path without content

    bool IsTranslucent() const { return opacity * inherited.opacity < 1; }
    /// The properties that its fill and stroke take from around it.
    PropertyBits Taken() const;
};

/// Whether a clip path has content, by id.
using ClipPaths = SVGLoom::NameMap<bool>;

class StyleReader {
public:
    StyleReader(const Gradients& gradients, const ClipPaths& clipPaths,
                const SVGLoom::Rect& viewBox, Reporter& reporter)
        : gradients_(gradients), clipPaths_(clipPaths), viewBox_(viewBox), reporter_(reporter)
    {
    }

    /// Applies the value of a property to `style`. Those that the engine does not read change
    /// nothing and are not told here.
    void Apply(SVGLoom::AttributeName property, std::string_view text, const Locator& where,
               ElementStyle& style);

    /// Tells which names have been used before they were there, and which never came.
    void TellMissing();

private:
    struct Missing {
        Rule later;
        Rule unknown;
        std::string_view id;
        std::string_view property;  // empty for a clip path
        std::size_t offset;
    };

    void ApplyPaint(SVGLoom::AttributeName property, std::string_view text, std::size_t offset,
                    ElementStyle& style);
    void ApplyStrokeWidth(std::string_view text, std::size_t offset, ElementStyle& style);
    void ApplyClipPath(std::string_view text, std::size_t offset, ElementStyle& style);

    const Gradients& gradients_;
    const ClipPaths& clipPaths_;
    const SVGLoom::Rect& viewBox_;
    Reporter& reporter_;
    std::vector<Missing> missing_;
};

}  // namespace svgloom
