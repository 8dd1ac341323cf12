// Packets that are broken, huge or meant to do harm.

#include <gtest/gtest.h>

#include <chrono>

#include "framework/kivxmp/src/Encoding.h"
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

/// Seconds that `function` takes, the better of two.
template <class Function>
double Seconds(const Function& function)
{
    double best = 1e9;
    for (int i = 0; i < 2; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        function();
        best = std::min(
            best, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    return best;
}

/// Fails if eight times the work takes much more than eight times as long.
template <class Work>
void ExpectLinear(std::size_t count, const Work& work)
{
    const double once = Seconds([&] { work(count); });
    const double eightfold = Seconds([&] { work(8 * count); });
    EXPECT_LT(eightfold, 8 * 4 * once + 0.05);
}

TEST(Robustness, CostIsLinear)
{
    struct Row {
        const char* about;
        std::string_view before;
        std::string_view part;
        std::string_view after;
        bool numbered;  // '#' in `part` is replaced by a number
    };
    constexpr Row kRows[] = {
        {"items", "<ex:a><rdf:Bag>", "<rdf:li>text</rdf:li>", "</rdf:Bag></ex:a>", false},
        {"languages", "<ex:a><rdf:Alt>", "<rdf:li xml:lang='l#'>t</rdf:li>", "</rdf:Alt></ex:a>",
         true},
        {"properties", "", "<ex:a#>text</ex:a#>", "", true},
        {"doubled properties", "", "<ex:a>text</ex:a>", "", false},
        {"fields", "<ex:a rdf:parseType='Resource'>", "<ex:a#>text</ex:a#>", "</ex:a>", true},
        {"doubled fields", "<ex:a rdf:parseType='Resource'>", "<ex:b>text</ex:b>", "</ex:a>",
         false},
        {"qualifiers", "<ex:a rdf:parseType='Resource'><rdf:value/>", "<ex:a#>text</ex:a#>",
         "</ex:a>", true},
        {"declarations", "", "<p:a# xmlns:p='http://p/#'>text</p:a#>", "", true},
        {"raw items", "<ex:a><rdf:Bag>", "<rdf:li rdf:ID='a'>text</rdf:li>", "</rdf:Bag></ex:a>",
         false},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.about);
        ExpectLinear(1500, [&row](std::size_t count) {
            std::string content(row.before);
            for (std::size_t i = 0; i < count; ++i) {
                std::string part(row.part);
                for (std::size_t at = part.find('#'); at != std::string::npos;
                     at = part.find('#', at)) {
                    part.replace(at, 1, std::to_string(i));
                }
                content += part;
            }
            content += row.after;
            const auto meta = Parse(InDescription(content, "ex:z=\"1\""));
            Dump(*meta);
            meta->SetText("ex:z", "2");
            meta->Ensure("ex:n", NodeForm::kBag);
            if (const Node* const list = meta->Find("ex:a"); list != nullptr && list->IsArray()) {
                meta->MoveItem("ex:a", 1, 2);
            }
            Compare(*meta, *Parse(meta->Serialize()));
        });
    }
}

TEST(Robustness, ManyEditsAreLinear)
{
    const auto packet = [](std::size_t count) {
        return InDescription("<ex:a><rdf:Bag>" + Repeat("<rdf:li>text</rdf:li>", count) +
                             "</rdf:Bag></ex:a>");
    };
    ExpectLinear(5000, [&packet](std::size_t count) {
        const auto meta = Parse(packet(count));
        for (std::size_t i = 1; i <= count; ++i) {
            meta->SetText("ex:a[" + std::to_string(i) + "]", "other");
        }
        meta->SetList("ex:a", NodeForm::kSeq, std::vector<std::string>(count, "other"));
        EXPECT_EQ(Parse(meta->Serialize())->Find("ex:a")->Children().size(), count);
    });
    ExpectLinear(1500, [](std::size_t count) {
        const auto meta = __XMPMeta__::Create();
        for (std::size_t i = 0; i < count; ++i) {
            meta->SetText("{http://u" + std::to_string(i) + "/}a" + std::to_string(i), "x");
        }
        EXPECT_EQ(Parse(meta->Serialize())->PropertyCount(), count);
    });
}

}  // namespace
}  // namespace kivxmp::testing
