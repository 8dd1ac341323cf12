// Packets that are broken, huge or meant to do harm.

#include <gtest/gtest.h>

#include "framework/kivxmp/src/Encoding.h"
#include "framework/kivxmp/tests/PartFamilies.h"
#include "framework/kivxmp/tests/XmpTestSupport.h"

#include <kivxmp/XMPAccess.h>

namespace kivxmp::testing {
namespace {

std::string Repeat(std::string_view text, std::size_t count)
{
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

const std::string kRich = InWrapper(
    "<!DOCTYPE x [<!ENTITY e 'text'>]>" +
        InDescription(
            "<!--c--><dc:title><rdf:Alt><rdf:li xml:lang='de'>&e;&lt;</rdf:li></rdf:Alt>"
            "</dc:title><ex:s ex:b='1' xmlns:p='http://p/' p:c='2'/><ex:l><rdf:Bag><rdf:li"
            " rdf:value='x' q:z='1'/><rdf:li><![CDATA[y]]></rdf:li></rdf:Bag></ex:l>"
            "<ex:r rdf:parseType='Literal'><a/></ex:r>",
            "ex:b='3'"),
    "\n  \n");

TEST(Robustness, CutAtEveryLength)
{
    for (const Encoding encoding : {Encoding::kUtf8, Encoding::kUtf16Le, Encoding::kUtf32Be}) {
        const std::string packet = EncodeFromUtf8(kRich, encoding);
        const std::size_t whole =
            EncodedBytes(kRich.substr(0, kRich.find("\n  \n")), encoding);  // behind the last tag
        for (std::size_t length = 0; length < packet.size(); ++length) {
            const std::string dump = DumpOf(std::string_view(packet).substr(0, length));
            if (length < whole) {
                EXPECT_EQ(dump.substr(0, 6), "error ") << length << ": " << dump;
            }
        }
        EXPECT_NE(DumpOf(packet).substr(0, 6), "error ");
    }
}

TEST(Robustness, EveryByteFlipped)
{
    for (std::size_t at = 0; at < kRich.size(); ++at) {
        for (const char mask : {'\x01', '\x20', '\x80'}) {
            std::string packet = kRich;
            packet[at] = static_cast<char>(packet[at] ^ mask);
            SCOPED_TRACE(at);
            std::unique_ptr<__XMPMeta__> meta;
            if (CodeThrownBy([&] { meta = Parse(packet); }) != kKivXmpOk) {
                continue;
            }
            EXPECT_EQ(meta->Serialize(), packet);
            if (CodeThrownBy([&] { meta->SetText("dc:format", "x"); }) == kKivXmpOk) {
                EXPECT_EQ(Compare(*Parse(meta->Serialize()), *meta), std::vector<Change>());
            }
        }
    }
}

TEST(Robustness, Nesting)
{
    // Three elements stand around a property, two more make one list.
    const auto lists = [](std::size_t count) {
        return InDescription(
            Repeat("<ex:a><rdf:Bag><rdf:li><rdf:Bag>", 1) + Repeat("<rdf:li><rdf:Bag>", count) +
            Repeat("</rdf:Bag></rdf:li>", count) + "</rdf:Bag></rdf:li></rdf:Bag></ex:a>");
    };
    EXPECT_NE(DumpOf(lists(124)).substr(0, 6), "error ");
    EXPECT_EQ(DumpOf(lists(125)), "error 10");
    EXPECT_EQ(DumpOf(lists(100000)), "error 10");
    // Raw RDF and what stands outside counts alike.
    EXPECT_EQ(DumpOf(InDescription("<ex:a rdf:parseType=\"Literal\">" + Repeat("<b>", 253) +
                                   Repeat("</b>", 253) + "</ex:a>")),
              "error 10");
    EXPECT_EQ(DumpOf(Repeat("<b>", 257) + Repeat("</b>", 257)), "error 10");

    const auto meta = Parse(lists(124));
    meta->SetText("ex:a/?q:z", "1");  // one more element around the list
    EXPECT_EQ(CodeThrownBy([&] { meta->Serialize(); }), kKivXmpOk);
    meta->SetText("ex:a[1]/?q:z", "1");
    EXPECT_EQ(CodeThrownBy([&] { meta->Serialize(); }), kKivXmpTooDeep);
}

TEST(Robustness, EntitiesThatMultiply)
{
    std::string dtd = "<!DOCTYPE x [<!ENTITY e0 \"0123456789\">";
    for (int i = 1; i <= 12; ++i) {
        dtd += "<!ENTITY e" + std::to_string(i) + " \"" +
               Repeat("&e" + std::to_string(i - 1) + ";", 10) + "\">";
    }
    dtd += "<!ENTITY loop \"&loop;\">]>";
    EXPECT_EQ(DumpOf(dtd + InDescription("<ex:a>&e12;</ex:a>")), "error 12");
    EXPECT_EQ(DumpOf(dtd + InDescription("", "ex:a=\"&e12;\"")), "error 12");
    EXPECT_EQ(DumpOf(dtd + InDescription("<ex:a>&loop;</ex:a>")), "error 12");
    EXPECT_NE(DumpOf(dtd + InDescription("<ex:a>&e2;</ex:a>")).substr(0, 6), "error ");
}

TEST(Robustness, EntitiesThatMultiplyWithinTheParsersLimit)
{
    // Long enough that the parser lets the entity be used some fifty times.
    std::string packet = "<!DOCTYPE x [<!ENTITY e \"" + std::string(4u << 20, 'x') + "\">]>" +
                         InDescription(Repeat("<ex:a>&e;</ex:a>", 60));
    EXPECT_EQ(DumpOf(packet), "error 12");
}

TEST(Robustness, SizeLimit)
{
    const std::string start = InDescription("");
    EXPECT_NE(DumpOf(start + std::string(kMaxPacketBytes - start.size(), ' ')).substr(0, 6),
              "error ");
    EXPECT_EQ(DumpOf(start + std::string(kMaxPacketBytes - start.size() + 1, ' ')), "error 9");
}

TEST(Robustness, NodeLimit)
{
    const auto list = [](std::size_t count) {
        return InDescription("<ex:a><rdf:Bag>" + Repeat("<rdf:li/>", count) + "</rdf:Bag></ex:a>");
    };
    const auto meta = Parse(list(kMaxNodes - 1));
    EXPECT_EQ(meta->Find("ex:a")->Children().size(), kMaxNodes - 1);
    EXPECT_EQ(CodeThrownBy([&] { Parse(list(kMaxNodes)); }), kKivXmpTooManyNodes);
    EXPECT_EQ(CodeThrownBy([&] { meta->SetText("ex:b", "1"); }), kKivXmpTooManyNodes);
    meta->Remove("ex:a");
    meta->SetText("ex:b", "1");
    EXPECT_EQ(CodeThrownBy([&] {
                  meta->SetList("ex:b", NodeForm::kBag, std::vector<std::string>(kMaxNodes));
              }),
              kKivXmpTooManyNodes);
}

TEST(Robustness, ManyPartsOfEveryKind)
{
    for (const PartFamily& family : kPartFamilies) {
        SCOPED_TRACE(family.about);
        ReadChangeAndCompare(PacketOfParts(family, 2000));
    }
}

TEST(Robustness, ManyEditsOfOneObject)
{
    EXPECT_EQ(EditEveryItem(5000), 5000U);
    EXPECT_EQ(SetManyProperties(1500), 1500U);
}

}  // namespace
}  // namespace kivxmp::testing
