#include <kivxmp/XMPMeta.h>

#include <gtest/gtest.h>

#include <functional>

#include "framework/kivxmp/tests/XmpTestSupport.h"

#include <kivxmp/XMPAccess.h>

namespace kivxmp::testing {
namespace {

using Edit = std::function<void(__XMPMeta__&)>;
using Strings = std::vector<std::string>;
using Languages = std::vector<LanguageText>;

constexpr const char* kContent =
    "<ex:t>1</ex:t><ex:u rdf:resource=\"u\"/>"
    "<ex:l><rdf:Seq><rdf:li>1</rdf:li><rdf:li q:z=\"9\" "
    "rdf:value=\"2\"/><rdf:li>3</rdf:li></rdf:Seq>"
    "</ex:l>"
    "<ex:s ex:b=\"1\"/>"
    "<ex:a><rdf:Alt><rdf:li xml:lang=\"x-default\">D</rdf:li>"
    "<rdf:li xml:lang=\"de\">G</rdf:li></rdf:Alt></ex:a>"
    "<ex:r rdf:ID=\"r\"/>"
    "<ex:w rdf:parseType=\"Resource\"><ex:b>1</ex:b><ex:c>3</ex:c><ex:b>2</ex:b></ex:w>"
    "<ex:q rdf:value=\"v\" q:z=\"1\"/><ex:d rdf:datatype=\"i\">5</ex:d>";

struct EditCase {
    const char* about;
    Edit edit;
    const char* path;  // the property that is dumped
    const char* want;
};

/// The lines of one property.
std::string DumpProperty(const __XMPMeta__& meta, const std::string& property)
{
    std::string lines;
    const std::string all = Dump(meta);
    for (std::size_t at = 0; at < all.size();) {
        const std::size_t end = all.find('\n', at) + 1;
        const std::string line = all.substr(at, end - at);
        if (line.substr(0, property.size()) == property) {
            lines += line;
        }
        at = end;
    }
    return lines;
}

TEST(XMPMeta, Edits)
{
    using M = __XMPMeta__&;
    const EditCase rows[] = {
        {"a text", [](M m) { m.SetText("ex:t", "2"); }, "ex:t", "ex:t simple 2\n"},
        {"an empty text", [](M m) { m.SetText("ex:t", ""); }, "ex:t", "ex:t simple \n"},
        {"a URI stays one", [](M m) { m.SetText("ex:u", "v"); }, "ex:u", "ex:u uri v\n"},
        {"a text made a URI", [](M m) { m.SetUri("ex:t", "v"); }, "ex:t", "ex:t uri v\n"},
        {"a text in place of a list", [](M m) { m.SetText("ex:l", "2"); }, "ex:l",
         "ex:l simple 2\n"},
        {"a text in place of raw RDF", [](M m) { m.SetText("ex:r", "2"); }, "ex:r",
         "ex:r simple 2\n"},
        {"qualifiers stay", [](M m) { m.SetText("ex:q", "w"); }, "ex:q",
         "ex:q simple w\nex:q/?q:z simple 1\n"},
        {"a data type stays with a text", [](M m) { m.SetText("ex:d", "6"); }, "ex:d",
         "ex:d simple 6\nex:d/?rdf:datatype uri i\n"},
        {"a data type goes with the text", [](M m) { m.SetUri("ex:d", "6"); }, "ex:d",
         "ex:d uri 6\n"},
        {"an item", [](M m) { m.SetText("ex:l[2]", "x"); }, "ex:l[2]",
         "ex:l[2] simple x\nex:l[2]/?q:z simple 9\n"},
        {"an item behind the last", [](M m) { m.SetText("ex:l[4]", "x"); }, "ex:l[4]",
         "ex:l[4] simple x\n"},
        {"a structure as item", [](M m) { m.SetText("ex:l[4]/ex:b", "x"); }, "ex:l[4]",
         "ex:l[4] struct\nex:l[4]/ex:b simple x\n"},
        {"a field", [](M m) { m.SetText("ex:s/ex:c/ex:d", "x"); }, "ex:s",
         "ex:s struct\nex:s/ex:b simple 1\nex:s/ex:c struct\nex:s/ex:c/ex:d simple x\n"},
        {"a language, letter case ignored", [](M m) { m.SetText("ex:a[@DE]", "x"); }, "ex:a[@d",
         "ex:a[@de] simple x\nex:a[@de]/?xml:lang simple de\n"},
        {"a new language", [](M m) { m.SetText("ex:a[@fr]", "x"); }, "ex:a[@f",
         "ex:a[@fr] simple x\nex:a[@fr]/?xml:lang simple fr\n"},
        {"the default comes first",
         [](M m) {
             m.SetText("ex:n[@fr]", "1");
             m.SetText("ex:n[@x-default]", "2");
         },
         "ex:n",
         "ex:n alt\nex:n[@x-default] simple 2\nex:n[@x-default]/?xml:lang simple x-default\n"
         "ex:n[@fr] simple 1\nex:n[@fr]/?xml:lang simple fr\n"},
        {"a text becomes the default", [](M m) { m.SetText("ex:q[@fr]", "x"); }, "ex:q",
         "ex:q alt\nex:q/?q:z simple 1\nex:q[@x-default] simple v\n"
         "ex:q[@x-default]/?xml:lang simple x-default\nex:q[@fr] simple x\n"
         "ex:q[@fr]/?xml:lang simple fr\n"},
        {"a qualifier", [](M m) { m.SetText("ex:t/?q:z/?q:y", "x"); }, "ex:t", "error"},
        {"a qualifier of a qualifier", [](M m) { m.SetText("ex:q/?q:z/?q:y", "x"); }, "ex:q",
         "ex:q simple v\nex:q/?q:z simple 1\nex:q/?q:z/?q:y simple x\n"},
        {"a language as qualifier comes first", [](M m) { m.SetText("ex:q/?xml:lang", "fr"); },
         "ex:q", "ex:q simple v\nex:q/?xml:lang simple fr\nex:q/?q:z simple 1\n"},

        {"a list",
         [](M m) {
             m.SetList("ex:l", NodeForm::kBag, Strings{"2", "2", "4"});
         },
         "ex:l",
         "ex:l bag\nex:l[1] simple 2\nex:l[1]/?q:z simple 9\nex:l[2] simple 2\n"
         "ex:l[3] simple 4\n"},
        {"a list in place of a text", [](M m) { m.SetList("ex:q", NodeForm::kSeq, Strings{"v"}); },
         "ex:q", "ex:q seq\nex:q/?q:z simple 1\nex:q[1] simple v\n"},
        {"an empty list", [](M m) { m.SetList("ex:l", NodeForm::kAlt, Strings{}); }, "ex:l",
         "ex:l alt\n"},
        {"languages",
         [](M m) {
             m.SetText("ex:a[@de]/?q:z", "9");
             m.SetLanguages("ex:a", Languages{{"DE", "x"}, {"", "y"}, {"it", "z"}});
         },
         "ex:a",
         "ex:a alt\nex:a[@DE] simple x\nex:a[@DE]/?xml:lang simple DE\nex:a[@DE]/?q:z simple 9\n"
         "ex:a[2] simple y\nex:a[@it] simple z\nex:a[@it]/?xml:lang simple it\n"},
        {"a list of another kind", [](M m) { m.Ensure("ex:l", NodeForm::kBag); }, "ex:l",
         "ex:l bag\nex:l[1] simple 1\nex:l[2] simple 2\nex:l[2]/?q:z simple 9\n"
         "ex:l[3] simple 3\n"},
        {"a structure that is there", [](M m) { m.Ensure("ex:s", NodeForm::kStruct); }, "ex:s",
         "ex:s struct\nex:s/ex:b simple 1\n"},
        {"a structure in place of a list", [](M m) { m.Ensure("ex:l", NodeForm::kStruct); }, "ex:l",
         "ex:l struct\n"},
        {"a list to fill",
         [](M m) {
             m.Ensure("ex:n", NodeForm::kSeq);
             m.SetText("ex:n[1]/ex:b", "x");
             m.SetText("ex:n[2]/ex:b", "y");
         },
         "ex:n",
         "ex:n seq\nex:n[1] struct\nex:n[1]/ex:b simple x\nex:n[2] struct\n"
         "ex:n[2]/ex:b simple y\n"},

        {"an inserted item", [](M m) { m.InsertItem("ex:l", 1, NodeForm::kUri, "x"); }, "ex:l[1]",
         "ex:l[1] uri x\n"},
        {"an inserted structure", [](M m) { m.InsertItem("ex:l", 4, NodeForm::kStruct, "x"); },
         "ex:l[4]", "ex:l[4] struct\n"},
        {"an item moved down", [](M m) { m.MoveItem("ex:l", 2, 3); }, "ex:l",
         "ex:l seq\nex:l[1] simple 1\nex:l[2] simple 3\nex:l[3] simple 2\n"
         "ex:l[3]/?q:z simple 9\n"},
        {"an item moved up", [](M m) { m.MoveItem("ex:l", 3, 1); }, "ex:l",
         "ex:l seq\nex:l[1] simple 3\nex:l[2] simple 1\nex:l[3] simple 2\n"
         "ex:l[3]/?q:z simple 9\n"},

        {"a removed item", [](M m) { m.Remove("ex:l[2]"); }, "ex:l",
         "ex:l seq\nex:l[1] simple 1\nex:l[2] simple 3\n"},
        {"a removed language", [](M m) { m.Remove("ex:a[@x-default]"); }, "ex:a",
         "ex:a alt\nex:a[@de] simple G\nex:a[@de]/?xml:lang simple de\n"},
        {"the last language",
         [](M m) {
             m.Remove("ex:a[@de]");
             m.Remove("ex:a[1]");
         },
         "ex:a", ""},
        {"the last field", [](M m) { m.Remove("ex:s/ex:b"); }, "ex:s", ""},
        {"the last field of an item",
         [](M m) {
             m.SetText("ex:l[4]/ex:b/ex:c", "x");
             m.Remove("ex:l[4]/ex:b/ex:c");
         },
         "ex:l[4]", ""},
        {"a doubled field goes whole", [](M m) { m.Remove("ex:w/ex:b"); }, "ex:w",
         "ex:w struct\nex:w/ex:c simple 3\n"},
        {"the last qualifier", [](M m) { m.Remove("ex:q/?q:z"); }, "ex:q", "ex:q simple v\n"},
        {"raw RDF", [](M m) { m.Remove("ex:r"); }, "ex:r", ""},

        {"a copy", [](M m) { m.SetCopy("ex:n", *m.Find("ex:l")); }, "ex:n",
         "ex:n seq\nex:n[1] simple 1\nex:n[2] simple 2\nex:n[2]/?q:z simple 9\n"
         "ex:n[3] simple 3\n"},
        {"a copy of a part of itself", [](M m) { m.SetCopy("ex:l", *m.Find("ex:l[2]")); }, "ex:l",
         "ex:l simple 2\nex:l/?q:z simple 9\n"},
        {"a copy with its language", [](M m) { m.SetCopy("ex:n[@fr]", *m.Find("ex:a[@de]")); },
         "ex:n", "ex:n alt\nex:n[@fr] simple G\nex:n[@fr]/?xml:lang simple fr\n"},
        {"a text from itself", [](M m) { m.SetText("ex:t", m.Find("ex:t")->Value()); }, "ex:t",
         "ex:t simple 1\n"},
    };
    for (const EditCase& row : rows) {
        SCOPED_TRACE(row.about);
        const auto meta = Parse(InDescription(kContent));
        const auto clone = meta->Clone();
        const KivXmpCode code = CodeThrownBy([&] { row.edit(*meta); });
        if (std::string_view(row.want) == "error") {
            EXPECT_NE(code, kKivXmpOk);
            continue;
        }
        ASSERT_EQ(code, kKivXmpOk);
        EXPECT_EQ(DumpProperty(*meta, row.path), row.want);
        EXPECT_EQ(Dump(*Parse(meta->Serialize())), Dump(*meta)) << meta->Serialize();
        EXPECT_EQ(clone->Serialize(), InDescription(kContent));
    }
}

struct RefusedCase {
    const char* about;
    Edit edit;
    KivXmpCode want;
};

TEST(XMPMeta, RefusedEditsChangeNothing)
{
    using M = __XMPMeta__&;
    const std::string deep = [] {
        std::string path = "ex:n";
        for (int i = 0; i < 255; ++i) {
            path += "/ex:n";
        }
        return path;
    }();
    const auto other = Parse("<!DOCTYPE x [<!ENTITY e 'x'>]>" +
                             InDescription("<ex:r rdf:ID=\"r\">&e;</ex:r>", "foo=\"1\""));
    const RefusedCase rows[] = {
        {"no path", [](M m) { m.SetText("t", "2"); }, kKivXmpBadPath},
        {"unknown prefix", [](M m) { m.SetText("nope:t", "2"); }, kKivXmpBadPath},
        {"no namespace", [](M m) { m.SetText("{}t", "2"); }, kKivXmpBadPath},
        {"an RDF term", [](M m) { m.SetText("rdf:li", "2"); }, kKivXmpBadPath},
        {"a value's value", [](M m) { m.SetText("ex:s/rdf:value", "2"); }, kKivXmpBadPath},
        {"a language as a field", [](M m) { m.SetText("ex:s/xml:lang", "2"); }, kKivXmpBadPath},
        {"no name of XML", [](M m) { m.SetText("ex:1", "2"); }, kKivXmpBadPath},
        {"a name with a sign", [](M m) { m.SetText("ex:a\xC3\x97", "2"); }, kKivXmpBadPath},
        {"an empty path", [](M m) { m.SetText(Path(), "2"); }, kKivXmpBadPath},
        {"a control character", [](M m) { m.SetText("ex:t", "\x01"); }, kKivXmpBadValue},
        {"a zero", [](M m) { m.SetText("ex:t", std::string_view("\0", 1)); }, kKivXmpBadValue},
        {"no UTF-8", [](M m) { m.SetText("ex:t", "\xC3"); }, kKivXmpBadValue},
        {"no character", [](M m) { m.SetUri("ex:t", "\xEF\xBF\xBF"); }, kKivXmpBadValue},
        {"a bad item",
         [](M m) {
             m.SetList("ex:l", NodeForm::kBag, Strings{"1", "\x02"});
         },
         kKivXmpBadValue},
        {"a bad language",
         [](M m) {
             m.SetLanguages("ex:a", Languages{{"\x02", "x"}});
         },
         kKivXmpBadValue},
        {"a field of a text", [](M m) { m.SetText("ex:t/ex:b", "2"); }, kKivXmpWrongForm},
        {"a field of a list", [](M m) { m.SetText("ex:l/ex:b", "2"); }, kKivXmpWrongForm},
        {"an item of a text", [](M m) { m.SetText("ex:t[1]", "2"); }, kKivXmpWrongForm},
        {"a language of a structure", [](M m) { m.SetText("ex:s[@de]", "2"); }, kKivXmpWrongForm},
        {"a language of a URI", [](M m) { m.SetText("ex:u[@de]", "2"); }, kKivXmpWrongForm},
        {"part of raw RDF", [](M m) { m.SetText("ex:r/ex:b", "2"); }, kKivXmpWrongForm},
        {"a qualifier of raw RDF", [](M m) { m.SetText("ex:r/?ex:b", "2"); }, kKivXmpWrongForm},
        {"an item far behind", [](M m) { m.SetText("ex:l[5]", "2"); }, kKivXmpNotFound},
        {"an item of nothing", [](M m) { m.SetText("ex:n[1]", "2"); }, kKivXmpNotFound},
        {"a qualifier of nothing", [](M m) { m.SetText("ex:n/?ex:b", "2"); }, kKivXmpNotFound},
        {"a list as a language",
         [](M m) { m.SetList("ex:t/?xml:lang", NodeForm::kBag, Strings{}); }, kKivXmpWrongForm},
        {"a structure as a language", [](M m) { m.Ensure("ex:t/?xml:lang", NodeForm::kStruct); },
         kKivXmpWrongForm},
        {"a text as a list", [](M m) { m.SetList("ex:t", NodeForm::kSimple, Strings{}); },
         kKivXmpBadArgument},
        {"a text made sure", [](M m) { m.Ensure("ex:t", NodeForm::kSimple); }, kKivXmpBadArgument},
        {"raw RDF as an item", [](M m) { m.InsertItem("ex:l", 1, NodeForm::kRaw, "x"); },
         kKivXmpBadArgument},
        {"an item in nothing", [](M m) { m.InsertItem("ex:n", 1, NodeForm::kSimple, "x"); },
         kKivXmpNotFound},
        {"an item in a text", [](M m) { m.InsertItem("ex:t", 1, NodeForm::kSimple, "x"); },
         kKivXmpWrongForm},
        {"an item at 0", [](M m) { m.InsertItem("ex:l", 0, NodeForm::kSimple, "x"); },
         kKivXmpNotFound},
        {"an item far behind, inserted",
         [](M m) { m.InsertItem("ex:l", 5, NodeForm::kSimple, "x"); }, kKivXmpNotFound},
        {"a move to nowhere", [](M m) { m.MoveItem("ex:l", 1, 4); }, kKivXmpNotFound},
        {"raw RDF under another name", [](M m) { m.SetCopy("ex:n", *m.Find("ex:r")); },
         kKivXmpWrongForm},
        {"raw RDF that needs its packet", [&](M m) { m.SetCopy("ex:r", *other->Find("ex:r")); },
         kKivXmpNotEditable},
        {"an attribute that is no property", [&](M m) { m.SetCopy("ex:r", *other->Find("{}foo")); },
         kKivXmpNotEditable},
        {"too deep", [&](M m) { m.SetText(deep, "x"); }, kKivXmpTooDeep},
    };
    for (const RefusedCase& row : rows) {
        SCOPED_TRACE(row.about);
        const auto meta = Parse(InDescription(kContent));
        EXPECT_EQ(CodeThrownBy([&] { row.edit(*meta); }), row.want);
        EXPECT_FALSE(meta->IsChanged());
        EXPECT_EQ(meta->PropertyCount(), 9u);
    }
}

TEST(XMPMeta, RemovingNothing)
{
    const auto meta = Parse(InDescription(kContent));
    for (const char* path : {"ex:n", "ex:t/ex:b", "ex:l[4]", "ex:a[@fr]", "ex:t/?q:z"}) {
        EXPECT_FALSE(meta->Remove(path)) << path;
    }
    EXPECT_TRUE(meta->Remove("ex:t"));
    EXPECT_FALSE(meta->Remove("ex:t"));
}

TEST(XMPMeta, MessagesNameThePath)
{
    const auto meta = Parse(InDescription(kContent));
    try {
        meta->SetText("ex:l[9]", "x");
        FAIL();
    } catch (const XMP_Error& error) {
        EXPECT_STREQ(error.Text(), "ex:l[9]: the list has 3 items");
    }
}

TEST(XMPMeta, Finds)
{
    const auto meta = Parse(InDescription(kContent));
    for (const char* path : {"ex:t", "ex:l[3]", "ex:l[2]/?q:z", "ex:s/ex:b", "ex:a[@X-Default]",
                             "ex:a[@de]/?xml:lang", "{http://ex/}r"}) {
        EXPECT_NE(meta->Find(path), nullptr) << path;
    }
    for (const char* path : {"ex:T", "dc:t", "ex:l[4]", "ex:l/ex:b", "ex:t[1]", "ex:a[@fr]",
                             "ex:a[@]x]", "ex:r/ex:b"}) {
        const Node* found = nullptr;
        try {
            found = meta->Find(path);
        } catch (const XMP_Error&) {
        }
        EXPECT_EQ(found, nullptr) << path;
    }
    EXPECT_EQ(meta->FindProperty("http://ex/", "t"), meta->Find("ex:t"));
    EXPECT_EQ(meta->Find("ex:t")->Prefix(), "ex");
    EXPECT_EQ(meta->Find(Path()), nullptr);
}

TEST(XMPMeta, ClonesAndSwaps)
{
    class Place : public Origin {};
    const auto meta = Parse(InDescription(kContent));
    meta->SetOrigin(std::make_shared<Place>());
    const auto clone = meta->Clone();
    EXPECT_EQ(clone->GetOrigin(), meta->GetOrigin());
    clone->SetText("ex:l[1]", "x");
    clone->SetText("ex:n", "y");
    EXPECT_EQ(meta->Find("ex:l[1]")->Value(), "1");
    EXPECT_EQ(meta->Find("ex:n"), nullptr);
    EXPECT_FALSE(meta->IsChanged());
    const std::string changed = clone->Serialize();
    meta->Swap(*clone);
    EXPECT_EQ(meta->Serialize(), changed);
    EXPECT_EQ(clone->Serialize(), InDescription(kContent));
    EXPECT_EQ(meta->SourceBytes(), InDescription(kContent));
}

TEST(XMPMeta, AReplacedPacketKeepsItsBytesAndTheOrigin)
{
    class Place : public Origin {};
    const std::string other = InDescription("<ex:t>other</ex:t>") + "\n<!-- behind -->";
    const auto meta = Parse(InDescription(kContent));
    meta->SetOrigin(std::make_shared<Place>());
    const auto place = meta->GetOrigin();
    meta->ReplacePacket(*meta);
    EXPECT_FALSE(meta->IsChanged());

    meta->ReplacePacket(*Parse(other));
    EXPECT_EQ(meta->GetOrigin(), place);
    EXPECT_TRUE(meta->IsChanged());
    EXPECT_TRUE(meta->Clone()->IsChanged());
    EXPECT_EQ(meta->Serialize(), other);
    EXPECT_EQ(meta->PropertyCount(), 1u);

    // The very bytes that were there at first are no change, whatever stood between.
    meta->ReplacePacket(*Parse(InDescription(kContent)));
    EXPECT_FALSE(meta->IsChanged());
    meta->SetText("ex:n", "y");
    EXPECT_TRUE(meta->IsChanged());
    meta->ReplacePacket(*__XMPMeta__::Create());
    EXPECT_TRUE(meta->IsChanged());
    EXPECT_EQ(meta->PropertyCount(), 0u);
}

TEST(XMPMeta, ClonesOutliveTheOriginal)
{
    auto meta = Parse(InDescription(kContent));
    const auto clone = meta->Clone();
    meta.reset();
    EXPECT_EQ(clone->Serialize(), InDescription(kContent));
    clone->Remove("ex:t");
    EXPECT_EQ(Dump(*Parse(clone->Serialize())), Dump(*clone));
}

TEST(XMPMeta, WalkCanEnd)
{
    const auto meta = Parse(InDescription(kContent));
    int visits = 0;
    meta->Walk([&visits](const __XMPMeta__::Visit&) { return ++visits < 5; });
    EXPECT_EQ(visits, 5);
}

TEST(XMPMeta, ResourcesBesideAreNoProperties)
{
    const auto meta =
        Parse(InRdf("<ex:K ex:b=\"1\"/><rdf:Description><ex:a>1</ex:a>"
                    "</rdf:Description>"));
    EXPECT_EQ(meta->Find("ex:K"), nullptr);
    meta->SetText("ex:K", "2");
    EXPECT_EQ(meta->Serialize(),
              InRdf("<ex:K ex:b=\"1\"/><rdf:Description><ex:a>1</ex:a><ex:K>2</ex:K>"
                    "</rdf:Description>"));
}

}  // namespace
}  // namespace kivxmp::testing
