// Changes of derived properties, wherever they are derived from.

#include <kivxmp/XMPMeta.h>

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <kivxmp/XMPAccess.h>

namespace kivxmp {
namespace {

constexpr char kPacket[] =
    "<x:xmpmeta xmlns:x='adobe:ns:meta/'>\n"
    "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>\n"
    " <!-- kept --><rdf:Description rdf:about='' xmlns:xmp='http://ns.adobe.com/xap/1.0/'\n"
    "  xmp:Rating='3' xmp:Label='red'/>\n"
    "</rdf:RDF></x:xmpmeta>";

constexpr char kDerived[] =
    "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'"
    " xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:xmp='http://ns.adobe.com/xap/1.0/'"
    " xmlns:exif='http://ns.adobe.com/exif/1.0/' xmlns:q='http://q.example/'"
    " xmlns:Iptc4xmpExt='http://iptc.org/std/Iptc4xmpExt/2008-02-29/'>"
    "<rdf:Description rdf:about='' dc:format='image/jpeg'>"
    "<xmp:Rating>5</xmp:Rating>"
    "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Harbour</rdf:li>"
    "<rdf:li xml:lang='de'>Hafen</rdf:li></rdf:Alt></dc:title>"
    "<dc:subject><rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag></dc:subject>"
    "<dc:creator><rdf:Seq><rdf:li>Ann</rdf:li></rdf:Seq></dc:creator>"
    "<dc:source rdf:parseType='Resource'><rdf:value>film</rdf:value><q:roll>7</q:roll></dc:source>"
    "<exif:Flash rdf:parseType='Resource'><exif:Fired>True</exif:Fired>"
    "<exif:Mode>1</exif:Mode></exif:Flash>"
    "<Iptc4xmpExt:LocationShown><rdf:Bag><rdf:li rdf:parseType='Resource'>"
    "<Iptc4xmpExt:City>Oslo</Iptc4xmpExt:City></rdf:li></rdf:Bag></Iptc4xmpExt:LocationShown>"
    "</rdf:Description></rdf:RDF>";

/// Tells what another object holds.
class OtherObject final : public Origin {
public:
    const Node* FindDerived(std::string_view uri, std::string_view local) override
    {
        ++questions;
        return object->FindProperty(uri, local);
    }
    std::unique_ptr<__XMPMeta__> object = __XMPMeta__::Parse(kDerived);
    int questions = 0;
};

class DerivedEditTest : public ::testing::Test {
protected:
    DerivedEditTest() { meta_->SetOrigin(origin_); }

    std::string Json(const char* path) const { return ToJson(*meta_, meta_->Find(path)); }

    void ExpectUntouched() const
    {
        EXPECT_FALSE(meta_->IsChanged());
        EXPECT_EQ(meta_->Serialize(), kPacket);
        EXPECT_EQ(meta_->PropertyCount(), 2u);
    }

    std::shared_ptr<OtherObject> origin_ = std::make_shared<OtherObject>();
    std::unique_ptr<__XMPMeta__> meta_ = __XMPMeta__::Parse(kPacket);
};

using Edit = std::function<void(__XMPMeta__&)>;

std::vector<std::string> Words(std::initializer_list<const char*> words)
{
    return {words.begin(), words.end()};
}

struct EditCase {
    const char* name;
    Edit edit;
    const char* property;
    const char* json;  // of the whole property afterwards
    Edit takeBack;     // empty where a change of one property cannot be taken back in part
};

TEST_F(DerivedEditTest, TheWholePropertyIsCopiedThenEdited)
{
    const std::vector<LanguageText> languages{{"x-default", "Harbour"}, {"de", "Hafen"}};
    const std::vector<LanguageText> fewer{{"x-default", "Harbour"}};
    const EditCase rows[] = {
        {"a text", [](auto& meta) { meta.SetText("dc:format", "image/png"); }, "dc:format",
         R"("image/png")", [](auto& meta) { meta.SetText("dc:format", "image/jpeg"); }},
        {"a text removed again", [](auto& meta) { meta.SetText("dc:format", "image/png"); },
         "dc:format", R"("image/png")", [](auto& meta) { EXPECT_TRUE(meta.Remove("dc:format")); }},
        {"one language", [](auto& meta) { meta.SetText("dc:title[@de]", "Meer"); }, "dc:title",
         R"({"x-default":"Harbour","de":"Meer"})",
         [](auto& meta) { meta.SetText("dc:title[@de]", "Hafen"); }},
        {"a new language", [](auto& meta) { meta.SetText("dc:title[@fr]", "Port"); }, "dc:title",
         R"({"x-default":"Harbour","de":"Hafen","fr":"Port"})",
         [](auto& meta) { EXPECT_TRUE(meta.Remove("dc:title[@fr]")); }},
        {"a language less", [](auto& meta) { EXPECT_TRUE(meta.Remove("dc:title[@de]")); },
         "dc:title", R"({"x-default":"Harbour"})",
         [](auto& meta) { meta.SetText("dc:title[@de]", "Hafen"); }},
        {"all languages", [&](auto& meta) { meta.SetLanguages("dc:title", fewer); }, "dc:title",
         R"({"x-default":"Harbour"})",
         [&](auto& meta) { meta.SetLanguages("dc:title", languages); }},
        {"one item", [](auto& meta) { meta.SetText("dc:subject[2]", "lake"); }, "dc:subject",
         R"(["sea","lake"])", [](auto& meta) { meta.SetText("dc:subject[2]", "sky"); }},
        {"a further item", [](auto& meta) { meta.SetText("dc:subject[3]", "sun"); }, "dc:subject",
         R"(["sea","sky","sun"])", [](auto& meta) { EXPECT_TRUE(meta.Remove("dc:subject[3]")); }},
        {"an item put between",
         [](auto& meta) { meta.InsertItem("dc:subject", 2, NodeForm::kSimple, "sun"); },
         "dc:subject", R"(["sea","sun","sky"])",
         [](auto& meta) { EXPECT_TRUE(meta.Remove("dc:subject[2]")); }},
        {"an item moved", [](auto& meta) { meta.MoveItem("dc:subject", 1, 2); }, "dc:subject",
         R"(["sky","sea"])", [](auto& meta) { meta.MoveItem("dc:subject", 1, 2); }},
        {"an item less", [](auto& meta) { EXPECT_TRUE(meta.Remove("dc:subject[1]")); },
         "dc:subject", R"(["sky"])",
         [](auto& meta) {
             meta.SetList("dc:subject", NodeForm::kBag, Words({"sea", "sky"}));
         }},
        {"the list", [](auto& meta) { meta.SetList("dc:subject", NodeForm::kBag, Words({"a"})); },
         "dc:subject", R"(["a"])",
         [](auto& meta) {
             meta.SetList("dc:subject", NodeForm::kBag, Words({"sea", "sky"}));
         }},
        {"the kind of the list", [](auto& meta) { meta.Ensure("dc:creator", NodeForm::kBag); },
         "dc:creator", R"(["Ann"])", [](auto& meta) { meta.Ensure("dc:creator", NodeForm::kSeq); }},
        {"a field", [](auto& meta) { meta.SetText("exif:Flash/exif:Mode", "2"); }, "exif:Flash",
         R"({"exif:Fired":"True","exif:Mode":"2"})",
         [](auto& meta) { meta.SetText("exif:Flash/exif:Mode", "1"); }},
        {"a field of an item",
         [](auto& meta) {
             meta.SetText("Iptc4xmpExt:LocationShown[1]/Iptc4xmpExt:City", "Bergen");
         },
         "Iptc4xmpExt:LocationShown", R"([{"Iptc4xmpExt:City":"Bergen"}])",
         [](auto& meta) { meta.SetText("Iptc4xmpExt:LocationShown[1]/Iptc4xmpExt:City", "Oslo"); }},
        {"a qualifier stays", [](auto& meta) { meta.SetText("dc:source", "slide"); }, "dc:source",
         R"("slide")", [](auto& meta) { meta.SetText("dc:source", "film"); }},
    };
    for (const EditCase& row : rows) {
        SCOPED_TRACE(row.name);
        row.edit(*meta_);
        EXPECT_TRUE(meta_->IsChanged());
        EXPECT_EQ(Json(row.property), row.json);
        EXPECT_EQ(meta_->PropertyCount(), 3u);
        const std::string written = meta_->Serialize();
        EXPECT_THAT(written, ::testing::HasSubstr("<!-- kept -->"));
        const auto again = __XMPMeta__::Parse(written);
        EXPECT_EQ(ToJson(*again, again->Find(row.property)), row.json);
        EXPECT_EQ(again->PropertyCount(), 3u);
        row.takeBack(*meta_);
        ExpectUntouched();
    }
    meta_->SetText("dc:source", "slide");
    EXPECT_EQ(TextOf(meta_->Find("dc:source/?{http://q.example/}roll")), "7");
}

TEST_F(DerivedEditTest, WhatChangesNothingLeavesThePacketAlone)
{
    const Edit rows[] = {
        [](auto& meta) { meta.SetText("dc:format", "image/jpeg"); },
        [](auto& meta) { meta.SetText("dc:title[@x-default]", "Harbour"); },
        [](auto& meta) {
            meta.SetList("dc:subject", NodeForm::kBag, Words({"sea", "sky"}));
        },
        [](auto& meta) { meta.Ensure("exif:Flash", NodeForm::kStruct); },
        [&](auto& meta) { meta.SetCopy("dc:title", *origin_->object->Find("dc:title")); },
        // The photo goes on telling it, so it cannot be removed.
        [](auto& meta) { EXPECT_FALSE(meta.Remove("dc:format")); },
        [](auto& meta) { EXPECT_FALSE(meta.Remove("dc:creator[1]")); },
        [](auto& meta) { EXPECT_FALSE(meta.Remove("dc:title[@fr]")); },
    };
    for (const Edit& edit : rows) {
        SCOPED_TRACE(&edit - rows);
        edit(*meta_);
        ExpectUntouched();
    }
}

TEST_F(DerivedEditTest, AFailedChangeLeavesThePacketAlone)
{
    const Edit rows[] = {
        [](auto& meta) { meta.SetText("dc:format", "\x01"); },
        [](auto& meta) { meta.SetText("dc:subject[7]", "far"); },
        [](auto& meta) { meta.SetText("dc:subject/dc:field", "no structure"); },
        [](auto& meta) { meta.MoveItem("dc:subject", 1, 9); },
        [](auto& meta) { meta.InsertItem("dc:format", 1, NodeForm::kSimple, "a"); },
        [](auto& meta) { meta.SetText("exif:Flash[@de]", "no list"); },
    };
    for (const Edit& edit : rows) {
        SCOPED_TRACE(&edit - rows);
        EXPECT_THROW(edit(*meta_), XMP_Error);
        ExpectUntouched();
    }
    // What an earlier change copied stays when a later one fails.
    meta_->SetText("dc:subject[2]", "lake");
    EXPECT_THROW(meta_->SetText("dc:subject[9]", "far"), XMP_Error);
    EXPECT_EQ(Json("dc:subject"), R"(["sea","lake"])");
}

TEST_F(DerivedEditTest, ThePacketsOwnPropertyHidesTheDerivedOne)
{
    meta_->SetText("xmp:Rating", "4");
    EXPECT_EQ(origin_->questions, 0);
    EXPECT_EQ(Json("xmp:Rating"), R"("4")");
    // Set to what is derived, it is still a change of what the packet held.
    meta_->SetText("xmp:Rating", "5");
    EXPECT_TRUE(meta_->IsChanged());
    EXPECT_THAT(meta_->Serialize(), ::testing::HasSubstr("<xmp:Rating>5<"));
    // Removed it is derived, and comes back by a change below or at it.
    EXPECT_TRUE(meta_->Remove("xmp:Rating"));
    EXPECT_EQ(Json("xmp:Rating"), "null");
    EXPECT_THROW(meta_->SetText("xmp:Rating/xmp:field", "no structure"), XMP_Error);
    EXPECT_EQ(Json("xmp:Rating"), "null");
    meta_->SetText("xmp:Rating", "5");
    EXPECT_EQ(Json("xmp:Rating"), R"("5")");
    EXPECT_TRUE(meta_->IsChanged());
    meta_->SetText("xmp:Rating", "3");
    ExpectUntouched();
}

TEST_F(DerivedEditTest, ClonesAndManyRounds)
{
    const auto clone = meta_->Clone();
    clone->SetText("dc:subject[1]", "lake");
    ExpectUntouched();
    meta_->Swap(*clone);
    EXPECT_EQ(Json("dc:subject"), R"(["lake","sky"])");
    for (int round = 0; round < 100; ++round) {
        meta_->SetText("dc:subject[1]", "sea");
        ExpectUntouched();
        meta_->SetText("dc:subject[1]", "lake");
    }
    // The limit on nodes counts what is there, not what came and went.
    EXPECT_EQ(Json("dc:subject"), R"(["lake","sky"])");
}

}  // namespace
}  // namespace kivxmp
