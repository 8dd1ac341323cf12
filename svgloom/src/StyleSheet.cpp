#include "svgloom/src/StyleSheet.h"

#include <kivcore/Trace.h>

#include <algorithm>
#include <stdexcept>

#include "svgloom/src/Characters.h"
#include "svgloom/src/Declarations.h"
#include "svgloom/src/StyleText.h"

namespace SVGLoom {

namespace {

constinit kivcore::debug::TraceSite inputSite("SVGLoom.CSS", 6);
constinit kivcore::debug::TraceSite cleanedSite("SVGLoom.CSS", 6);
constinit kivcore::debug::TraceSite outputSite("SVGLoom.CSS", 6);

void TraceSheet(kivcore::debug::TraceSite& site, std::string_view opening, std::string_view text)
{
    if (site.Enabled()) {
        site.Write(std::string(opening).append(text));
    }
}

[[noreturn]] void ThrowEmptySelector()
{
    throw std::invalid_argument("empty CSS selector");
}

bool StartsName(char c)
{
    return IsLetter(c) || c == '_' || c == '-' || static_cast<unsigned char>(c) >= 0x80;
}

/// A name alone: no space, no combinator, nothing that narrows it down.
bool IsPlainName(std::string_view text)
{
    return StartsName(text[0]) && std::all_of(text.begin(), text.end(),
                                              [](char c) { return StartsName(c) || IsDigit(c); });
}

/// As it would be written: ".name{property:value;...}", one rule a line.
std::string Written(const std::vector<StyleSheet::Rule>& rules)
{
    constexpr std::string_view kMarks[] = {"", ".", "#", ""};
    std::string text;
    for (const StyleSheet::Rule& rule : rules) {
        text.append(kMarks[static_cast<std::size_t>(rule.selector.kind)]);
        text.append(rule.selector.name) += '{';
        for (const Declaration& each : rule.declarations) {
            text.append(each.name) += ':';
            text.append(each.value) += ';';
        }
        text += "}\n";
    }
    return text;
}

}  // namespace

Selector ParseSelector(std::string_view text)
{
    switch (text[0]) {
        case '.':
            return {SelectorKind::kClass, text.substr(1)};
        case '#':
            return {SelectorKind::kId, text.substr(1)};
        default:
            return {IsPlainName(text) ? SelectorKind::kType : SelectorKind::kOther, text};
    }
}

void StyleSheet::Add(std::string_view text)
{
    TraceSheet(inputSite, "ParseStyle INPUT:\n", text);
    std::string clean = CleanStyleText(text);
    TraceSheet(cleanedSite, "ParseStyle CLEANED:\n", clean);
    RemoveComments(clean);

    texts_.push_back(std::make_unique<char[]>(clean.size()));
    std::copy(clean.begin(), clean.end(), texts_.back().get());
    ForEachRule(
        {texts_.back().get(), clean.size()},
        [this](std::string_view selectors, std::string_view block) { AddRule(selectors, block); });
    if (outputSite.Enabled()) {
        outputSite.Write("ParseStyle OUTPUT:\n" + Written(Rules()));
    }
}

void StyleSheet::AddRule(std::string_view selectors, std::string_view block)
{
    const std::size_t firstUse = uses_.size();
    ForEachSelector(selectors, [this](std::string_view text) {
        const Selector selector = ParseSelector(text);
        if (selector.kind == SelectorKind::kClass && selector.name.empty()) {
            ThrowEmptySelector();
        }
        uses_.push_back({selector, blocks_.size()});
    });
    const Range properties = AddBlock(block);
    for (std::size_t i = firstUse; i < uses_.size(); ++i) {
        if (uses_[i].selector.kind == SelectorKind::kClass) {
            const auto [entry, isNew] = classes_.Add(uses_[i].selector.name);
            if (isNew) {
                entry.properties = properties;
            } else {
                Overlay(properties, entry);
            }
        }
    }
}

/// Keeps a block, and returns the properties that it sets.
StyleSheet::Range StyleSheet::AddBlock(std::string_view block)
{
    const std::size_t first = declarations_.size();
    PropertySet set;
    ForEachDeclaration(block, [this, &set](std::string_view name, std::string_view value) {
        declarations_.push_back({name, value});
        const AttributeName property = FindAttribute(name);
        if (IsProperty(property)) {
            set.AddFirst(property, value);
        }
    });
    const auto begin = declarations_.begin() + static_cast<std::ptrdiff_t>(first);
    std::stable_sort(begin, declarations_.end(),
                     [](const Declaration& a, const Declaration& b) { return a.name < b.name; });
    declarations_.erase(
        std::unique(begin, declarations_.end(),
                    [](const Declaration& a, const Declaration& b) { return a.name == b.name; }),
        declarations_.end());
    blocks_.push_back({first, declarations_.size() - first});

    Range properties{properties_.size(), 0};
    set.ForEach([this](AttributeName property, std::string_view text) {
        properties_.push_back({property, text});
    });
    properties.count = properties_.size() - properties.first;
    return properties;
}

/// Puts the properties of `above` over those of `entry`.
void StyleSheet::Overlay(const Range& above, ClassEntry& entry)
{
    PropertySet set;
    for (const Range& range : {above, entry.properties}) {
        for (std::size_t i = 0; i < range.count; ++i) {
            const PropertyText& each = properties_[range.first + i];
            set.AddFirst(each.property, each.text);
        }
    }
    // A place of its own is used again where it is large enough, so that a selector that comes
    // often takes no more than what it sets.
    if (!entry.isOwn || set.size() > entry.properties.count) {
        entry = {{properties_.size(), set.size()}, true};
        properties_.resize(properties_.size() + set.size());
    }
    std::size_t at = entry.properties.first;
    set.ForEach([this, &at](AttributeName property, std::string_view text) {
        properties_[at++] = {property, text};
    });
}

std::span<const PropertyText> StyleSheet::FindClass(std::string_view name) const
{
    if (name.empty()) {
        ThrowEmptySelector();
    }
    const ClassEntry* const found = classes_.Find(name);
    if (found == nullptr) {
        return {};
    }
    const Range& range = found->properties;
    return {properties_.data() + range.first, range.count};
}

std::vector<StyleSheet::Rule> StyleSheet::Rules() const
{
    std::vector<Use> uses = uses_;
    std::stable_sort(uses.begin(), uses.end(),
                     [](const Use& a, const Use& b) { return a.selector < b.selector; });
    std::vector<Rule> rules;
    for (const Use& use : uses) {
        if (rules.empty() || rules.back().selector != use.selector) {
            rules.push_back({use.selector, {}});
        }
        const Range& block = blocks_[use.block];
        const auto begin = declarations_.begin() + static_cast<std::ptrdiff_t>(block.first);
        rules.back().declarations.insert(rules.back().declarations.end(), begin,
                                         begin + static_cast<std::ptrdiff_t>(block.count));
    }
    // The last of equal names is that of the last block.
    for (Rule& rule : rules) {
        std::vector<Declaration>& all = rule.declarations;
        std::stable_sort(all.begin(), all.end(), [](const Declaration& a, const Declaration& b) {
            return a.name < b.name;
        });
        std::size_t kept = 0;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (i + 1 == all.size() || all[i + 1].name != all[i].name) {
                all[kept++] = all[i];
            }
        }
        all.resize(kept);
    }
    return rules;
}

}  // namespace SVGLoom
