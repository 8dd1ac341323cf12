#include <gtest/gtest.h>

#include "framework/kivxmp/tests/RdfForms.h"
#include "framework/kivxmp/tests/XmpTestSupport.h"

namespace kivxmp::testing {
namespace {

TEST(PacketReader, Forms)
{
    for (const FormCase& row : kRdfForms) {
        SCOPED_TRACE(row.about);
        EXPECT_EQ(DumpOf(InDescription(row.content)), row.want);
    }
}

TEST(PacketReader, PropertiesAsAttributes)
{
    for (const AttributeCase& row : kRdfAttributes) {
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
