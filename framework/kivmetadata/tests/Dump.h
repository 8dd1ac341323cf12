// Definitions as lines that a test can compare, and what a reader throws as a text.

#pragma once

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "framework/kivmetadata/src/Translations.h"

#include <kivcore/StringConversion.h>
#include <kivcore/Xml.h>
#include <kivmetadata/Definitions.h>

namespace kivmetadata {

/// `arc http://... "label"`, then a line for each property, members and choices indented behind it.
std::string Dump(const SchemaDefinition& schema);
/// `Name type "label"` and whatever else is set.
std::string Dump(const PropertyDefinition& property);
/// `owner/name "label" icon=... camera`, then groups with their items; "+" stands for a shared row.
std::string Dump(const ViewDefinition& view);

/// Tests that parse; the factory is gone behind them.
class ReaderTest : public testing::Test {
protected:
    ReaderTest()
    {
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
    }
    ~ReaderTest() override { kivcore::xml::ResetParserFactory(); }

    /// What `read` gives, or the message of what it throws.
    template <class Read>
    static std::string TextOrError(const Read& read)
    {
        try {
            return read();
        } catch (const kivcore::xml::ParseError& error) {
            return error.what();
        }
    }
};

/// Texts as they stand in the definition.
class PlainTexts : public TextSource {
public:
    kivcore::UString Text(const Element& element, const std::string& name) const override
    {
        return kivcore::string::UTF8to16(element.Get(name));
    }
};

}  // namespace kivmetadata
