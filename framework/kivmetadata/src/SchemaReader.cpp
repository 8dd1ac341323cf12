#include "src/SchemaReader.h"

#include <algorithm>
#include <array>

namespace kivmetadata {

namespace {

constexpr int kMaxStructureDepth = 8;

struct TypeRow {
    std::string_view name;
    ValueType type;
};

constexpr std::array kTypeRows = {
    TypeRow{"text", ValueType::kText},
    TypeRow{"long-text", ValueType::kLongText},
    TypeRow{"language-alternative", ValueType::kLanguageAlternative},
    TypeRow{"bag", ValueType::kBag},
    TypeRow{"sequence", ValueType::kSequence},
    TypeRow{"choice", ValueType::kChoice},
    TypeRow{"date", ValueType::kDate},
    TypeRow{"integer", ValueType::kInteger},
    TypeRow{"number", ValueType::kNumber},
    TypeRow{"rational", ValueType::kRational},
    TypeRow{"boolean", ValueType::kBoolean},
    TypeRow{"rating", ValueType::kRating},
    TypeRow{"uri", ValueType::kUri},
    TypeRow{"structure", ValueType::kStructure},
    TypeRow{"structure-list", ValueType::kStructureList},
};

class SchemaReader {
public:
    SchemaReader(const std::string& sourceName, const TextSource& texts)
        : reader_(sourceName), texts_(texts)
    {
    }

    std::shared_ptr<const SchemaDefinition> Read(std::string_view text) const
    {
        const Element root = reader_.Parse(text, "schema");
        reader_.Expect(root, {"namespace", "prefix", "label", "label-id"}, {"property"});
        auto schema = std::make_shared<SchemaDefinition>();
        schema->namespaceUri = reader_.Required(root, "namespace");
        schema->prefix = reader_.Required(root, "prefix");
        schema->label = texts_.Text(root, "label");
        for (const Element& child : root.children) {
            schema->properties.push_back(ReadProperty(child, 0));
        }
        return schema;
    }

private:
    std::shared_ptr<const PropertyDefinition> ReadProperty(const Element& element, int depth) const
    {
        reader_.Expect(element,
                       {"name", "type", "label", "label-id", "description", "description-id",
                        "placeholder", "placeholder-id", "unit", "unit-id", "read-only", "closed",
                        "minimum", "maximum", "members-namespace"},
                       {"choice", "property"});
        auto property = std::make_shared<PropertyDefinition>();
        property->name = reader_.Required(element, "name");
        property->type = ReadType(element);
        property->label = texts_.Text(element, "label");
        if (property->label.empty()) {
            reader_.Fail(element, "needs the attribute 'label'");
        }
        property->description = texts_.Text(element, "description");
        property->placeholder = texts_.Text(element, "placeholder");
        property->unit = texts_.Text(element, "unit");
        property->isReadOnly = reader_.YesNo(element, "read-only", false);
        property->isClosedChoice = reader_.YesNo(element, "closed", false);
        property->minimum = reader_.Number(element, "minimum");
        property->maximum = reader_.Number(element, "maximum");
        ReadChildren(element, *property, depth);
        return property;
    }

    ValueType ReadType(const Element& element) const
    {
        if (!element.Has("type")) {
            return ValueType::kText;
        }
        const std::string_view name = element.Get("type");
        const auto* const row =
            std::find_if(kTypeRows.begin(), kTypeRows.end(),
                         [&](const TypeRow& each) { return each.name == name; });
        if (row == kTypeRows.end()) {
            reader_.Fail(element, "unknown type '" + std::string(name) + "'");
        }
        return row->type;
    }

    void ReadChildren(const Element& element, PropertyDefinition& property, int depth) const
    {
        const bool isStructure =
            property.type == ValueType::kStructure || property.type == ValueType::kStructureList;
        property.membersNamespace = element.Get("members-namespace");
        if (isStructure && property.membersNamespace.empty()) {
            reader_.Fail(element, "needs the attribute 'members-namespace'");
        }
        for (const Element& child : element.children) {
            if (child.name == "choice" && property.type == ValueType::kChoice) {
                property.choices.push_back(ReadChoice(child));
            } else if (child.name == "property" && isStructure && depth < kMaxStructureDepth) {
                property.members.push_back(ReadProperty(child, depth + 1));
            } else {
                reader_.Fail(child, "does not belong to a property of this type");
            }
        }
        if (property.type == ValueType::kChoice && property.choices.empty()) {
            reader_.Fail(element, "a choice needs at least one <choice>");
        }
    }

    ChoiceDefinition ReadChoice(const Element& element) const
    {
        reader_.Expect(element, {"value", "label", "label-id"}, {});
        ChoiceDefinition choice;
        choice.value = reader_.Required(element, "value");
        choice.label = texts_.Text(element, "label");
        if (choice.label.empty()) {
            reader_.Fail(element, "needs the attribute 'label'");
        }
        return choice;
    }

    ElementReader reader_;
    const TextSource& texts_;
};

}  // namespace

std::shared_ptr<const SchemaDefinition> ReadSchema(std::string_view text,
                                                   const std::string& sourceName,
                                                   const TextSource& texts)
{
    return SchemaReader(sourceName, texts).Read(text);
}

}  // namespace kivmetadata
