#include "api/CustomDefinitions.h"

#include <kivcore/NeverDestroyed.h>
#include <kivmetadata/Definitions.h>

#include <memory>
#include <string_view>
#include <vector>

namespace kivmetadataapi {

namespace {

using StringStore = std::vector<std::shared_ptr<MetadataCustomViewItemStrings>>;

constexpr std::string_view kBuiltInOwner = "com.orvan.xmp";

constinit kivcore::NeverDestroyed<std::vector<KIVMetadataRecord>> records;
constinit kivcore::NeverDestroyed<StringStore> strings;

/// The first property of that name in walking order, whichever schema it belongs to; null if none.
std::shared_ptr<const kivmetadata::PropertyDefinition> FindProperty(
    const kivmetadata::SchemaDefinitions& schemas, std::string_view name)
{
    for (auto schema = schemas.Begin(); !schema.AtEnd(); schema.Next()) {
        for (const auto& property : schema.Current().properties) {
            if (property->name == name) {
                return property;
            }
        }
    }
    return nullptr;
}

void Append(const kivmetadata::ViewDefinition& view, const kivmetadata::ViewItem& item,
            const kivmetadata::PropertyDefinition& property)
{
    auto texts = std::make_shared<MetadataCustomViewItemStrings>();
    texts->viewText = view.name;
    texts->itemText = item.namespaceUri;
    texts->itemKeyText = item.propertyName;
    texts->label = property.label;
    texts->propertyFlag = !property.isReadOnly;
    strings->push_back(texts);

    KIVMetadataRecord record{};
    record.viewText = texts->viewText.c_str();
    record.itemText = texts->itemText.c_str();
    record.itemKeyText = texts->itemKeyText.c_str();
    // C has no char16_t of its own; the units are the same.
    record.label = reinterpret_cast<const std::uint16_t*>(texts->label.c_str());
    record.propertyFlag = texts->propertyFlag ? 1 : 0;
    records->push_back(record);
}

}  // namespace

void LoadCustomDefinitions()
{
    if (!records->empty()) {
        return;
    }
    kivmetadata::LoadAllViewDefinitions();
    const auto schemas = kivmetadata::CommonSchemaDefinitions();
    const auto views = kivmetadata::CommonViewDefinitions();
    for (const auto& view : *views) {
        if (view->owner == kBuiltInOwner) {
            continue;
        }
        for (const auto& item : view->items) {
            if (item->namespaceUri.empty() || item->propertyName.empty()) {
                continue;
            }
            if (const auto property = FindProperty(*schemas, item->propertyName)) {
                Append(*view, *item, *property);
            }
        }
    }
}

void ClearCustomDefinitions() noexcept
{
    // Swapped, not cleared: nothing of ours stays allocated behind the last terminate.
    std::vector<KIVMetadataRecord>().swap(*records);
    StringStore().swap(*strings);
}

const KIVMetadataRecord* CustomDefinitionRecords() noexcept
{
    return records->empty() ? nullptr : records->data();
}

std::size_t CustomDefinitionCount() noexcept
{
    return records->size();
}

}  // namespace kivmetadataapi
