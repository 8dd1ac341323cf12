#include "framework/kivmetadataui/src/PropertyBinding.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/kivmetadataui/src/DateText.h"
#include "framework/kivmetadataui/src/DerivedText.h"
#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/NodeText.h"
#include "framework/kivmetadataui/src/NumberValue.h"
#include "framework/kivmetadataui/src/Texts.h"

#include <kivxmp/Derived.h>
#include <kivxmp/XMPAccess.h>
#include <kivxmp/XMPValue.h>

namespace kivmetadataui {

using kivcore::UString;
using kivmetadata::PropertyDefinition;
using kivmetadata::ValueType;
using kivxmp::Node;
using kivxmp::NodeForm;

namespace {

bool IsTextType(ValueType type)
{
    switch (type) {
        case ValueType::kLanguageAlternative:
        case ValueType::kBag:
        case ValueType::kSequence:
        case ValueType::kStructure:
        case ValueType::kStructureList:
            return false;
        default:
            return true;
    }
}

NumberKind KindOfNumber(ValueType type)
{
    if (type == ValueType::kInteger) {
        return NumberKind::kInteger;
    }
    return type == ValueType::kRational ? NumberKind::kRational : NumberKind::kReal;
}

// The definitions' forms know one type of language alternatives; a title is a line all the same.
bool IsLongAlternative(const PropertyDefinition& definition, const Node* node)
{
    constexpr std::string_view kLongNames[] = {"description", "rights", "UsageTerms",
                                               "AltTextAccessibility", "ExtDescrAccessibility"};
    if (std::find(std::begin(kLongNames), std::end(kLongNames), definition.name) !=
        std::end(kLongNames)) {
        return true;
    }
    return node != nullptr &&
           std::any_of(node->Children().begin(), node->Children().end(), [](const Node& item) {
               return item.Value().find('\n') != std::string_view::npos;
           });
}

std::unique_ptr<Field> MakeField(const PropertyDefinition& definition, const Node* node,
                                 FieldDescription description)
{
    switch (definition.type) {
        case ValueType::kText:
            return std::make_unique<TextField>(FieldKind::kText, std::move(description));
        case ValueType::kLongText:
            return std::make_unique<TextField>(FieldKind::kLongText, std::move(description));
        case ValueType::kUri:
            return std::make_unique<TextField>(FieldKind::kUri, std::move(description));
        case ValueType::kLanguageAlternative:
            return std::make_unique<LanguageField>(std::move(description),
                                                   IsLongAlternative(definition, node));
        case ValueType::kBag:
        case ValueType::kSequence:
            return std::make_unique<ListField>(std::move(description),
                                               definition.type == ValueType::kSequence);
        case ValueType::kChoice: {
            std::vector<FieldChoice> choices;
            for (const kivmetadata::ChoiceDefinition& choice : definition.choices) {
                choices.push_back(
                    {choice.value, choice.label.empty() ? Widen(choice.value) : choice.label});
            }
            return std::make_unique<ChoiceField>(std::move(description), std::move(choices),
                                                 definition.isClosedChoice);
        }
        case ValueType::kDate:
            return std::make_unique<DateField>(std::move(description));
        case ValueType::kInteger:
        case ValueType::kNumber:
        case ValueType::kRational:
            return std::make_unique<NumberField>(
                std::move(description),
                NumberLimits{KindOfNumber(definition.type), definition.minimum, definition.maximum},
                definition.unit);
        case ValueType::kBoolean:
            return std::make_unique<YesNoField>(std::move(description));
        case ValueType::kRating:
            return std::make_unique<RatingField>(std::move(description));
        case ValueType::kStructure:
        case ValueType::kStructureList:
            break;
    }
    return std::make_unique<DisplayField>(std::move(description));
}

/// Why a value of this form is not edited.
UString FormExplanation(NodeForm form)
{
    switch (form) {
        case NodeForm::kSimple:
        case NodeForm::kUri:
            return DialogText(
                "$$$/Kiv/Dialog/Locked/Text=The file holds a single text here. It is shown as it "
                "is and stays so.");
        case NodeForm::kStruct:
            return DialogText(
                "$$$/Kiv/Dialog/Locked/Structure=The file holds a structure here. It is shown as "
                "it "
                "is and stays so.");
        case NodeForm::kBag:
        case NodeForm::kSeq:
            return DialogText(
                "$$$/Kiv/Dialog/Locked/List=The file holds a list here. It is shown as it is and "
                "stays so.");
        case NodeForm::kAlt:
            return DialogText(
                "$$$/Kiv/Dialog/Locked/Alternatives=The file holds alternatives here. They are "
                "shown as they are and stay so.");
        case NodeForm::kRaw:
            break;
    }
    return DialogText(
        "$$$/Kiv/Dialog/Locked/Raw=The file holds something here that XMP does not allow. It is "
        "shown as it is and stays so.");
}

bool HoldsTextsOnly(const Node& node)
{
    return std::all_of(node.Children().begin(), node.Children().end(),
                       [](const Node& item) { return item.IsText(); });
}

bool IsOfForm(const Node& node, ValueType type)
{
    if (IsTextType(type)) {
        return node.IsText();
    }
    if (type == ValueType::kLanguageAlternative) {
        return node.Form() == NodeForm::kAlt && HoldsTextsOnly(node) &&
               std::all_of(node.Children().begin(), node.Children().end(),
                           [](const Node& item) { return !item.Language().empty(); });
    }
    // Writers disagree on bags and sequences; the list stays what it is in the packet.
    return (node.Form() == NodeForm::kBag || node.Form() == NodeForm::kSeq) && HoldsTextsOnly(node);
}

UString ShownText(const Node& node, ValueType type)
{
    if (type == ValueType::kDate) {
        const std::optional<kivxmp::Date> date = kivxmp::DateOf(&node);
        return date ? ShowDate(*date) : Widen(node.Value());
    }
    if (type == ValueType::kRational) {
        return ShowNumber(node.Value(), NumberKind::kRational);
    }
    return Widen(node.Value());
}

FieldItems ReadItems(const Node& node, ValueType type)
{
    FieldItems items;
    if (IsTextType(type)) {
        // An empty property looks like none, and typing back to nothing leaves it alone.
        if (!node.Value().empty()) {
            items.push_back({{}, ShownText(node, type), 1});
        }
        return items;
    }
    for (const Node& item : node.Children()) {
        const std::string_view language =
            type == ValueType::kLanguageAlternative ? item.Language() : std::string_view();
        items.push_back({std::string(language), Widen(item.Value()), items.size() + 1});
    }
    return items;
}

/// Values that their field has no way to show.
UString ValueExplanation(const Field& field)
{
    if (field.IsEmpty()) {
        return {};
    }
    if (field.Kind() == FieldKind::kRating &&
        !static_cast<const RatingField&>(field).Stars().has_value()) {
        return DialogText(
            "$$$/Kiv/Dialog/Locked/Rating=“^0” is no rating from 0 to 5. It is shown as it is and "
            "stays so.",
            {field.Items().front().text});
    }
    if (field.Kind() == FieldKind::kYesNo &&
        !static_cast<const YesNoField&>(field).Value().has_value()) {
        return DialogText(
            "$$$/Kiv/Dialog/Locked/YesNo=“^0” is neither yes nor no. It is shown as it is and "
            "stays "
            "so.",
            {field.Items().front().text});
    }
    return {};
}

FieldItems OneText(UString text)
{
    FieldItems items;
    if (!text.empty()) {
        items.push_back({{}, std::move(text), 1});
    }
    return items;
}

std::unique_ptr<Field> MakeFilledField(const PropertyDefinition& definition,
                                       const kivxmp::Path& path, const Node* node,
                                       FieldDescription description)
{
    const bool isStructured =
        definition.type == ValueType::kStructure || definition.type == ValueType::kStructureList;
    if (node == nullptr) {
        return MakeField(definition, node, std::move(description));
    }
    const UString cameraText =
        definition.isReadOnly ? CameraText(path.back().uri, path.back().local, *node) : UString();
    if (isStructured || !cameraText.empty()) {
        auto field = std::make_unique<DisplayField>(std::move(description));
        field->Load(OneText(cameraText.empty() ? NodeText(*node, &definition) : cameraText));
        return field;
    }
    if (!IsOfForm(*node, definition.type)) {
        // The reason is for who wants to edit.
        const UString explanation =
            definition.isReadOnly ? UString() : FormExplanation(node->Form());
        auto field = std::make_unique<DisplayField>(std::move(description));
        field->Load(OneText(NodeText(*node, &definition)));
        field->Lock(explanation);
        return field;
    }
    std::unique_ptr<Field> field = MakeField(definition, node, description);
    field->Load(ReadItems(*node, definition.type));
    UString explanation = ValueExplanation(*field);
    if (!explanation.empty()) {
        field = std::make_unique<DisplayField>(std::move(description));
        field->Load(ReadItems(*node, definition.type));
        field->Lock(std::move(explanation));
    }
    return field;
}

/// What a field of one text writes.
std::string WrittenText(const Field& field)
{
    const UString& text = field.Items().front().text;
    if (field.Kind() == FieldKind::kDate) {
        kivxmp::Date date;
        UString error;
        if (ReadDate(text, date, error)) {
            return kivxmp::FormatDate(date);
        }
    } else if (field.Kind() == FieldKind::kNumber) {
        const auto& number = static_cast<const NumberField&>(field);
        return ReadNumber(text, number.Limits().kind).value_or(Narrow(text));
    }
    return Narrow(text);
}

bool IsUri(const PropertyBinding& binding, const Node* node)
{
    return node != nullptr ? node->Form() == NodeForm::kUri
                           : binding.definition->type == ValueType::kUri;
}

}  // namespace

PropertyBinding MakeBinding(const __XMPMeta__& meta, kivxmp::Path path,
                            std::shared_ptr<const PropertyDefinition> definition)
{
    FieldDescription description;
    description.path = meta.PrintPath(path);
    description.label = definition->label.empty() ? Widen(definition->name) : definition->label;
    description.hint = definition->description;
    description.placeholder = definition->placeholder;
    description.isReadOnly = definition->isReadOnly;
    std::unique_ptr<Field> field = MakeFilledField(
        *definition, path, kivxmp::FindWithDerived(meta, path), std::move(description));
    if (!field->IsEmpty()) {
        field->SetSource(SourceAt(meta, path));
    }
    return {std::move(path), std::move(definition), std::move(field)};
}

void WriteField(const PropertyBinding& binding, __XMPMeta__& target)
{
    const Field& field = *binding.field;
    if (!field.IsChanged()) {
        return;
    }
    if (field.Items().empty()) {
        target.Remove(binding.path);
        return;
    }
    const Node* const node = kivxmp::FindWithDerived(target, binding.path);
    if (field.Kind() == FieldKind::kLanguageAlternative) {
        std::vector<kivxmp::LanguageText> items;
        for (const FieldItem& item : field.Items()) {
            items.push_back({item.language, Narrow(item.text)});
        }
        target.SetLanguages(binding.path, items);
    } else if (field.Kind() == FieldKind::kList) {
        std::vector<std::string> items;
        for (const FieldItem& item : field.Items()) {
            items.push_back(Narrow(item.text));
        }
        const NodeForm defined =
            static_cast<const ListField&>(field).IsOrdered() ? NodeForm::kSeq : NodeForm::kBag;
        target.SetList(binding.path, node != nullptr ? node->Form() : defined, items);
    } else if (IsUri(binding, node)) {
        target.SetUri(binding.path, WrittenText(field));
    } else {
        target.SetText(binding.path, WrittenText(field));
    }
}

}  // namespace kivmetadataui
