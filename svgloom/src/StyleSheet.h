// A style sheet: CSS text as an ordered map from selector to declarations. Only class selectors are
// matched against elements; the others are kept for whoever looks at the sheet.
//
// Size and time are linear in the text: a block is kept once for all selectors of its rule, and
// what a selector sets is put together when the sheet is read, at most one text for each property.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/AttributeNames.h"
#include "svgloom/src/NameMap.h"

namespace SVGLoom {

/// kClass is 1 and is the one that counts.
enum class SelectorKind : std::uint32_t { kType = 0, kClass = 1, kId = 2, kOther = 3 };

struct Selector {
    SelectorKind kind = SelectorKind::kOther;
    std::string_view name;  // without "." and "#"; the whole text where the kind is kOther

    friend bool operator==(const Selector&, const Selector&) = default;
    /// By kind, then name.
    friend bool operator<(const Selector& a, const Selector& b)
    {
        return a.kind != b.kind ? a.kind < b.kind : a.name < b.name;
    }
};

/// `text` is trimmed and not empty.
Selector ParseSelector(std::string_view text);

struct Declaration {
    std::string_view name;
    std::string_view value;

    friend bool operator==(const Declaration&, const Declaration&) = default;
};

struct PropertyText {
    AttributeName property = AttributeName::kUnknown;
    std::string_view text;
};

/// Texts that it hands out stand as long as the sheet.
class StyleSheet {
public:
    StyleSheet() = default;
    StyleSheet(StyleSheet&&) = default;
    StyleSheet& operator=(StyleSheet&&) = default;

    /// Reads CSS text and adds its rules behind those that are there: a selector that comes again
    /// adds to its declarations, and a later declaration replaces an earlier one. Inside one block
    /// the first declaration of a property wins. `text` is copied.
    ///
    /// @throws std::invalid_argument "value not found" (Declarations.h), or "empty CSS selector"
    /// for
    ///         the selector "."; of the sheet it is only certain then that it can be destroyed
    void Add(std::string_view text);

    bool empty() const { return uses_.empty(); }

    /// What the class selector of that name sets, in the order of the properties; empty if there
    /// is none.
    ///
    /// @throws std::invalid_argument "empty CSS selector" for an empty name
    std::span<const PropertyText> FindClass(std::string_view name) const;

    struct Rule {
        Selector selector;
        std::vector<Declaration> declarations;  // by name, properties or not
    };
    /// One rule for each selector, by kind, then name. For tools and traces.
    std::vector<Rule> Rules() const;

private:
    struct Range {
        std::size_t first = 0;
        std::size_t count = 0;
    };
    struct Use {
        Selector selector;
        std::size_t block;
    };
    struct ClassEntry {
        Range properties;
        bool isOwn = false;  // false: those of a block
    };

    void AddRule(std::string_view selectors, std::string_view block);
    Range AddBlock(std::string_view block);
    void Overlay(const Range& above, ClassEntry& entry);

    std::vector<std::unique_ptr<char[]>> texts_;
    std::vector<Declaration> declarations_;
    std::vector<Range> blocks_;  // of declarations_
    std::vector<Use> uses_;      // every selector of every rule
    std::vector<PropertyText> properties_;
    NameViewMap<ClassEntry> classes_;
};

}  // namespace SVGLoom
