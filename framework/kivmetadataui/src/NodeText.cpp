#include "framework/kivmetadataui/src/NodeText.h"

#include <algorithm>
#include <memory>

#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;
using kivmetadata::PropertyDefinition;
using kivxmp::Node;
using kivxmp::NodeForm;

namespace {

// Packets nest less deeply; a tree made by calls might not.
constexpr int kMostDepth = 300;

UString FieldLabel(const Node& field, const PropertyDefinition* definition)
{
    if (definition != nullptr && field.NamespaceUri() == definition->membersNamespace) {
        for (const std::shared_ptr<const PropertyDefinition>& member : definition->members) {
            if (member->name == field.LocalName() && !member->label.empty()) {
                return member->label;
            }
        }
    }
    return Widen(field.LocalName());
}

void Append(const Node& node, const PropertyDefinition* definition, int depth, UString& text)
{
    if (depth > kMostDepth || text.size() > kMostShownUnits) {
        return;
    }
    if (node.IsText() || node.Form() == NodeForm::kRaw) {
        // A unit of UTF-16 takes at most three bytes.
        text += Widen(node.Value().substr(0, 3 * (kMostShownUnits + 1)));
        return;
    }
    bool isFirst = true;
    for (const Node& child : node.Children()) {
        if (!isFirst) {
            text += u"; ";
        }
        isFirst = false;
        if (node.Form() == NodeForm::kStruct) {
            text += FieldLabel(child, definition);
            text += u": ";
        } else if (node.Form() == NodeForm::kAlt && !child.Language().empty()) {
            text += Widen(child.Language());
            text += u": ";
        }
        // Items of a list of structures have the fields of the list's definition.
        Append(child, node.IsArray() ? definition : nullptr, depth + 1, text);
    }
}

}  // namespace

UString NodeText(const Node& node, const PropertyDefinition* definition)
{
    UString text;
    Append(node, definition, 0, text);
    if (text.size() > kMostShownUnits) {
        const bool isPair =
            text[kMostShownUnits - 1] >= 0xD800 && text[kMostShownUnits - 1] < 0xDC00;
        text.resize(kMostShownUnits - (isPair ? 1 : 0));
        text += u'…';
    }
    return text;
}

}  // namespace kivmetadataui
