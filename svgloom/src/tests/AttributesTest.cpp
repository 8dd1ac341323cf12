#include "svgloom/src/Attributes.h"

#include <gtest/gtest.h>

#include <string>

#include "svgloom/src/RapidXMLDocument.h"

namespace SVGLoom {
namespace {

TEST(Attributes, ReadsInOnePass)
{
    std::string text =
        "<a fill='red' x='1' unknown='2' fill='blue' xlink:href='#a' id='' Fill='green' "
        "opacity='1'/>";
    const xml::RapidXMLDocument document(text.data());
    const Attributes attributes(*document.GetFirstNode());
    // The first of equal names counts.
    EXPECT_EQ(attributes.Text(AttributeName::kFill), "red");
    EXPECT_EQ(attributes.Text(AttributeName::kX), "1");
    EXPECT_EQ(attributes.Text(AttributeName::kY), "");
    EXPECT_FALSE(attributes.Has(AttributeName::kY));
    EXPECT_TRUE(attributes.Has(AttributeName::kId));
    EXPECT_EQ(attributes.Text(AttributeName::kId), "");
    std::string properties;
    attributes.ForEachProperty([&properties](AttributeName name, std::string_view value) {
        properties.append(TextOf(name)).append("=").append(value).append(";");
    });
    EXPECT_EQ(properties, "opacity=1;fill=red;");
}

TEST(Attributes, APlainHrefGoesFirst)
{
    const auto href = [](std::string text) {
        const xml::RapidXMLDocument document(text.data());
        const Attributes attributes(*document.GetFirstNode());
        return attributes.HasHref() ? std::string(attributes.Href()) : "none";
    };
    EXPECT_EQ(href("<a xlink:href='#1'/>"), "#1");
    EXPECT_EQ(href("<a href='#2'/>"), "#2");
    EXPECT_EQ(href("<a xlink:href='#1' href='#2'/>"), "#2");
    EXPECT_EQ(href("<a xlink:href='#1' href=''/>"), "");
    EXPECT_EQ(href("<a x:href='#1'/>"), "none");
}

TEST(Attributes, EmptyWithoutANode)
{
    const Attributes attributes;
    EXPECT_FALSE(attributes.HasHref());
    EXPECT_EQ(attributes.Href(), "");
    EXPECT_EQ(attributes.Text(AttributeName::kD), "");
}

}  // namespace
}  // namespace SVGLoom
