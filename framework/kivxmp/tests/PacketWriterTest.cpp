#include <gtest/gtest.h>

#include <functional>

#include "framework/kivxmp/tests/XmpTestSupport.h"

#include <kivxmp/XMPAccess.h>

namespace kivxmp::testing {
namespace {

const std::string kHeader =
    "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
    " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n";
const std::string kFooter = " </rdf:RDF>\n</x:xmpmeta>";
const std::string kDc = "xmlns:dc=\"http://purl.org/dc/elements/1.1/\"";

std::string Pretty(std::string_view content)
{
    return kHeader + std::string(content) + kFooter;
}

/// Serialized after the edit, and checked to read back as the object it was written from.
std::string After(std::string_view packet, const std::function<void(__XMPMeta__&)>& edit,
                  const SerializeOptions& options = {})
{
    const auto meta = Parse(packet);
    edit(*meta);
    const std::string written = meta->Serialize(options);
    EXPECT_EQ(Compare(*meta, *Parse(written)), std::vector<Change>()) << written;
    EXPECT_EQ(Compare(*Parse(written), *meta), std::vector<Change>()) << written;
    return written;
}

struct SpliceCase {
    const char* about;
    std::string packet;
    std::function<void(__XMPMeta__&)> edit;
    std::string want;
};

TEST(PacketWriter, ChangesWhatWasChanged)
{
    using M = __XMPMeta__&;
    const SpliceCase rows[] = {
        {"an element",
         Pretty("  <rdf:Description " + kDc +
                ">\n   <!-- a -->\n"
                "   <dc:format >a</dc:format>\n   <dc:source>s</dc:source >\n"
                "  </rdf:Description>\n"),
         [](M m) { m.SetText("dc:format", "<&>\r"); },
         Pretty("  <rdf:Description " + kDc +
                ">\n   <!-- a -->\n"
                "   <dc:format>&lt;&amp;&gt;&#xD;</dc:format>\n   <dc:source>s</dc:source >\n"
                "  </rdf:Description>\n")},
        {"an attribute",
         Pretty("  <rdf:Description\n    dc:format='a'\n    " + kDc + "\n    dc:source=\"s\" />\n"),
         [](M m) { m.SetText("dc:format", "b"); },
         Pretty("  <rdf:Description\n    " + kDc +
                "\n    dc:source=\"s\" >\n"
                "   <dc:format>b</dc:format>\n  </rdf:Description>\n")},
        {"the last attribute",
         Pretty("  <rdf:Description " + kDc + " dc:format='a'></rdf:Description>\n"),
         [](M m) { m.SetText("dc:format", "b"); },
         Pretty("  <rdf:Description " + kDc +
                ">\n   <dc:format>b</dc:format>\n"
                "  </rdf:Description>\n")},
        {"a removed attribute",
         Pretty("  <rdf:Description " + kDc + " dc:format='a' dc:source='b'/>\n"),
         [](M m) { m.Remove("dc:format"); },
         Pretty("  <rdf:Description " + kDc + " dc:source='b'/>\n")},
        {"a removed element",
         Pretty("  <rdf:Description " + kDc +
                ">\n   <dc:format>a</dc:format>\n"
                "   <dc:source>b</dc:source>\n  </rdf:Description>\n"),
         [](M m) { m.Remove("dc:source"); },
         Pretty("  <rdf:Description " + kDc +
                ">\n   <dc:format>a</dc:format>\n"
                "  </rdf:Description>\n")},
        {"a removed element between others on one line",
         InDescription("<ex:a>1</ex:a><ex:b>2</ex:b><ex:c>3</ex:c>"), [](M m) { m.Remove("ex:b"); },
         InDescription("<ex:a>1</ex:a><ex:c>3</ex:c>")},
        {"everything removed", InDescription("<ex:a>1</ex:a>", "ex:b=\"2\""),
         [](M m) {
             m.Remove("ex:a");
             m.Remove("ex:b");
         },
         InDescription("")},
        {"a new property",
         Pretty("  <rdf:Description " + kDc +
                ">\n   <dc:format>a</dc:format>\n"
                "  </rdf:Description>\n"),
         [](M m) { m.SetText("dc:source", "b"); },
         Pretty("  <rdf:Description " + kDc +
                ">\n   <dc:format>a</dc:format>\n"
                "   <dc:source>b</dc:source>\n  </rdf:Description>\n")},
        {"a new property in a packet without line ends", InDescription("<ex:a>1</ex:a>"),
         [](M m) {
             m.SetList("dc:subject", NodeForm::kBag, std::vector<std::string>{"x", "y"});
         },
         InDescription("<ex:a>1</ex:a><dc:subject><rdf:Bag><rdf:li>x</rdf:li><rdf:li>y</rdf:li>"
                       "</rdf:Bag></dc:subject>")},
        {"a new namespace", Pretty("  <rdf:Description rdf:about=\"\" " + kDc + "/>\n"),
         [](M m) { m.SetText("xmp:Label", "b"); },
         Pretty("  <rdf:Description rdf:about=\"\" " + kDc +
                " xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\">\n   <xmp:Label>b</xmp:Label>\n"
                "  </rdf:Description>\n")},
        {"a new namespace in a column",
         Pretty("  <rdf:Description rdf:about=\"\"\n    " + kDc +
                "\n  >\n   <dc:format>a</dc:format>\n"
                "  </rdf:Description>\n"),
         [](M m) { m.SetText("xmp:Label", "b"); },
         Pretty("  <rdf:Description rdf:about=\"\"\n    " + kDc +
                "\n    xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\"\n  >\n"
                "   <dc:format>a</dc:format>\n   <xmp:Label>b</xmp:Label>\n"
                "  </rdf:Description>\n")},
        {"another prefix for the namespace",
         Pretty("  <rdf:Description xmlns:d=\"http://purl.org/dc/elements/1.1/\"/>\n"),
         [](M m) { m.SetText("dc:format", "b"); },
         Pretty("  <rdf:Description xmlns:d=\"http://purl.org/dc/elements/1.1/\">\n"
                "   <d:format>b</d:format>\n  </rdf:Description>\n")},
        {"a prefix that stands for something else",
         Pretty("  <rdf:Description xmlns:dc=\"http://other/\" dc:a=\"1\"/>\n"),
         [](M m) { m.SetText("dc:format", "b"); },
         Pretty("  <rdf:Description xmlns:dc=\"http://other/\" dc:a=\"1\""
                " xmlns:dc_1=\"http://purl.org/dc/elements/1.1/\">\n"
                "   <dc_1:format>b</dc_1:format>\n  </rdf:Description>\n")},
        {"the default namespace is no prefix",
         Pretty("  <rdf:Description xmlns=\"http://ex/\">\n   <a>1</a>\n  </rdf:Description>\n"),
         [](M m) { m.SetText("{http://ex/}a", "2"); },
         Pretty("  <rdf:Description xmlns=\"http://ex/\" xmlns:ns=\"http://ex/\">\n"
                "   <ns:a>2</ns:a>\n  </rdf:Description>\n")},
        {"a declared prefix that no name can begin with",
         Pretty("  <rdf:Description xmlns:.a=\"http://purl.org/dc/elements/1.1/\"/>\n"),
         [](M m) {
             m.SetText("dc:format", "b");
             m.SetText(".a:source", "c");
         },
         Pretty("  <rdf:Description xmlns:.a=\"http://purl.org/dc/elements/1.1/\" " + kDc +
                ">\n   <dc:format>b</dc:format>\n   <dc:source>c</dc:source>\n"
                "  </rdf:Description>\n")},
        {"a declaration in the changed element itself",
         Pretty("  <rdf:Description>\n   <p:a xmlns:p=\"http://p/\">1</p:a>\n"
                "  </rdf:Description>\n"),
         [](M m) { m.SetText("p:a", "2"); },
         Pretty("  <rdf:Description xmlns:p=\"http://p/\">\n   <p:a>2</p:a>\n"
                "  </rdf:Description>\n")},
        {"RDF without a prefix",
         "<RDF xmlns=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><Description/></RDF>",
         [](M m) { m.SetUri("xmp:BaseURL", "u"); },
         "<RDF xmlns=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><Description"
         " xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\""
         " xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
         "<xmp:BaseURL rdf:resource=\"u\"/></Description></RDF>"},
        {"the description of the same namespace",
         Pretty("  <rdf:Description xmlns:ex=\"http://ex/\"><ex:a>1</ex:a></rdf:Description>\n"
                "  <rdf:Description " +
                kDc +
                "/>\n"
                "  <rdf:Description xmlns:q=\"http://q/\" q:a=\"1\"/>\n"),
         [](M m) {
             m.SetText("q:b", "2");
             m.SetText("dc:format", "3");
             m.SetText("{http://new/}c", "4");
         },
         Pretty("  <rdf:Description xmlns:ex=\"http://ex/\" xmlns:ns=\"http://new/\">"
                "<ex:a>1</ex:a><ns:c>4</ns:c></rdf:Description>\n"
                "  <rdf:Description " +
                kDc +
                ">\n   <dc:format>3</dc:format>\n"
                "  </rdf:Description>\n"
                "  <rdf:Description xmlns:q=\"http://q/\" q:a=\"1\">\n   <q:b>2</q:b>\n"
                "  </rdf:Description>\n")},
        {"no description", Pretty(""), [](M m) { m.SetText("dc:format", "b"); },
         Pretty("  <rdf:Description rdf:about=\"\"\n     " + kDc +
                ">\n   <dc:format>b</dc:format>\n  </rdf:Description>\n")},
        {"an empty rdf:RDF", "<r:RDF xmlns:r=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"/>",
         [](M m) { m.SetText("dc:format", "b"); },
         "<r:RDF xmlns:r=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
         " <r:Description r:about=\"\"\n    " +
             kDc +
             ">\n  <dc:format>b</dc:format>\n"
             " </r:Description>\n</r:RDF>"},
        {"no rdf:RDF", "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"></x:xmpmeta>",
         [](M m) { m.SetText("dc:format", "b"); },
         "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
         " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
         "  <rdf:Description rdf:about=\"\"\n     " +
             kDc +
             ">\n   <dc:format>b</dc:format>\n"
             "  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>"},
        {"a description of another resource stays what it is",
         InRdf("<rdf:Description rdf:about=\"u\" ex:a=\"1\"/><rdf:Description rdf:about=\"v\"/>"),
         [](M m) { m.Remove("ex:a"); },
         InRdf("<rdf:Description rdf:about=\"u\"/><rdf:Description rdf:about=\"v\"/>")},
        // The first of a name counts, so what takes its place has to stay the first.
        {"a doubled property", InDescription("<ex:a>2</ex:a><ex:a>3</ex:a>", "ex:a=\"1\""),
         [](M m) { m.SetText("ex:a", "4"); },
         InDescription("<ex:a>4</ex:a><ex:a>2</ex:a><ex:a>3</ex:a>")},
        {"a doubled property removed",
         InDescription("<ex:a>2</ex:a><ex:b/><ex:a>3</ex:a>", "ex:a=\"1\""),
         [](M m) { m.Remove("ex:a"); }, InDescription("<ex:b/>")},
        {"line ends of two characters",
         "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\r\n"
         "\t<rdf:Description xmlns:ex=\"http://ex/\">\r\n\t\t<ex:a>1</ex:a>\r\n"
         "\t</rdf:Description>\r\n</rdf:RDF>",
         [](M m) { m.SetText("ex:b/ex:c", "2"); },
         "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\r\n"
         "\t<rdf:Description xmlns:ex=\"http://ex/\">\r\n\t\t<ex:a>1</ex:a>\r\n"
         "\t\t<ex:b rdf:parseType=\"Resource\">\r\n\t\t\t<ex:c>2</ex:c>\r\n\t\t</ex:b>\r\n"
         "\t</rdf:Description>\r\n</rdf:RDF>"},
    };
    for (const SpliceCase& row : rows) {
        SCOPED_TRACE(row.about);
        EXPECT_EQ(After(row.packet, row.edit), row.want);
    }
}

// Written as an element, the first one would come behind the second. No XML with namespaces has two
// such attributes, but what is there is shown, kept, and can go.
TEST(PacketWriter, APropertyTwiceAsAnAttributeCanOnlyBeRemoved)
{
    const std::string packet = InDescription("", "ex:a=\"1\" xmlns:p=\"http://ex/\" p:a=\"2\"");
    const auto meta = Parse(packet);
    EXPECT_EQ(CodeThrownBy([&] { meta->SetText("ex:a", "3"); }), kKivXmpNotEditable);
    EXPECT_EQ(CodeThrownBy([&] { meta->SetText("ex:a[@de]", "3"); }), kKivXmpNotEditable);
    EXPECT_EQ(meta->Serialize(), packet);
    EXPECT_EQ(After(packet, [](__XMPMeta__& one) { one.SetText("ex:b", "3"); }),
              InDescription("<ex:b>3</ex:b>", "ex:a=\"1\" xmlns:p=\"http://ex/\" p:a=\"2\""));
    EXPECT_EQ(After(packet, [](__XMPMeta__& one) { one.Remove("ex:a"); }),
              InDescription("", "xmlns:p=\"http://ex/\""));
    // In two descriptions they are two attributes of two elements.
    EXPECT_EQ(After(InRdf("<rdf:Description ex:a=\"1\"/><rdf:Description ex:a=\"2\"/>"),
                    [](__XMPMeta__& one) { one.SetText("ex:a", "3"); }),
              InRdf("<rdf:Description><ex:a>3</ex:a></rdf:Description><rdf:Description"
                    " ex:a=\"2\"/>"));
}

TEST(PacketWriter, SpellsEveryForm)
{
    // Each property is touched by setting the text T somewhere in it.
    struct Row {
        const char* about;
        const char* content;
        const char* path;
        const char* want;
    };
    constexpr Row kRows[] = {
        {"a structure", "<ex:a ex:b=\"1\"/>", "ex:a/ex:t",
         "<ex:a rdf:parseType=\"Resource\"><ex:b>1</ex:b><ex:t>T</ex:t></ex:a>"},
        {"a typed structure", "<ex:a><q:K ex:b=\"1\"/></ex:a>", "ex:a/ex:t",
         "<ex:a rdf:parseType=\"Resource\"><rdf:value rdf:parseType=\"Resource\"><ex:b>1</ex:b>"
         "<ex:t>T</ex:t></rdf:value><rdf:type rdf:resource=\"http://q/K\"/></ex:a>"},
        {"a list", "<ex:a><rdf:Seq><rdf:li rdf:resource=\"&quot;&#9;\"/></rdf:Seq></ex:a>",
         "ex:a[2]",
         "<ex:a><rdf:Seq><rdf:li rdf:resource=\"&quot;&#x9;\"/><rdf:li>T</rdf:li></rdf:Seq>"
         "</ex:a>"},
        {"an empty list", "<ex:a><rdf:Bag/></ex:a>", "ex:a[1]",
         "<ex:a><rdf:Bag><rdf:li>T</rdf:li></rdf:Bag></ex:a>"},
        {"lists in lists", "<ex:a><rdf:Seq><rdf:li><rdf:Bag/></rdf:li></rdf:Seq></ex:a>", "ex:a[2]",
         "<ex:a><rdf:Seq><rdf:li><rdf:Bag/></rdf:li><rdf:li>T</rdf:li></rdf:Seq></ex:a>"},
        {"languages", "<ex:a><rdf:Alt><rdf:li xml:lang=\"de\">D</rdf:li></rdf:Alt></ex:a>",
         "ex:a[@x-default]",
         "<ex:a><rdf:Alt><rdf:li xml:lang=\"x-default\">T</rdf:li><rdf:li xml:lang=\"de\">D"
         "</rdf:li></rdf:Alt></ex:a>"},
        {"a first language", "<ex:a/>", "ex:a[@fr]",
         "<ex:a><rdf:Alt><rdf:li xml:lang=\"fr\">T</rdf:li></rdf:Alt></ex:a>"},
        {"a second language", "<ex:a>1</ex:a>", "ex:a[@fr]",
         "<ex:a><rdf:Alt><rdf:li xml:lang=\"x-default\">1</rdf:li><rdf:li xml:lang=\"fr\">T"
         "</rdf:li></rdf:Alt></ex:a>"},
        {"a qualified text",
         "<ex:a xml:lang=\"de\" rdf:parseType=\"Resource\">"
         "<rdf:value>v</rdf:value><q:b>1</q:b></ex:a>",
         "ex:a/?ex:t",
         "<ex:a xml:lang=\"de\" rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><q:b>1</q:b>"
         "<ex:t>T</ex:t></ex:a>"},
        {"a qualified URI", "<ex:a rdf:resource=\"u\"/>", "ex:a/?ex:t",
         "<ex:a rdf:parseType=\"Resource\"><rdf:value rdf:resource=\"u\"/><ex:t>T</ex:t></ex:a>"},
        {"a qualified list", "<ex:a><rdf:Bag/></ex:a>", "ex:a/?ex:t",
         "<ex:a rdf:parseType=\"Resource\"><rdf:value><rdf:Bag/></rdf:value><ex:t>T</ex:t>"
         "</ex:a>"},
        {"a language as qualifier", "<ex:a rdf:resource=\"u\"/>", "ex:a/?xml:lang",
         "<ex:a xml:lang=\"T\" rdf:resource=\"u\"/>"},
        {"a data type", "<ex:a rdf:datatype=\"i\">5</ex:a>", "ex:a/?ex:t",
         "<ex:a rdf:parseType=\"Resource\"><rdf:value rdf:datatype=\"i\">5</rdf:value>"
         "<ex:t>T</ex:t></ex:a>"},
        {"a qualifier of a qualifier", "<ex:a rdf:value=\"v\" q:b=\"1\"/>", "ex:a/?q:b/?ex:t",
         "<ex:a rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><q:b"
         " rdf:parseType=\"Resource\"><rdf:value>1</rdf:value><ex:t>T</ex:t></q:b></ex:a>"},
        {"a raw item", "<ex:a><rdf:Bag><rdf:li rdf:ID=\"i\" /></rdf:Bag></ex:a>", "ex:a[2]",
         "<ex:a><rdf:Bag><rdf:li rdf:ID=\"i\" /><rdf:li>T</rdf:li></rdf:Bag></ex:a>"},
        {"a doubled field",
         "<ex:a rdf:parseType=\"Resource\"><ex:b>1</ex:b><ex:b >2</ex:b>"
         "</ex:a>",
         "ex:a/ex:b", "<ex:a rdf:parseType=\"Resource\"><ex:b>T</ex:b><ex:b >2</ex:b></ex:a>"},
        // What surrounded the raw part declared what it needs.
        {"a raw part with prefixes from around",
         "<ex:a xmlns:p=\"http://p/\"><rdf:Description xmlns:ex=\"http://e2/\" xmlns=\"http://d/\">"
         "<ex:b rdf:parseType=\"Literal\"><p:c ex:d=\"1\"/><e/><f xmlns:g=\"http://g/\" g:h=\"\"/>"
         "</ex:b></rdf:Description></ex:a>",
         "ex:a/q:t",
         "<ex:a rdf:parseType=\"Resource\"><ex:b xmlns=\"http://d/\" xmlns:ex=\"http://e2/\""
         " xmlns:p=\"http://p/\" rdf:parseType=\"Literal\"><p:c ex:d=\"1\"/><e/>"
         "<f xmlns:g=\"http://g/\" g:h=\"\"/></ex:b><q:t>T</q:t></ex:a>"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.about);
        const auto meta = Parse(InDescription(row.content));
        meta->SetText(row.path, "T");
        const std::string written = meta->Serialize();
        EXPECT_EQ(written, InDescription(row.want));
        EXPECT_EQ(Parse(written)->Serialize(), written);
    }
}

TEST(PacketWriter, LayoutFollowsThePacket)
{
    const auto meta = __XMPMeta__::Create();
    meta->SetText("dc:format", "image/jpeg");
    meta->SetText("dc:title[@de]", "Titel");
    meta->SetText("Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrCity", "Wien");
    SerializeOptions options;
    options.wrapNew = false;
    EXPECT_EQ(meta->Serialize(options),
              "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
              " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
              "  <rdf:Description rdf:about=\"\"\n"
              "     xmlns:dc=\"http://purl.org/dc/elements/1.1/\"\n"
              "     xmlns:Iptc4xmpCore=\"http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/\">\n"
              "   <dc:format>image/jpeg</dc:format>\n"
              "   <dc:title>\n"
              "    <rdf:Alt>\n"
              "     <rdf:li xml:lang=\"de\">Titel</rdf:li>\n"
              "    </rdf:Alt>\n"
              "   </dc:title>\n"
              "   <Iptc4xmpCore:CreatorContactInfo rdf:parseType=\"Resource\">\n"
              "    <Iptc4xmpCore:CiAdrCity>Wien</Iptc4xmpCore:CiAdrCity>\n"
              "   </Iptc4xmpCore:CreatorContactInfo>\n"
              "  </rdf:Description>\n"
              " </rdf:RDF>\n"
              "</x:xmpmeta>\n");
}

TEST(PacketWriter, UnchangedIsByteForByte)
{
    const std::string rows[] = {
        InDescription("<ex:a >1</ex:a ><ex:a>2</ex:a>", "ex:b = '3'"),
        "\n <!--x-->" + InDescription("") + "<!--y-->\n\n",
        std::string(kMark) + "<?xml version='1.0'?>\n" + InWrapper(InDescription("<ex:a/>")),
        InWrapper(InDescription("<ex:a rdf:parseType=\"Literal\"><b/></ex:a>"), "   \n\t \n"),
        InWrapper(InDescription("")) + std::string(7, '\0'),
    };
    for (const std::string& packet : rows) {
        SCOPED_TRACE(packet);
        const auto meta = Parse(packet);
        EXPECT_EQ(meta->Serialize(), packet);
        EXPECT_FALSE(meta->IsChanged());
        EXPECT_EQ(meta->Clone()->Serialize(), packet);
    }
}

TEST(PacketWriter, UndoneChangesGiveTheOldBytes)
{
    const std::string packet = InWrapper(
        InDescription("<dc:title><rdf:Alt><rdf:li xml:lang='de'>t</rdf:li></rdf:Alt></dc:title>"
                      "<ex:s ex:b='1'/><dc:subject><rdf:Bag><rdf:li q:z='1' rdf:value='x'/>"
                      "<rdf:li>y</rdf:li></rdf:Bag></dc:subject>",
                      "ex:b = '3'"));
    const auto before = Parse(packet);
    const auto meta = before->Clone();
    meta->SetText("dc:title[@DE]", "u");
    meta->SetText("dc:title[@fr]", "v");
    meta->SetText("ex:s/ex:b", "2");
    meta->SetText("ex:s/ex:c", "2");
    meta->SetText("ex:new", "2");
    meta->Remove("ex:b");
    meta->SetList("dc:subject", NodeForm::kSeq, std::vector<std::string>{"y", "z", "x"});
    EXPECT_TRUE(meta->IsChanged());
    EXPECT_NE(meta->Serialize(), packet);
    meta->SetText("dc:title[@de]", "t");
    meta->Remove("dc:title[@fr]");
    meta->SetText("ex:s/ex:b", "1");
    meta->Remove("ex:s/ex:c");
    meta->Remove("ex:new");
    meta->SetText("ex:b", "3");
    meta->SetList("dc:subject", NodeForm::kBag, std::vector<std::string>{"x", "y"});
    EXPECT_FALSE(meta->IsChanged());
    EXPECT_EQ(meta->Serialize(), packet);

    meta->Remove("dc:subject");
    meta->SetCopy("dc:subject", *before->Find("dc:subject"));
    EXPECT_EQ(meta->Serialize(), packet);
}

struct PaddingCase {
    const char* about;
    std::size_t padding;   // in the packet that is read
    std::size_t textSize;  // of the property that is set; it was 10
    SerializeOptions options;
    std::ptrdiff_t wantGrowth;  // of the packet
};

TEST(PacketWriter, Padding)
{
    const auto options = [](std::size_t maxBytes, std::size_t padding = kDefaultPadding) {
        SerializeOptions made;
        made.maxBytes = maxBytes;
        made.paddingBytes = padding;
        return made;
    };
    const std::string attribute = "ex:a=\"1\"";
    const std::size_t base =
        InWrapper(InDescription("<ex:a>0123456789</ex:a>"), std::string(100, ' ')).size();
    const PaddingCase rows[] = {
        {"fits", 100, 60, {}, 0},
        {"fits to the last byte", 100, 110, {}, 0},
        {"outgrown by one", 100, 111, {}, 2048 + 1},
        {"outgrown, another padding", 100, 111, options(SIZE_MAX, 10), 10 + 1},
        {"shorter", 100, 4, {}, 0},
        {"shorter, no padding before", 0, 4, {}, 0},
        {"longer, no padding before", 0, 11, {}, 2048 + 1},
        {"outgrown in a place of that size", 100, 111, options(base + 1), 1},
        {"outgrown in a place with some room", 100, 111, options(base + 51), 51},
        {"outgrown in a place too small", 100, 211, options(base), 101},
        {"fits, but the place is smaller than the packet was", 100, 10, options(base - 40), 0},
        {"changed, and the place is smaller than the packet was", 100, 11, options(base - 40), -40},
    };
    for (const PaddingCase& row : rows) {
        SCOPED_TRACE(row.about);
        std::string padding(row.padding, ' ');
        const std::string packet = InWrapper(InDescription("<ex:a>0123456789</ex:a>"), padding);
        const std::string text = row.textSize == 10 ? "0123456789" : std::string(row.textSize, 'x');
        const std::string written = After(
            packet, [&](__XMPMeta__& meta) { meta.SetText("ex:a", text); }, row.options);
        EXPECT_EQ(static_cast<std::ptrdiff_t>(written.size()) -
                      static_cast<std::ptrdiff_t>(packet.size()),
                  row.wantGrowth);
        EXPECT_EQ(written.substr(written.size() - 19), "<?xpacket end=\"w\"?>");
    }
}

TEST(PacketWriter, PaddingKeepsItsLines)
{
    const std::string lines = "\n" + std::string(30, ' ') + "\n" + std::string(30, ' ') + "\n";
    const std::string packet = InWrapper(InDescription("<ex:a>1</ex:a>"), lines);
    EXPECT_EQ(After(packet, [](__XMPMeta__& meta) { meta.SetText("ex:a", "12345"); }),
              InWrapper(InDescription("<ex:a>12345</ex:a>"),
                        "\n" + std::string(26, ' ') + "\n" + std::string(30, ' ') + "\n"));
    EXPECT_EQ(After(packet, [](__XMPMeta__& meta) { meta.SetText("ex:a", ""); }),
              InWrapper(InDescription("<ex:a/>"), "\n      " + lines));
}

TEST(PacketWriter, NewPacketsHaveAWrapper)
{
    const auto meta = __XMPMeta__::Create();
    EXPECT_FALSE(meta->IsChanged());
    const std::string empty = meta->Serialize();
    EXPECT_EQ(empty.substr(0, 54),
              "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n");
    EXPECT_EQ(DumpOf(empty), "");
    meta->SetText("dc:format", "b");
    SerializeOptions options;
    options.paddingBytes = 0;
    const std::size_t bare = meta->Serialize(options).size();
    EXPECT_EQ(meta->Serialize().size(), bare + 2048);
    options.paddingBytes = 2048;
    options.maxBytes = bare + 100;
    EXPECT_EQ(meta->Serialize(options).size(), bare + 100);
    options.maxBytes = bare - 1;
    EXPECT_EQ(meta->Serialize(options).size(), bare);
}

TEST(PacketWriter, PacketsWithoutWrapperStaySo)
{
    const std::string packet = InDescription("<ex:a>1</ex:a>") + "\n";
    EXPECT_EQ(After(packet, [](__XMPMeta__& meta) { meta.SetText("ex:a", "12"); }),
              InDescription("<ex:a>12</ex:a>") + "\n");
    // Half a wrapper is none.
    const std::string half = "<?xpacket begin=\"\" id=\"\"?>" + packet;
    EXPECT_EQ(After(half, [](__XMPMeta__& meta) { meta.SetText("ex:a", "12"); }),
              "<?xpacket begin=\"\" id=\"\"?>" + InDescription("<ex:a>12</ex:a>") + "\n");
}

TEST(PacketWriter, ReadOnlyPacketsAreWritten)
{
    std::string packet = InWrapper(InDescription("<ex:a>1</ex:a>"), "    ");
    packet.replace(packet.size() - 4, 1, "r");
    std::string want = InWrapper(InDescription("<ex:a>12</ex:a>"), "   ");
    want.replace(want.size() - 4, 1, "r");
    EXPECT_EQ(After(packet, [](__XMPMeta__& meta) { meta.SetText("ex:a", "12"); }), want);
}

TEST(PacketWriter, EmptyWrapperIsFilled)
{
    const std::string written = After(InWrapper("", std::string(400, ' ')),
                                      [](__XMPMeta__& meta) { meta.SetText("dc:format", "b"); });
    EXPECT_EQ(written.size(), InWrapper("", std::string(400, ' ')).size());
    EXPECT_EQ(DumpOf(written), "dc:format simple b\n");
}

const std::string kDtd =
    "<!DOCTYPE x [<!ENTITY e \"text\"><!ENTITY p \"<ex:b>1</ex:b>\">"
    "<!ENTITY d \"<rdf:Description ex:z='1'/>\">]>";

TEST(PacketWriter, EntitiesOfOthersStay)
{
    EXPECT_EQ(After(kDtd + InDescription("<ex:a>&e;</ex:a>&p;<ex:c>2</ex:c>"),
                    [](__XMPMeta__& meta) { meta.SetText("ex:c", "3"); }),
              kDtd + InDescription("<ex:a>&e;</ex:a>&p;<ex:c>3</ex:c>"));
    EXPECT_EQ(After(kDtd + InDescription("<ex:a>&e;</ex:a>"),
                    [](__XMPMeta__& meta) { meta.SetText("ex:a", "text!"); }),
              kDtd + InDescription("<ex:a>text!</ex:a>"));
    EXPECT_EQ(After(kDtd + InRdf("&d;"), [](__XMPMeta__& meta) { meta.SetText("ex:y", "1"); }),
              kDtd + InRdf("&d;<rdf:Description rdf:about=\"\"><ex:y>1</ex:y></rdf:Description>"));
}

TEST(PacketWriter, WhatEntitiesBuildCannotBeChanged)
{
    const auto meta = Parse(kDtd + InDescription("&p;<ex:s rdf:parseType=\"Resource\">&p;</ex:s>"));
    const std::string before = Dump(*meta);
    EXPECT_EQ(CodeThrownBy([&] { meta->SetText("ex:b", "2"); }), kKivXmpNotEditable);
    EXPECT_EQ(CodeThrownBy([&] { meta->Remove("ex:b"); }), kKivXmpNotEditable);
    EXPECT_EQ(CodeThrownBy([&] { meta->SetText("ex:s/ex:b", "2"); }), kKivXmpNotEditable);
    EXPECT_EQ(Dump(*meta), before);
    EXPECT_FALSE(meta->IsChanged());
}

}  // namespace
}  // namespace kivxmp::testing
