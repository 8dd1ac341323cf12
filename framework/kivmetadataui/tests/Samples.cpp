#include "framework/kivmetadataui/tests/Samples.h"

#include <utility>

#include "framework/kivmetadataui/src/Fields.h"

#include <kivcore/StringConversion.h>

namespace kivmetadataui::samples {

using kivmetadata::PropertyDefinition;
using kivmetadata::SchemaDefinition;
using kivmetadata::ValueType;
using kivmetadata::ViewDefinition;

namespace {

std::shared_ptr<const SchemaDefinition> MakeSchema(
    const char* prefix, const char* uri,
    std::vector<std::shared_ptr<const PropertyDefinition>> properties)
{
    auto schema = std::make_shared<SchemaDefinition>();
    schema->prefix = prefix;
    schema->namespaceUri = uri;
    schema->properties = std::move(properties);
    return schema;
}

Property ReadOnly(Property property)
{
    property->isReadOnly = true;
    return property;
}

Property UrgencyChoice()
{
    Property urgency = MakeProperty("Urgency", ValueType::kChoice);
    urgency->choices = {{"1", u"High"}, {"5", u"Normal"}, {"8", u"Low"}};
    urgency->isClosedChoice = true;
    return urgency;
}

Property ContactInfo()
{
    Property contact = MakeProperty("CreatorContactInfo", ValueType::kStructure);
    contact->label = u"Contact";
    contact->membersNamespace = kIptc;
    contact->members = {MakeProperty("CiAdrCity", ValueType::kText),
                        MakeProperty("CiEmailWork", ValueType::kText)};
    return contact;
}

std::string UriOf(std::string_view prefix)
{
    for (const auto& schema : Schemas()) {
        if (schema->prefix == prefix) {
            return schema->namespaceUri;
        }
    }
    return {};
}

}  // namespace

Property MakeProperty(std::string name, ValueType type)
{
    auto property = std::make_shared<PropertyDefinition>();
    property->label = kivcore::string::UTF8to16(name);
    property->name = std::move(name);
    property->type = type;
    return property;
}

std::vector<std::shared_ptr<const SchemaDefinition>> Schemas()
{
    return {
        MakeSchema("dc", kDc,
                   {MakeProperty("title", ValueType::kLanguageAlternative),
                    MakeProperty("description", ValueType::kLanguageAlternative),
                    MakeProperty("subject", ValueType::kBag),
                    MakeProperty("creator", ValueType::kSequence)}),
        MakeSchema(
            "xmp", kXmp,
            {MakeProperty("CreateDate", ValueType::kDate),
             MakeProperty("Rating", ValueType::kRating), MakeProperty("Label", ValueType::kText)}),
        MakeSchema("photoshop", kPhotoshop,
                   {MakeProperty("City", ValueType::kText),
                    MakeProperty("Headline", ValueType::kText), UrgencyChoice()}),
        MakeSchema("exif", kExif,
                   {ReadOnly(MakeProperty("ExposureTime", ValueType::kRational)),
                    ReadOnly(MakeProperty("FNumber", ValueType::kRational))}),
        MakeSchema("Iptc4xmpCore", kIptc, {ContactInfo()}),
    };
}

std::shared_ptr<ViewDefinition> MakeView(std::string name, const std::vector<std::string>& items)
{
    auto view = std::make_shared<ViewDefinition>();
    view->owner = "com.orvan.xmp";
    view->label = kivcore::string::UTF8to16("View " + name);
    view->name = std::move(name);
    for (const std::string& text : items) {
        if (text == "-") {
            if (view->groups.empty()) {
                view->groups.push_back({{}, 0, view->items.size()});
            }
            view->groups.push_back({u"Group", view->items.size(), 0});
            continue;
        }
        auto item = std::make_shared<kivmetadata::ViewItem>();
        const std::size_t colon = text.find(':');
        item->namespaceUri = UriOf(text.substr(0, colon));
        item->propertyName = text.substr(colon + 1);
        view->items.push_back(std::move(item));
        if (!view->groups.empty()) {
            ++view->groups.back().itemCount;
        }
    }
    return view;
}

std::string Packet(std::string_view properties)
{
    std::string packet =
        "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
        "<x:xmpmeta xmlns:x='adobe:ns:meta/'>\n"
        " <rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>\n"
        "  <rdf:Description rdf:about=''";
    const std::pair<const char*, const char*> names[] = {{"dc", kDc},
                                                         {"xmp", kXmp},
                                                         {"photoshop", kPhotoshop},
                                                         {"exif", kExif},
                                                         {"Iptc4xmpCore", kIptc}};
    for (const auto& [prefix, uri] : names) {
        packet += std::string("\n   xmlns:") + prefix + "='" + uri + "'";
    }
    packet += ">\n   <!-- kept -->\n";
    packet += properties;
    packet += "\n  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n";
    packet += std::string(400, ' ');
    packet += "\n<?xpacket end=\"w\"?>";
    return packet;
}

std::unique_ptr<__XMPMeta__> Parse(std::string_view properties)
{
    return __XMPMeta__::Parse(Packet(properties));
}

std::string Jpeg(std::string_view packet)
{
    using namespace std::string_literals;
    std::string photo = "\xFF\xD8";
    if (!packet.empty()) {
        const std::string content = "http://ns.adobe.com/xap/1.0/\0"s + std::string(packet);
        const std::size_t length = content.size() + 2;
        photo += "\xFF\xE1";
        photo += static_cast<char>(length >> 8);
        photo += static_cast<char>(length & 0xFF);
        photo += content;
    }
    return photo + "\xFF\xDA\0\2\xFF\xD9"s;
}

FieldDescription Describe(std::string path)
{
    FieldDescription description;
    description.label = kivcore::string::UTF8to16(path);
    description.path = std::move(path);
    return description;
}

std::string Utf8(const kivcore::UString& text)
{
    return kivcore::string::UTF16to8(text);
}

void TypeInto(Field& field, const kivcore::UString& text)
{
    switch (field.Kind()) {
        case FieldKind::kLanguageAlternative:
            static_cast<LanguageField&>(field).SetText(text);
            break;
        case FieldKind::kDate:
            static_cast<DateField&>(field).SetText(text);
            break;
        case FieldKind::kNumber:
            static_cast<NumberField&>(field).SetText(text);
            break;
        case FieldKind::kChoice:
            static_cast<ChoiceField&>(field).SetText(text);
            break;
        default:
            static_cast<TextField&>(field).SetText(text);
            break;
    }
}

std::string Print(const FieldItems& items)
{
    std::string text;
    for (const FieldItem& item : items) {
        text += text.empty() ? "" : "|";
        text += item.language.empty() ? "" : item.language + "=";
        text += Utf8(item.text);
    }
    return text;
}

}  // namespace kivmetadataui::samples
