// Any bytes as a schema, a view and a translation: read or refused with file and line, and what was
// read keeps what the headers promise.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "framework/kivmetadata/src/SchemaReader.h"
#include "framework/kivmetadata/src/Translations.h"
#include "framework/kivmetadata/src/ViewReader.h"

#include <kivcore/StringConversion.h>
#include <kivcore/Xml.h>

namespace {

class PlainTexts : public kivmetadata::TextSource {
public:
    kivcore::UString Text(const kivmetadata::Element& element,
                          const std::string& name) const override
    {
        return kivcore::string::UTF8to16(element.Get(name));
    }
};

void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void Check(const kivmetadata::PropertyDefinition& property, int depth)
{
    Require(depth <= 9 && !property.name.empty() && !property.label.empty());
    Require(property.minimum <= property.maximum);
    Require(property.choices.empty() == (property.type != kivmetadata::ValueType::kChoice));
    for (const auto& member : property.members) {
        Check(*member, depth + 1);
    }
}

void Check(const kivmetadata::ViewDefinition& view)
{
    std::size_t next = 0;
    for (const kivmetadata::ViewGroup& group : view.groups) {
        Require(group.firstItem == next);
        next += group.itemCount;
    }
    Require(next == view.items.size() && !view.name.empty() && !view.label.empty());
}

template <class Read>
void Try(const Read& read)
{
    try {
        read();
    } catch (const kivcore::xml::ParseError& error) {
        Require(std::string_view(error.what()).starts_with("input:"));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (!kivcore::xml::Initialized()) {
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
    }
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const PlainTexts texts;
    Try([&] {
        const auto schema = kivmetadata::ReadSchema(text, "input", texts);
        Require(!schema->namespaceUri.empty() && !schema->prefix.empty());
        for (const auto& property : schema->properties) {
            Check(*property, 0);
        }
    });
    Try([&] { Check(*kivmetadata::ReadView(text, "input", "owner", texts)); });
    Try([&] {
        for (const auto& [identifier, translation] : kivmetadata::ReadTranslations(text, "input")) {
            Require(!identifier.empty());
        }
    });
    return 0;
}
