#include <gtest/gtest.h>

#include "framework/kivxmp/tests/XmpTestSupport.h"

namespace kivxmp::testing {
namespace {

struct FormCase {
    const char* about;
    const char* content;  // of an rdf:Description
    const char* want;
};

constexpr FormCase kForms[] = {
    {"text", "<dc:format>image/jpeg</dc:format>", "dc:format simple image/jpeg\n"},
    {"no text", "<dc:format/><xmp:Label></xmp:Label>", "dc:format simple \nxmp:Label simple \n"},
    // White space is part of a text.
    {"white space", "<dc:format> a\n b </dc:format>", "dc:format simple  a\\n b \n"},
    {"references and sections", "<dc:format>&lt;&#x41;<![CDATA[<&]]>&amp;</dc:format>",
     "dc:format simple <A<&&\n"},
    {"comments and instructions", "<!--1--><dc:format>a<!--2-->b<?three?>c</dc:format><?four?>",
     "dc:format simple abc\n"},
    {"language", "<dc:format xml:lang=\"de\">a</dc:format>",
     "dc:format simple a\ndc:format/?xml:lang simple de\n"},
    {"URI", "<ex:a rdf:resource=\"http://a/?b&amp;c\"/>", "ex:a uri http://a/?b&c\n"},
    {"URI with end tag", "<ex:a rdf:resource=\"u\"> </ex:a>", "ex:a uri u\n"},

    {"bag", "<dc:subject><rdf:Bag><rdf:li>a</rdf:li><rdf:li/></rdf:Bag></dc:subject>",
     "dc:subject bag\ndc:subject[1] simple a\ndc:subject[2] simple \n"},
    {"seq", "<dc:creator>\n <rdf:Seq>\n  <rdf:li>a</rdf:li>\n </rdf:Seq>\n</dc:creator>",
     "dc:creator seq\ndc:creator[1] simple a\n"},
    {"empty lists", "<ex:a><rdf:Bag/></ex:a><ex:b><rdf:Seq></rdf:Seq></ex:b>",
     "ex:a bag\nex:b seq\n"},
    {"URIs as items", "<ex:a><rdf:Seq><rdf:li rdf:resource=\"u\"/></rdf:Seq></ex:a>",
     "ex:a seq\nex:a[1] uri u\n"},
    {"lists in lists",
     "<ex:a><rdf:Seq><rdf:li><rdf:Bag><rdf:li>1</rdf:li></rdf:Bag></rdf:li></rdf:Seq></ex:a>",
     "ex:a seq\nex:a[1] bag\nex:a[1][1] simple 1\n"},

    {"language alternative",
     "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">t</rdf:li>"
     "<rdf:li xml:lang=\"de-AT\">u</rdf:li></rdf:Alt></dc:title>",
     "dc:title alt\n"
     "dc:title[@x-default] simple t\ndc:title[@x-default]/?xml:lang simple x-default\n"
     "dc:title[@de-AT] simple u\ndc:title[@de-AT]/?xml:lang simple de-AT\n"},
    // A language that two items have does not name one of them.
    {"doubled language",
     "<dc:title><rdf:Alt><rdf:li xml:lang=\"de\">t</rdf:li><rdf:li xml:lang=\"DE\">u</rdf:li>"
     "<rdf:li>v</rdf:li></rdf:Alt></dc:title>",
     "dc:title alt\ndc:title[1] simple t\ndc:title[1]/?xml:lang simple de\n"
     "dc:title[2] simple u\ndc:title[2]/?xml:lang simple DE\ndc:title[3] simple v\n"},
    {"language in a bag", "<ex:a><rdf:Bag><rdf:li xml:lang=\"de\">t</rdf:li></rdf:Bag></ex:a>",
     "ex:a bag\nex:a[1] simple t\nex:a[1]/?xml:lang simple de\n"},

    {"structure", "<ex:a><rdf:Description><ex:b>1</ex:b><q:c>2</q:c></rdf:Description></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/q:c simple 2\n"},
    {"structure by parseType", "<ex:a rdf:parseType=\"Resource\"><ex:b>1</ex:b></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\n"},
    {"structure in attributes", "<ex:a ex:b=\"1\" q:c=\"2\"/>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/q:c simple 2\n"},
    {"attributes and elements",
     "<ex:a><rdf:Description ex:b=\"1\"><ex:c>2</ex:c></rdf:Description></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/ex:c simple 2\n"},
    {"empty structures", "<ex:a><rdf:Description/></ex:a><ex:b rdf:parseType=\"Resource\"/>",
     "ex:a struct\nex:b struct\n"},
    {"structures as items",
     "<ex:a><rdf:Seq><rdf:li ex:b=\"1\"/><rdf:li rdf:parseType=\"Resource\"><ex:b>2</ex:b>"
     "</rdf:li></rdf:Seq></ex:a>",
     "ex:a seq\nex:a[1] struct\nex:a[1]/ex:b simple 1\nex:a[2] struct\nex:a[2]/ex:b simple 2\n"},
    {"structures in structures",
     "<ex:a rdf:parseType=\"Resource\"><ex:b rdf:parseType=\"Resource\"><ex:c>1</ex:c></ex:b>"
     "</ex:a>",
     "ex:a struct\nex:a/ex:b struct\nex:a/ex:b/ex:c simple 1\n"},
    {"structure about nothing", "<ex:a><rdf:Description rdf:about=\"\" ex:b=\"1\"/></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\n"},
    {"typed structure", "<ex:a><q:Kind ex:b=\"1\"/></ex:a>",
     "ex:a struct\nex:a/?rdf:type uri http://q/Kind\nex:a/ex:b simple 1\n"},
    {"type as a field", "<ex:a><rdf:Description rdf:type=\"http://q/Kind\"/></ex:a>",
     "ex:a struct\nex:a/rdf:type uri http://q/Kind\n"},

    {"qualifier",
     "<ex:a><rdf:Description><rdf:value>v</rdf:value><q:b>1</q:b></rdf:Description></ex:a>",
     "ex:a simple v\nex:a/?q:b simple 1\n"},
    {"qualifier by parseType",
     "<ex:a rdf:parseType=\"Resource\"><q:b>1</q:b><rdf:value>v</rdf:value></ex:a>",
     "ex:a simple v\nex:a/?q:b simple 1\n"},
    {"qualifier in attributes", "<ex:a rdf:value=\"v\" q:b=\"1\"/>",
     "ex:a simple v\nex:a/?q:b simple 1\n"},
    {"qualifier of a URI", "<ex:a rdf:resource=\"u\" q:b=\"1\"/>",
     "ex:a uri u\nex:a/?q:b simple 1\n"},
    {"qualifier of an item",
     "<dc:creator><rdf:Seq><rdf:li rdf:value=\"v\" q:b=\"1\"/></rdf:Seq></dc:creator>",
     "dc:creator seq\ndc:creator[1] simple v\ndc:creator[1]/?q:b simple 1\n"},
    {"qualifier of a list",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value><rdf:Bag><rdf:li>1</rdf:li></rdf:Bag>"
     "</rdf:value><q:b>2</q:b></ex:a>",
     "ex:a bag\nex:a/?q:b simple 2\nex:a[1] simple 1\n"},
    {"qualifier with structure",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><q:b q:c=\"1\"/></ex:a>",
     "ex:a simple v\nex:a/?q:b struct\nex:a/?q:b/q:c simple 1\n"},
    {"language and qualifier",
     "<ex:a xml:lang=\"de\"><rdf:Description><q:b>1</q:b><rdf:value>v</rdf:value>"
     "</rdf:Description></ex:a>",
     "ex:a simple v\nex:a/?xml:lang simple de\nex:a/?q:b simple 1\n"},
    {"language inside",
     "<ex:a rdf:parseType=\"Resource\"><q:b>1</q:b><rdf:value xml:lang=\"de\">v</rdf:value>"
     "</ex:a>",
     "ex:a simple v\nex:a/?xml:lang simple de\nex:a/?q:b simple 1\n"},
    {"data type", "<ex:a rdf:datatype=\"http://int\">5</ex:a>",
     "ex:a simple 5\nex:a/?rdf:datatype uri http://int\n"},
    {"typed value", "<ex:a><q:Kind><rdf:value>v</rdf:value></q:Kind></ex:a>",
     "ex:a simple v\nex:a/?rdf:type uri http://q/Kind\n"},

    // What XMP does not allow is shown as its source.
    {"literal XML", "<ex:a rdf:parseType=\"Literal\"><b/>&amp;</ex:a><ex:b>1</ex:b>",
     "ex:a raw <ex:a rdf:parseType=\"Literal\"><b/>&amp;</ex:a>\nex:b simple 1\n"},
    {"collection", "<ex:a rdf:parseType=\"Collection\"><q:b/></ex:a>",
     "ex:a raw <ex:a rdf:parseType=\"Collection\"><q:b/></ex:a>\n"},
    {"identifier", "<ex:a rdf:ID=\"i\">1</ex:a>", "ex:a raw <ex:a rdf:ID=\"i\">1</ex:a>\n"},
    {"node identifier", "<ex:a rdf:nodeID=\"n\"/>", "ex:a raw <ex:a rdf:nodeID=\"n\"/>\n"},
    {"mixed content", "<ex:a>1<rdf:Bag/></ex:a>", "ex:a raw <ex:a>1<rdf:Bag/></ex:a>\n"},
    {"text behind", "<ex:a><rdf:Bag/>1</ex:a>", "ex:a raw <ex:a><rdf:Bag/>1</ex:a>\n"},
    {"text in a list", "<ex:a><rdf:Bag>1</rdf:Bag></ex:a>",
     "ex:a raw <ex:a><rdf:Bag>1</rdf:Bag></ex:a>\n"},
    {"two nodes", "<ex:a><rdf:Bag/><rdf:Bag/></ex:a>",
     "ex:a raw <ex:a><rdf:Bag/><rdf:Bag/></ex:a>\n"},
    {"numbered item", "<ex:a><rdf:Seq><rdf:_1>x</rdf:_1></rdf:Seq></ex:a>",
     "ex:a raw <ex:a><rdf:Seq><rdf:_1>x</rdf:_1></rdf:Seq></ex:a>\n"},
    {"list with attributes", "<ex:a><rdf:Bag ex:b=\"1\"/></ex:a>",
     "ex:a raw <ex:a><rdf:Bag ex:b=\"1\"/></ex:a>\n"},
    {"structure about another", "<ex:a><rdf:Description rdf:about=\"u\"/></ex:a>",
     "ex:a raw <ex:a><rdf:Description rdf:about=\"u\"/></ex:a>\n"},
    {"URI and value", "<ex:a rdf:resource=\"u\" rdf:value=\"v\"/>",
     "ex:a raw <ex:a rdf:resource=\"u\" rdf:value=\"v\"/>\n"},
    {"attributes and content", "<ex:a ex:b=\"1\">2</ex:a>", "ex:a raw <ex:a ex:b=\"1\">2</ex:a>\n"},
    {"term as a property", "<rdf:foo>1</rdf:foo>", "rdf:foo raw <rdf:foo>1</rdf:foo>\n"},
    {"raw item among others",
     "<ex:a><rdf:Bag><rdf:li>1</rdf:li><rdf:li rdf:ID=\"i\"/></rdf:Bag></ex:a>",
     "ex:a bag\nex:a[1] simple 1\nex:a[2] raw <rdf:li rdf:ID=\"i\"/>\n"},
    {"raw field among others",
     "<ex:a rdf:parseType=\"Resource\"><ex:b>1</ex:b><ex:c rdf:ID=\"i\"/></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/ex:c raw <ex:c rdf:ID=\"i\"/>\n"},
    {"value twice, by two means",
     "<ex:a xml:lang=\"de\" rdf:parseType=\"Resource\"><rdf:value xml:lang=\"en\">v</rdf:value>"
     "</ex:a>",
     "ex:a raw <ex:a xml:lang=\"de\" rdf:parseType=\"Resource\">"
     "<rdf:value xml:lang=\"en\">v</rdf:value></ex:a>\n"},

    // The first of a name counts; later ones are shown as their source.
    {"property twice", "<ex:a>1</ex:a><ex:a>2</ex:a>", "ex:a simple 1\nex:a raw <ex:a>2</ex:a>\n"},
    {"field twice", "<ex:a><rdf:Description ex:b=\"1\"><ex:b>2</ex:b></rdf:Description></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/ex:b raw <ex:b>2</ex:b>\n"},
    {"twice by two prefixes", "<ex:a>1</ex:a><p:a xmlns:p=\"http://ex/\">2</p:a>",
     "ex:a simple 1\np:a raw <p:a xmlns:p=\"http://ex/\">2</p:a>\n"},

    // Namespaces.
    {"own declaration", "<p:a xmlns:p=\"http://p/\">1</p:a>", "p:a simple 1\n"},
    {"default namespace", "<a xmlns=\"http://purl.org/dc/elements/1.1/\">1</a>", "dc:a simple 1\n"},
    {"unknown default namespace", "<a xmlns=\"http://p/\">1</a>", "{http://p/}a simple 1\n"},
    // A well-known prefix always names the well-known namespace.
    {"prefix of another namespace", "<dc:a xmlns:dc=\"http://p/\">1</dc:a>",
     "{http://p/}a simple 1\n"},
    {"prefix with two meanings",
     "<p:a xmlns:p=\"http://p1/\">1</p:a><p:a xmlns:p=\"http://p2/\">2</p:a>",
     "p:a simple 1\n{http://p2/}a simple 2\n"},
    {"another prefix of a known namespace",
     "<d:a xmlns:d=\"http://purl.org/dc/elements/1.1/\">1</d:a>", "dc:a simple 1\n"},
    {"no namespace", "<a>1</a>", "{}a raw <a>1</a>\n"},
};

TEST(PacketReader, Forms)
{
    for (const FormCase& row : kForms) {
        SCOPED_TRACE(row.about);
        EXPECT_EQ(DumpOf(InDescription(row.content)), row.want);
    }
}

struct AttributeCase {
    const char* attributes;  // of an rdf:Description
    const char* want;
};

constexpr AttributeCase kAttributes[] = {
    {"dc:format=\"a\" ex:b='2'", "dc:format simple a\nex:b simple 2\n"},
    {"rdf:type=\"http://t\"", "rdf:type uri http://t\n"},
    {"ex:a=\"1&#xA;2 3\n4\"", "ex:a simple 1\\n2 3 4\n"},
    // They name the description, or the language of something else.
    {"rdf:ID=\"i\" xml:lang=\"de\"", ""},
    {"rdf:bagID=\"i\"", "rdf:bagID raw rdf:bagID=\"i\"\n"},
    {"foo=\"1\"", "{}foo raw foo=\"1\"\n"},
    {"ex:a=\"1\" p:a=\"2\" xmlns:p=\"http://ex/\"", "ex:a simple 1\np:a raw p:a=\"2\"\n"},
};

TEST(PacketReader, PropertiesAsAttributes)
{
    for (const AttributeCase& row : kAttributes) {
        SCOPED_TRACE(row.attributes);
        EXPECT_EQ(DumpOf(InDescription("", row.attributes)), row.want);
    }
}

struct WholeCase {
    const char* about;
    std::string packet;
    const char* want;
};

TEST(PacketReader, Packets)
{
    const std::string dtd =
        "<!DOCTYPE x [<!ENTITY e \"text\"><!ENTITY p \"<ex:b>1</ex:b>\">"
        "<!ENTITY x SYSTEM \"file:///etc/passwd\">]>";
    const WholeCase rows[] = {
        {"empty", InRdf(""), ""},
        {"no RDF", "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"/>", ""},
        {"nothing in the wrapper", InWrapper(""), ""},
        {"no x:xmpmeta",
         "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
         "<rdf:Description xmlns:ex=\"http://ex/\" ex:a=\"1\"/></rdf:RDF>",
         "ex:a simple 1\n"},
        {"RDF as the default namespace",
         "<RDF xmlns=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" xmlns:e=\"http://ex/\">"
         "<Description><e:a><Bag><li>1</li></Bag></e:a></Description></RDF>",
         "e:a bag\ne:a[1] simple 1\n"},
        {"several descriptions",
         InRdf("<rdf:Description rdf:about=\"\" ex:a=\"1\"/>"
               "<rdf:Description rdf:about=\"\"><ex:b>2</ex:b></rdf:Description>"),
         "ex:a simple 1\nex:b simple 2\n"},
        {"descriptions of one named resource",
         InRdf("<rdf:Description rdf:about=\"u\" ex:a=\"1\"/><rdf:Description ex:b=\"2\"/>"
               "<rdf:Description about=\"u\" ex:c=\"3\"/>"),
         "ex:a simple 1\nex:b simple 2\nex:c simple 3\n"},
        {"description of another resource",
         InRdf("<rdf:Description rdf:about=\"u\" ex:a=\"1\"/><rdf:Description rdf:about=\"v\"/>"),
         "ex:a simple 1\nrdf:Description raw <rdf:Description rdf:about=\"v\"/>\n"},
        {"typed resource", InRdf("<ex:Kind ex:a=\"1\"/>"), "ex:Kind raw <ex:Kind ex:a=\"1\"/>\n"},
        {"property in two descriptions",
         InRdf("<rdf:Description ex:a=\"1\"/><rdf:Description ex:a=\"2\"/>"),
         "ex:a simple 1\nex:a raw ex:a=\"2\"\n"},
        {"zeros behind", InRdf("<rdf:Description ex:a=\"1\"/>") + std::string(5, '\0'),
         "ex:a simple 1\n"},
        {"XML declaration", "<?xml version=\"1.0\"?>" + InDescription("", "ex:a=\"1\""),
         "ex:a simple 1\n"},
        // Languages are not inherited: only an attribute of the property's own element counts.
        {"language around",
         InRdf("<rdf:Description xml:lang=\"de\"><ex:a>1</ex:a></rdf:Description>"),
         "ex:a simple 1\n"},
        {"entity", dtd + InDescription("<ex:a>a &e;</ex:a>"), "ex:a simple a text\n"},
        {"entity with elements", dtd + InDescription("&p;<ex:c>2</ex:c>"),
         "ex:b simple 1\nex:c simple 2\n"},

        {"other XML", "<svg/>", "error 7"},
        {"white space", " \n", "error 7"},
        {"nothing", "", "error 7"},
        {"zeros", std::string(4, '\0'), "error 7"},
        {"header only", "<?xpacket begin=\"\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>", "error 6"},
        {"no XML", "\xFF\xD8\xFF\xE0", "error 6"},
        {"broken UTF-8", InDescription("<ex:a>\xC3</ex:a>"), "error 6"},
        {"undeclared prefix", InDescription("<nope:a/>"), "error 6"},
        {"undeclared prefix of an attribute", InDescription("<ex:a nope:b=\"1\"/>"), "error 6"},
        {"prefix declared elsewhere", InDescription("<p:a xmlns:p=\"http://p/\"/><p:b/>"),
         "error 6"},
        {"two colons", InDescription("<ex:a:b/>"), "error 6"},
        {"attribute twice", InDescription("<ex:a ex:b=\"1\" ex:b=\"2\"/>"), "error 6"},
        {"undefined entity", InDescription("<ex:a>&nope;</ex:a>"), "error 6"},
        {"outer entity", dtd + InDescription("<ex:a>&x;</ex:a>"), "error 12"},
        {"unread DTD", "<!DOCTYPE x SYSTEM \"x.dtd\">" + InDescription("<ex:a>&y;</ex:a>"),
         "error 12"},
    };
    for (const WholeCase& row : rows) {
        SCOPED_TRACE(row.about);
        EXPECT_EQ(DumpOf(row.packet), row.want);
    }
}

TEST(PacketReader, MessagesTellThePlace)
{
    try {
        Parse(InRdf("\n<ex:a"));
        FAIL();
    } catch (const XMP_Error& error) {
        EXPECT_EQ(std::string(error.Text()).substr(0, 44),
                  "the packet cannot be read at line 2, column ");
    }
}

}  // namespace
}  // namespace kivxmp::testing
