#include "framework/kivmetadataui/src/ModelBuilder.h"

#include <algorithm>
#include <cstddef>

#include "framework/kivmetadataui/src/DerivedText.h"
#include "framework/kivmetadataui/src/NodeText.h"
#include "framework/kivmetadataui/src/Texts.h"

#include <kivcore/Trace.h>
#include <kivxmp/Derived.h>

namespace kivmetadataui {

using kivmetadata::PropertyDefinition;
using kivmetadata::SchemaDefinition;
using kivmetadata::ValueType;
using kivmetadata::ViewDefinition;
using kivxmp::Node;
using kivxmp::NodeForm;
using kivxmp::Path;
using kivxmp::PathStep;

namespace {

PathStep FieldStep(std::string uri, std::string local, std::string prefix)
{
    PathStep step;
    step.kind = PathStep::Kind::kField;
    step.uri = std::move(uri);
    step.local = std::move(local);
    step.prefix = std::move(prefix);
    return step;
}

void TraceMissing(const ViewDefinition& view, const kivmetadata::ViewItem& item)
{
    static kivcore::debug::TraceSite site("kivmetadataui", 0);
    if (site.Enabled()) {
        site.Write("view " + view.name + ": no definition of " + item.propertyName + " in " +
                   item.namespaceUri + "\n");
    }
}

}  // namespace

ModelBuilder::ModelBuilder(const __XMPMeta__& meta, const kivmetadata::SchemaDefinitions& schemas)
    : meta_(meta), derived_(kivxmp::DerivedProperties(meta))
{
    for (kivmetadata::SchemaIterator at = schemas.Begin(); !at.AtEnd(); at.Next()) {
        const SchemaDefinition& schema = at.Current();
        schemaNamespaces_.emplace(schema.prefix, schema.namespaceUri);
        for (const Definition& property : schema.properties) {
            // The first definition counts: built-in ones come first.
            known_.emplace(Name(schema.namespaceUri, property->name),
                           Known{property, schema.prefix});
        }
    }
}

void ModelBuilder::AddView(const ViewDefinition& definition)
{
    DialogView view;
    view.name = definition.owner + "/" + definition.name;
    view.label = definition.label.empty() ? Widen(definition.name) : definition.label;
    view.icon = definition.icon;
    std::vector<kivmetadata::ViewGroup> groups = definition.groups;
    if (groups.empty()) {
        groups.push_back({{}, 0, definition.items.size()});
    }
    for (const kivmetadata::ViewGroup& group : groups) {
        view.groups.push_back({group.heading, {}});
        const std::size_t first = std::min(group.firstItem, definition.items.size());
        const std::size_t count = std::min(group.itemCount, definition.items.size() - first);
        for (std::size_t i = first; i < first + count; ++i) {
            const kivmetadata::ViewItem& item = *definition.items[i];
            if (known_.contains(Name(item.namespaceUri, item.propertyName))) {
                AddItem(item, definition.isCamera, view);
            } else {
                TraceMissing(definition, item);
            }
        }
    }
    std::erase_if(view.groups, [](const FieldGroup& group) { return group.fields.empty(); });
    for (FieldGroup& group : view.groups) {
        group.fields.back().sharesRowWithNext = false;
    }
    if (view.groups.empty()) {
        view.emptyText =
            definition.isCamera
                ? DialogText("$$$/Kiv/Dialog/View/NoCameraData=This file has no camera data.")
                : DialogText("$$$/Kiv/Dialog/View/NoFields=This view has no fields.");
    }
    views_.push_back(std::move(view));
}

void ModelBuilder::AddItem(const kivmetadata::ViewItem& item, bool isCamera, DialogView& view)
{
    const Known& known = known_.at(Name(item.namespaceUri, item.propertyName));
    Path path{FieldStep(item.namespaceUri, item.propertyName, known.prefix)};
    const Node* const node = kivxmp::FindWithDerived(meta_, path);
    const PropertyDefinition& definition = *known.definition;
    const bool hasMembers = definition.type == ValueType::kStructure &&
                            !definition.members.empty() && !definition.isReadOnly;
    if (hasMembers && (node == nullptr || node->Form() == NodeForm::kStruct)) {
        AddStructure(path, known.definition, view);
        return;
    }
    Field* const field = FieldAt(std::move(path), known.definition);
    // A camera says what it knows: rows without a value would only be noise.
    if (isCamera && field->IsReadOnly() && field->IsEmpty()) {
        return;
    }
    view.groups.back().fields.push_back({field, item.sharesRowWithNext});
}

// A structure is a group of its own, with the fields that are its members.
void ModelBuilder::AddStructure(const Path& path, const Definition& definition, DialogView& view)
{
    FieldGroup group;
    group.heading = definition->label;
    for (const Definition& member : definition->members) {
        Path memberPath = path;
        std::string prefix;
        for (const auto& [schemaPrefix, uri] : schemaNamespaces_) {
            if (uri == definition->membersNamespace) {
                prefix = schemaPrefix;
                break;
            }
        }
        memberPath.push_back(FieldStep(definition->membersNamespace, member->name, prefix));
        group.fields.push_back({FieldAt(std::move(memberPath), member), false});
    }
    const std::size_t last = view.groups.size() - 1;
    if (view.groups[last].fields.empty() && view.groups[last].heading.empty()) {
        view.groups[last] = std::move(group);
    } else {
        view.groups.push_back(std::move(group));
    }
    view.groups.push_back({});
}

Field* ModelBuilder::FieldAt(Path path, const Definition& definition)
{
    const std::string key = meta_.PrintPath(path);
    const auto at = fields_.find(key);
    if (at != fields_.end()) {
        return at->second;
    }
    bindings_.push_back(MakeBinding(meta_, std::move(path), definition));
    return fields_[key] = bindings_.back().field.get();
}

std::vector<const Node*> ModelBuilder::Properties() const
{
    std::vector<const Node*> nodes = meta_.Properties();
    const std::vector<const Node*> derived = derived_->Properties();
    nodes.insert(nodes.end(), derived.begin(), derived.end());
    return nodes;
}

void ModelBuilder::AddAllProperties()
{
    DialogView view;
    view.kind = ViewKind::kAllProperties;
    view.name = "com.orvan.xmp/all-properties";
    view.label = DialogText("$$$/Kiv/Dialog/View/AllProperties=All properties");
    view.icon = "list";
    const std::map<std::string, std::string, std::less<>> namespaces = Namespaces();
    for (const Node* const node : Properties()) {
        const Path path{FieldStep(node->NamespaceUri(), node->LocalName(), node->Prefix())};
        PropertyRow row{node->LocalName(), NodeText(*node), SourceAt(meta_, path)};
        const auto known = namespaces.find(node->Prefix());
        if (!row.source.mark.empty() && !node->Prefix().empty() && known != namespaces.end() &&
            known->second == node->NamespaceUri()) {
            // The packet need not know the prefix of what it does not hold.
            row.path = node->Prefix() + ":" + node->LocalName();
        } else if (!node->NamespaceUri().empty()) {
            row.path = meta_.PrintPath(path);
        }
        view.rows.push_back(std::move(row));
    }
    if (view.rows.empty()) {
        view.emptyText =
            DialogText("$$$/Kiv/Dialog/View/NoProperties=This file has no metadata yet.");
    }
    views_.push_back(std::move(view));
}

std::map<std::string, std::string, std::less<>> ModelBuilder::Namespaces() const
{
    std::map<std::string, std::string, std::less<>> namespaces = schemaNamespaces_;
    for (const Node* const node : Properties()) {
        namespaces.emplace(node->Prefix(), node->NamespaceUri());
    }
    return namespaces;
}

}  // namespace kivmetadataui
