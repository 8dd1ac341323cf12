#include "framework/kivxmp/src/TagScanner.h"

#include <gtest/gtest.h>

#include <string>

namespace kivxmp {
namespace {

std::string Show(const StartTag& tag)
{
    std::string text = std::string(tag.name) + " " + std::to_string(tag.attributesEnd) + " " +
                       std::to_string(tag.end) + (tag.isEmpty ? " empty" : "");
    for (const AttributePlace& place : tag.attributes) {
        text += " [" + std::string(place.name) + " " + std::to_string(place.spaceBegin) + " " +
                std::to_string(place.span.begin) + " " + std::to_string(place.span.end) + "]";
    }
    return text;
}

struct TagCase {
    const char* text;
    const char* want;  // name, ends of attributes and tag; of each attribute: space, begin, end
};

constexpr TagCase kTags[] = {
    {"<a>x", "a 2 3"},
    {"<a/>", "a 2 4 empty"},
    {"<a />x", "a 2 5 empty"},
    {"<p:a b='1' c = \"2\" >", "p:a 18 20 [b 4 5 10] [c 10 11 18]"},
    {"<a\n\tb='>'/>", "a 9 11 empty [b 2 4 9]"},
    {"<a b='\"/>\"'>", "a 11 12 [b 2 3 11]"},
    // What is cut short ends with the text.
    {"<", " 1 1"},
    {"<a", "a 2 2"},
    {"<a b", "a 2 4"},
    {"<a b=", "a 2 5"},
    {"<a b='1", "a 2 7"},
    {"<a /", "a 2 4 empty"},
};

TEST(TagScanner, StartTags)
{
    for (const TagCase& row : kTags) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Show(ScanStartTag(row.text, 0)), row.want);
    }
}

TEST(TagScanner, PrefixesUsed)
{
    struct Row {
        const char* xml;
        const char* want;
    };
    constexpr Row kRows[] = {
        {"<a/>", "''"},
        {"<p:a q:b='r:c' d='' xml:lang='' xmlns:s=''><p:e/></p:a>", "'p' 'q'"},
        {"<p:a><!-- <x:y> --><![CDATA[<x:y>]]><?pi <x:y>?>x:y</p:a>", "'p'"},
        {"<p:a><b/><!-- open", "'' 'p'"},
        {"<p:a", "'p'"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.xml);
        std::string shown;
        for (const std::string_view prefix : PrefixesUsed(row.xml)) {
            shown += (shown.empty() ? "'" : " '") + std::string(prefix) + "'";
        }
        EXPECT_EQ(shown, row.want);
    }
}

}  // namespace
}  // namespace kivxmp
