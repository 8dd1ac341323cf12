#include "framework/kivmetadata/tests/Dump.h"

#include <array>
#include <charconv>

namespace kivmetadata {

namespace {

// In the order of ValueType.
constexpr std::array kTypeNames = {"text",     "long-text", "language-alternative",
                                   "bag",      "sequence",  "choice",
                                   "date",     "integer",   "number",
                                   "rational", "boolean",   "rating",
                                   "uri",      "structure", "structure-list"};

std::string Quoted(const kivcore::UString& text)
{
    return '"' + kivcore::string::UTF16to8(text) + '"';
}

std::string Named(const char* name, const kivcore::UString& text)
{
    return text.empty() ? std::string() : std::string(" ") + name + '=' + Quoted(text);
}

std::string Digits(double value)
{
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return {buffer.data(), end};
}

void Append(const PropertyDefinition& property, const std::string& indent, std::string& text)
{
    text += indent + property.name + ' ' + kTypeNames.at(static_cast<std::size_t>(property.type)) +
            ' ' + Quoted(property.label);
    text += Named("hint", property.description) + Named("placeholder", property.placeholder) +
            Named("unit", property.unit);
    text += property.isReadOnly ? " read-only" : "";
    text += property.isClosedChoice ? " closed" : "";
    if (property.minimum != 0 || property.maximum != 0) {
        text += ' ' + Digits(property.minimum) + ".." + Digits(property.maximum);
    }
    if (!property.membersNamespace.empty()) {
        text += " of " + property.membersNamespace;
    }
    text += '\n';
    for (const ChoiceDefinition& choice : property.choices) {
        text += indent + "  " + choice.value + '=' + Quoted(choice.label) + '\n';
    }
    for (const auto& member : property.members) {
        Append(*member, indent + "  ", text);
    }
}

}  // namespace

std::string Dump(const PropertyDefinition& property)
{
    std::string text;
    Append(property, "", text);
    return text;
}

std::string Dump(const SchemaDefinition& schema)
{
    std::string text =
        schema.prefix + ' ' + schema.namespaceUri + ' ' + Quoted(schema.label) + '\n';
    for (const auto& property : schema.properties) {
        Append(*property, "  ", text);
    }
    return text;
}

std::string Dump(const ViewDefinition& view)
{
    std::string text = view.owner + '/' + view.name + ' ' + Quoted(view.label);
    text += view.icon.empty() ? "" : " icon=" + view.icon;
    text += view.isCamera ? " camera\n" : "\n";
    std::size_t next = 0;
    for (const ViewGroup& group : view.groups) {
        EXPECT_EQ(group.firstItem, next) << "groups cover the items in order";
        text += "  [" + kivcore::string::UTF16to8(group.heading) + "]";
        for (std::size_t i = 0; i < group.itemCount; ++i) {
            const ViewItem& item = *view.items.at(next++);
            text += " {" + item.namespaceUri + '}' + item.propertyName;
            text += item.sharesRowWithNext ? " +" : "";
        }
        text += '\n';
    }
    EXPECT_EQ(next, view.items.size()) << "every item is in a group";
    return text;
}

}  // namespace kivmetadata
