#include "framework/kivmetadata/src/SchemaReader.h"

#include <algorithm>
#include <array>
#include <set>

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

bool IsNumber(ValueType type)
{
    return type == ValueType::kInteger || type == ValueType::kNumber ||
           type == ValueType::kRational;
}

bool IsStructure(ValueType type)
{
    return type == ValueType::kStructure || type == ValueType::kStructureList;
}

bool IsChoice(ValueType type)
{
    return type == ValueType::kChoice;
}

/// Attributes that only some types have.
struct TypedAttributeRow {
    std::string_view name;
    bool (*belongsTo)(ValueType type);
};

constexpr std::array kTypedAttributeRows = {
    TypedAttributeRow{"closed", IsChoice},  TypedAttributeRow{"unit", IsNumber},
    TypedAttributeRow{"unit-id", IsNumber}, TypedAttributeRow{"minimum", IsNumber},
    TypedAttributeRow{"maximum", IsNumber}, TypedAttributeRow{"members-namespace", IsStructure},
};

/// True for what XML takes as a name without a colon. Characters beyond ASCII all pass: which of
/// them are letters is judged where a name is written into a packet.
bool IsPlainName(std::string_view name)
{
    const auto isStart = [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_' ||
               static_cast<unsigned char>(byte) >= 0x80;
    };
    const auto isPart = [&](char byte) {
        return isStart(byte) || (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
    };
    return !name.empty() && isStart(name.front()) && std::all_of(name.begin(), name.end(), isPart);
}

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
        schema->prefix = RequiredName(root, "prefix");
        if (schema->prefix == "xml" || schema->prefix == "xmlns") {
            reader_.Fail(root, "the prefix '" + schema->prefix + "' is reserved");
        }
        schema->label = texts_.Text(root, "label");
        std::set<std::string> names;
        for (const Element& child : root.children) {
            schema->properties.push_back(ReadProperty(child, 0));
            ExpectNew(child, schema->properties.back()->name, names);
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
        property->name = RequiredName(element, "name");
        property->type = ReadType(element);
        for (const TypedAttributeRow& row : kTypedAttributeRows) {
            if (element.Has(row.name) && !row.belongsTo(property->type)) {
                reader_.Fail(element, "'" + std::string(row.name) +
                                          "' does not belong to a property of this type");
            }
        }
        reader_.Required(element, "label");
        property->label = texts_.Text(element, "label");
        property->description = texts_.Text(element, "description");
        property->placeholder = texts_.Text(element, "placeholder");
        property->unit = texts_.Text(element, "unit");
        property->isReadOnly = reader_.YesNo(element, "read-only", false);
        property->isClosedChoice = reader_.YesNo(element, "closed", false);
        ReadLimits(element, *property);
        ReadChildren(element, *property, depth);
        return property;
    }

    // 0 and 0 stand for no limits, so one alone, or two that are equal, could not be kept.
    void ReadLimits(const Element& element, PropertyDefinition& property) const
    {
        if (element.Has("minimum") != element.Has("maximum")) {
            reader_.Fail(element, "needs both 'minimum' and 'maximum', or neither");
        }
        property.minimum = reader_.Number(element, "minimum");
        property.maximum = reader_.Number(element, "maximum");
        if (element.Has("minimum") && !(property.minimum < property.maximum)) {
            reader_.Fail(element, "'minimum' is not below 'maximum'");
        }
    }

    /// An attribute that becomes a part of names in packets.
    std::string RequiredName(const Element& element, std::string_view attribute) const
    {
        std::string name = reader_.Required(element, attribute);
        if (!IsPlainName(name)) {
            reader_.Fail(element, "'" + name + "' is no XML name without colon");
        }
        return name;
    }

    /// Fails if `name` is among `names`: the second one of a name could never be reached.
    void ExpectNew(const Element& element, const std::string& name,
                   std::set<std::string>& names) const
    {
        if (!names.insert(name).second) {
            reader_.Fail(element, "'" + name + "' is there already");
        }
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
        const bool isStructure = IsStructure(property.type);
        property.membersNamespace = element.Get("members-namespace");
        if (isStructure && property.membersNamespace.empty()) {
            reader_.Fail(element, "needs the attribute 'members-namespace'");
        }
        std::set<std::string> names;
        for (const Element& child : element.children) {
            if (child.name == "choice" && IsChoice(property.type)) {
                property.choices.push_back(ReadChoice(child));
                ExpectNew(child, property.choices.back().value, names);
            } else if (child.name == "property" && isStructure) {
                if (depth == kMaxStructureDepth) {
                    reader_.Fail(child, "structures are nested deeper than " +
                                            std::to_string(kMaxStructureDepth));
                }
                property.members.push_back(ReadProperty(child, depth + 1));
                ExpectNew(child, property.members.back()->name, names);
            } else {
                reader_.Fail(child, "does not belong to a property of this type");
            }
        }
        if (IsChoice(property.type) && property.choices.empty()) {
            reader_.Fail(element, "a choice needs at least one <choice>");
        }
    }

    ChoiceDefinition ReadChoice(const Element& element) const
    {
        reader_.Expect(element, {"value", "label", "label-id"}, {});
        ChoiceDefinition choice;
        choice.value = reader_.Required(element, "value");
        reader_.Required(element, "label");
        choice.label = texts_.Text(element, "label");
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
