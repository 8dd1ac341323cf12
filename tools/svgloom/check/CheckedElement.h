// One element while it is checked, and what its children get from it.

#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "svgloom/src/Attributes.h"
#include "svgloom/src/XMLDocument.h"
#include "tools/svgloom/check/EngineObjects.h"
#include "tools/svgloom/check/InheritedStyle.h"
#include "tools/svgloom/check/References.h"

namespace svgloom {

struct NamedValue {
    std::string_view name;
    std::string_view value;
};

/// All attributes of a node, also those that the engine does not read.
class AllAttributes final : public SVGLoom::xml::AttributeVisitor {
public:
    explicit AllAttributes(const SVGLoom::xml::XMLNode& node) { node.VisitAttributes(*this); }

    void VisitAttribute(std::string_view name, std::string_view value) override
    {
        all_.push_back({name, value});
        known_.VisitAttribute(name, value);
    }

    const std::vector<NamedValue>& All() const { return all_; }
    const SVGLoom::Attributes& Known() const { return known_; }
    /// The first of that name; empty if there is none.
    std::string_view Find(std::string_view name) const
    {
        const auto found = std::ranges::find(all_, name, &NamedValue::name);
        return found != all_.end() ? found->value : std::string_view();
    }

private:
    std::vector<NamedValue> all_;
    SVGLoom::Attributes known_;
};

/// A group with an opacity below 1, and where its shapes are: a limited number of them.
struct TranslucentGroup {
    static constexpr std::size_t kMaxBoxes = 64;

    std::size_t offset = 0;
    std::vector<Box> boxes;
    bool isTold = false;
};

/// What the children of an element get from it.
struct Scope {
    InheritedStyle style;
    kivui::scrivel::Matrix matrix{1, 0, 0, 1, 0, 0};
    std::shared_ptr<TranslucentGroup> translucent;  // the outermost; null if there is none
    References::Index node = References::kNone;
};

struct CheckedElement {
    const SVGLoom::xml::XMLNode& node;
    std::string_view name;
    std::size_t offset;  // of its "<"
    AllAttributes attributes;
    ElementStyle style;
    kivui::scrivel::Matrix matrix{1, 0, 0, 1, 0, 0};  // of it in the whole artwork

    const SVGLoom::Attributes& Known() const { return attributes.Known(); }
    std::string_view Id() const { return Known().Text(SVGLoom::AttributeName::kId); }
};

}  // namespace svgloom
