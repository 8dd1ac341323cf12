// Makes the dialog's views and fields from the definitions and what the packet holds.

#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "framework/kivmetadataui/src/DialogModel.h"
#include "framework/kivmetadataui/src/PropertyBinding.h"

#include <kivmetadata/Definitions.h>
#include <kivxmp/XMPMeta.h>
#include <kivxmp/XMPNode.h>

namespace kivmetadataui {

class ModelBuilder {
public:
    /// Both must outlive the builder.
    ModelBuilder(const __XMPMeta__& meta, const kivmetadata::SchemaDefinitions& schemas);

    /// Adds a view. Items without a definition are left out and traced on "kivmetadataui".
    void AddView(const kivmetadata::ViewDefinition& definition);
    /// Adds the list of what the packet holds, and what is derived behind it.
    void AddAllProperties();

    std::vector<PropertyBinding> TakeBindings() { return std::move(bindings_); }
    std::vector<DialogView> TakeViews() { return std::move(views_); }
    /// Namespaces by prefix: those of the schemas, and those of the properties for other prefixes.
    std::map<std::string, std::string, std::less<>> Namespaces() const;

private:
    using Definition = std::shared_ptr<const kivmetadata::PropertyDefinition>;
    using Name = std::pair<std::string, std::string>;  // namespace URI and local name
    struct Known {
        Definition definition;
        std::string prefix;
    };

    void AddItem(const kivmetadata::ViewItem& item, bool isCamera, DialogView& view);
    void AddStructure(const kivxmp::Path& path, const Definition& definition, DialogView& view);
    /// The packet's, then the derived ones.
    std::vector<const kivxmp::Node*> Properties() const;
    Field* FieldAt(kivxmp::Path path, const Definition& definition);

    const __XMPMeta__& meta_;
    std::unique_ptr<const __XMPMeta__> derived_;
    std::map<Name, Known> known_;
    std::map<std::string, std::string, std::less<>> schemaNamespaces_;
    std::map<std::string, Field*> fields_;  // by path
    std::vector<PropertyBinding> bindings_;
    std::vector<DialogView> views_;
};

}  // namespace kivmetadataui
