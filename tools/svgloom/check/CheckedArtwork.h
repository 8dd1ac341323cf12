// One artwork while it is checked: its text, and what the checks of its elements know so far.

#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "svgloom/src/NameMap.h"
#include "svgloom/src/StyleSheet.h"
#include "tools/svgloom/check/CheckedElement.h"
#include "tools/svgloom/check/Gradients.h"
#include "tools/svgloom/check/InheritedStyle.h"
#include "tools/svgloom/check/References.h"
#include "tools/svgloom/check/Reporter.h"
#include "tools/svgloom/check/SourceText.h"
#include "tools/svgloom/check/StyleChecks.h"

namespace svgloom {

struct CheckedArtwork {
    explicit CheckedArtwork(std::string_view text) : source(text), gradients(reporter) {}
    CheckedArtwork(const CheckedArtwork&) = delete;
    CheckedArtwork& operator=(const CheckedArtwork&) = delete;

    /// The element of a node, with the styles that it gets from `scope`.
    CheckedElement Read(const SVGLoom::xml::XMLNode& node, const Scope& scope) const;

    /// Tells an id that is taken, and takes it else. `effect` is for the message.
    void CheckId(const CheckedElement& element, std::string_view effect);

    /// The offset in the file of a place in the text's copy; `otherwise` for other places.
    std::size_t OffsetOf(const char* place, std::size_t otherwise) const
    {
        return source.Holds(place) ? source.OffsetOf(place) : otherwise;
    }
    SourceValue Value(const CheckedElement& element, std::string_view text) const
    {
        return {source, text, element.offset};
    }
    SourceValue Value(const CheckedElement& element, SVGLoom::AttributeName name) const
    {
        return Value(element, element.Known().Text(name));
    }

    SourceText source;
    Reporter reporter;
    Gradients gradients;
    ClipPaths clipPaths;
    SVGLoom::Rect viewBox{0, 0, 320, 200};
    StyleReader styles{gradients, clipPaths, viewBox, reporter};
    References references;
    SVGLoom::StyleSheet sheet;
    SheetClasses classes;
    SVGLoom::NameMap<bool> ids;
    SVGLoom::NameMap<bool> prefixes;                 // of SVG's namespace
    std::optional<SVGLoom::NameMap<bool>> referred;  // by an url(); made when it is asked for
};

}  // namespace svgloom
