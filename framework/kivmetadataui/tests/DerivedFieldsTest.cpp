// Fields over a photo whose sidecar has what the packet lacks.

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivmetadataui/src/DialogModel.h"
#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

namespace kivmetadataui {
namespace {

using samples::Utf8;

constexpr char kInPhoto[] = "<photoshop:Headline>Own</photoshop:Headline>";
constexpr char kBeside[] =
    "<photoshop:Headline>hidden</photoshop:Headline>"
    "<photoshop:City>Bonn</photoshop:City>"
    "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Sea</rdf:li>"
    "<rdf:li xml:lang='de'>Meer</rdf:li></rdf:Alt></dc:title>"
    "<dc:subject><rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag></dc:subject>"
    "<dc:creator><rdf:Seq><rdf:li>Ann</rdf:li></rdf:Seq></dc:creator>"
    "<xmp:CreateDate>2024-05-17T14:30:05</xmp:CreateDate>"
    "<xmp:Rating>4</xmp:Rating>"
    "<photoshop:Urgency>5</photoshop:Urgency>"
    "<xmp:Marked>True</xmp:Marked>"
    "<xmp:Size>2.50</xmp:Size>"
    "<exif:FNumber>28/10</exif:FNumber>"
    "<Iptc4xmpCore:CreatorContactInfo rdf:parseType='Resource'>"
    "<Iptc4xmpCore:CiAdrCity>Bonn</Iptc4xmpCore:CiAdrCity>"
    "<Iptc4xmpCore:CiEmailWork>a@b</Iptc4xmpCore:CiEmailWork>"
    "</Iptc4xmpCore:CreatorContactInfo>"
    "<q:own xmlns:q='http://q.example/'>unknown</q:own>";

constexpr char kContact[] = "Iptc4xmpCore:CreatorContactInfo";
constexpr char kContactCity[] = "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrCity";
constexpr char kContactMail[] = "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiEmailWork";

kivmetadata::SchemaDefinitions SampleSchemas()
{
    auto schemas = samples::Schemas();
    auto more = std::make_shared<kivmetadata::SchemaDefinition>();
    more->prefix = "xmp";
    more->namespaceUri = samples::kXmp;
    more->properties = {samples::MakeProperty("Marked", kivmetadata::ValueType::kBoolean),
                        samples::MakeProperty("Size", kivmetadata::ValueType::kNumber)};
    schemas.push_back(std::move(more));
    return kivmetadata::SchemaDefinitions(schemas);
}

class DerivedFieldsTest : public testing::Test {
protected:
    DialogModel& Make(DialogOptions options = {}, const char* inPhoto = kInPhoto)
    {
        folder_.Write("sea.jpg", samples::Jpeg(samples::Packet(inPhoto)));
        folder_.Write("sea.jpg.xmp", samples::Packet(kBeside));
        meta_ = kivxmp::OpenPhoto(folder_.Path("sea.jpg"));
        auto camera = samples::MakeView("camera", {"exif:ExposureTime", "exif:FNumber"});
        camera->isCamera = true;
        const kivmetadata::ViewDefinitions views = {
            samples::MakeView(
                "basic", {"photoshop:Headline", "photoshop:City", "dc:title", "dc:description",
                          "dc:subject", "dc:creator", "xmp:CreateDate", "xmp:Rating", "xmp:Marked",
                          "xmp:Size", "photoshop:Urgency"}),
            samples::MakeView("contact", {kContact}), camera};
        model_ = std::make_unique<DialogModel>(*meta_, views, SampleSchemas(), std::move(options));
        return *model_;
    }

    /// The property's JSON after what OK would do; "null" where the packet does not hold it.
    std::string Applied(const std::string& property) const
    {
        const auto target = meta_->Clone();
        model_->Apply(*target);
        return kivxmp::ToJson(*target, target->Find(property));
    }

    const kivcore::testing::TestFolder folder_;
    std::unique_ptr<__XMPMeta__> meta_;
    std::unique_ptr<DialogModel> model_;
};

struct FieldCase {
    const char* path;
    const char* content;  // derived
    std::function<void(Field&)> edit;
    const char* property;
    const char* json;  // of the whole property once the edit is applied
};

std::vector<FieldCase> FieldCases()
{
    const auto type = [](const char16_t* text) {
        return [text](Field& field) { samples::TypeInto(field, text); };
    };
    return {
        {"photoshop:City", "Bonn", type(u"Köln"), "photoshop:City", R"("Köln")"},
        {"dc:title", "x-default=Sea|de=Meer", type(u"The Sea"), "dc:title",
         R"({"x-default":"The Sea","de":"Meer"})"},
        {"dc:title", "x-default=Sea|de=Meer",
         [](Field& field) { static_cast<LanguageField&>(field).SetTextOf("fr", u"Mer"); },
         "dc:title", R"({"x-default":"Sea","de":"Meer","fr":"Mer"})"},
        {"dc:title", "x-default=Sea|de=Meer",
         [](Field& field) { static_cast<LanguageField&>(field).RemoveLanguage("de"); }, "dc:title",
         R"({"x-default":"Sea"})"},
        {"dc:subject", "sea|sky", [](Field& field) { static_cast<ListField&>(field).Add(u"sun"); },
         "dc:subject", R"(["sea","sky","sun"])"},
        {"dc:subject", "sea|sky", [](Field& field) { static_cast<ListField&>(field).Remove(0); },
         "dc:subject", R"(["sky"])"},
        {"dc:creator", "Ann", [](Field& field) { static_cast<ListField&>(field).Add(u"Bob"); },
         "dc:creator", R"(["Ann","Bob"])"},
        {"xmp:CreateDate", "2024-05-17 14:30:05", type(u"2024-05"), "xmp:CreateDate",
         R"("2024-05")"},
        {"xmp:Size", "2.50", type(u"3"), "xmp:Size", R"("3")"},
        {"xmp:Rating", "4", [](Field& field) { static_cast<RatingField&>(field).SetStars(1); },
         "xmp:Rating", R"("1")"},
        {"xmp:Marked", "True",
         [](Field& field) { static_cast<YesNoField&>(field).SetValue(false); }, "xmp:Marked",
         R"("False")"},
        {"photoshop:Urgency", "5", [](Field& field) { static_cast<ChoiceField&>(field).Select(2); },
         "photoshop:Urgency", R"("8")"},
        {kContactCity, "Bonn", type(u"Köln"), kContact,
         R"({"Iptc4xmpCore:CiAdrCity":"Köln","Iptc4xmpCore:CiEmailWork":"a@b"})"},
        {kContactMail, "a@b", type(u""), kContact, R"({"Iptc4xmpCore:CiAdrCity":"Bonn"})"},
    };
}

TEST_F(DerivedFieldsTest, EachKindOfField)
{
    for (const FieldCase& row : FieldCases()) {
        SCOPED_TRACE(row.path);
        DialogModel& model = Make();
        Field& field = *model.FindField(row.path);
        const auto expectDerived = [&] {
            EXPECT_TRUE(field.IsDerived());
            EXPECT_FALSE(field.IsChanged());
            EXPECT_EQ(samples::Print(field.Items()), row.content);
            EXPECT_EQ(model.ChangeCount(), 0u);
            EXPECT_EQ(model.SummaryText(), u"");
            EXPECT_EQ(Utf8(field.AccessibleState()), "From the sidecar sea.jpg.xmp");
            EXPECT_EQ(Applied(row.property), "null");
        };
        const auto expectChanged = [&] {
            EXPECT_FALSE(field.IsDerived());
            EXPECT_TRUE(field.IsChanged());
            EXPECT_EQ(model.ChangeCount(), 1u);
            EXPECT_EQ(model.SummaryText(), u"1 change");
            EXPECT_EQ(Utf8(field.AccessibleState()), "changed");
            EXPECT_EQ(Applied(row.property), row.json);
        };
        EXPECT_EQ(field.Source().mark, u"Sidecar");
        expectDerived();
        row.edit(field);
        field.EndEdit();
        expectChanged();
        field.Revert();
        expectDerived();
        field.Undo();
        expectChanged();
        field.Undo();
        expectDerived();
        field.Redo();
        expectChanged();
    }
}

TEST_F(DerivedFieldsTest, NothingIsWrittenWithoutAChange)
{
    DialogModel& model = Make();
    const auto target = meta_->Clone();
    model.EndEdits();
    model.Apply(*target);
    EXPECT_FALSE(target->IsChanged());
    EXPECT_EQ(target->Serialize(), samples::Packet(kInPhoto));
}

TEST_F(DerivedFieldsTest, ThePacketsOwnIsNotMarked)
{
    DialogModel& model = Make();
    for (const char* const path : {"photoshop:Headline", "dc:description"}) {
        const Field& field = *model.FindField(path);
        EXPECT_FALSE(field.IsDerived()) << path;
        EXPECT_TRUE(field.Source().mark.empty()) << path;
    }
    EXPECT_EQ(Utf8(model.FindField("photoshop:Headline")->DisplayText()), "Own");
}

TEST_F(DerivedFieldsTest, APartOfAStructureThatNobodyTellsIsNotMarked)
{
    Make({}, "");
    folder_.Write("sea.jpg.xmp",
                  samples::Packet("<Iptc4xmpCore:CreatorContactInfo rdf:parseType='Resource'>"
                                  "<Iptc4xmpCore:CiAdrCity>Bonn</Iptc4xmpCore:CiAdrCity>"
                                  "</Iptc4xmpCore:CreatorContactInfo>"));
    meta_ = kivxmp::OpenPhoto(folder_.Path("sea.jpg"));
    model_ = std::make_unique<DialogModel>(
        *meta_, kivmetadata::ViewDefinitions{samples::MakeView("contact", {kContact})},
        SampleSchemas(), DialogOptions());
    EXPECT_TRUE(model_->FindField(kContactCity)->IsDerived());
    EXPECT_TRUE(model_->FindField(kContactMail)->Source().mark.empty());
    // One part set and the other emptied: the whole comes in first, then the part goes.
    samples::TypeInto(*model_->FindField(kContactMail), u"a@b");
    samples::TypeInto(*model_->FindField(kContactCity), u"");
    model_->EndEdits();
    EXPECT_EQ(model_->SummaryText(), u"2 changes");
    EXPECT_EQ(Applied(kContact), R"({"Iptc4xmpCore:CiEmailWork":"a@b"})");
}

// Out of the packet it would come back at the next look, and the dialog would have said otherwise.
TEST_F(DerivedFieldsTest, AWholePropertyCannotBeEmptied)
{
    const std::pair<const char*, std::function<void(Field&)>> rows[] = {
        {"photoshop:City", [](Field& field) { samples::TypeInto(field, u""); }},
        {"dc:title",
         [](Field& field) {
             static_cast<LanguageField&>(field).RemoveLanguage("de");
             static_cast<LanguageField&>(field).RemoveLanguage("x-default");
         }},
        {"dc:creator", [](Field& field) { static_cast<ListField&>(field).Remove(0); }},
        {"xmp:CreateDate", [](Field& field) { samples::TypeInto(field, u""); }},
        {"xmp:Rating",
         [](Field& field) { static_cast<RatingField&>(field).SetStars(std::nullopt); }},
        {"xmp:Marked",
         [](Field& field) { static_cast<YesNoField&>(field).SetValue(std::nullopt); }},
        {"photoshop:Urgency",
         [](Field& field) { static_cast<ChoiceField&>(field).Select(std::nullopt); }},
    };
    DialogModel& model = Make();
    for (const auto& [path, empty] : rows) {
        SCOPED_TRACE(path);
        Field& field = *model.FindField(path);
        empty(field);
        field.EndEdit();
        EXPECT_EQ(field.Error(),
                  u"This value comes from elsewhere. It can be replaced, but not removed.");
        field.Revert();
        EXPECT_FALSE(field.HasError());
        EXPECT_TRUE(field.IsDerived());
    }
    // One of the packet's own can.
    samples::TypeInto(*model.FindField("photoshop:Headline"), u"");
    model.EndEdits();
    EXPECT_EQ(model.ErrorCount(), 0u);
}

// Neither can all parts of a structure; the last one says so, until another is filled.
TEST_F(DerivedFieldsTest, AllPartsOfAStructureCannotBeEmptied)
{
    const kivcore::UString stays =
        u"This value comes from elsewhere. It can be replaced, but not removed.";
    DialogModel& model = Make();
    Field& city = *model.FindField(kContactCity);
    Field& mail = *model.FindField(kContactMail);
    samples::TypeInto(city, u"");
    city.EndEdit();
    EXPECT_EQ(model.ErrorCount(), 0u);
    samples::TypeInto(mail, u"");
    EXPECT_EQ(model.ErrorCount(), 0u) << "while typing";
    mail.EndEdit();
    EXPECT_EQ(mail.Error(), stays);
    EXPECT_EQ(model.ErrorCount(), 1u);
    city.Revert();
    EXPECT_EQ(model.ErrorCount(), 0u);
    EXPECT_EQ(Applied(kContact), R"({"Iptc4xmpCore:CiAdrCity":"Bonn"})");
    city.Undo();
    EXPECT_EQ(city.Error(), stays);
    samples::TypeInto(mail, u"c@d");
    mail.EndEdit();
    EXPECT_EQ(model.ErrorCount(), 0u);
    EXPECT_EQ(Applied(kContact), R"({"Iptc4xmpCore:CiEmailWork":"c@d"})");
    mail.Undo();
    EXPECT_EQ(mail.Error(), stays);
}

// Where a part is not shown, it stays, and the others can go.
TEST_F(DerivedFieldsTest, AllShownPartsOfAStructureCanBeEmptied)
{
    Make();
    folder_.Write("sea.jpg.xmp",
                  samples::Packet("<Iptc4xmpCore:CreatorContactInfo rdf:parseType='Resource'>"
                                  "<Iptc4xmpCore:CiAdrCity>Bonn</Iptc4xmpCore:CiAdrCity>"
                                  "<Iptc4xmpCore:Other>x</Iptc4xmpCore:Other>"
                                  "</Iptc4xmpCore:CreatorContactInfo>"));
    meta_ = kivxmp::OpenPhoto(folder_.Path("sea.jpg"));
    model_ = std::make_unique<DialogModel>(
        *meta_, kivmetadata::ViewDefinitions{samples::MakeView("contact", {kContact})},
        SampleSchemas(), DialogOptions());
    samples::TypeInto(*model_->FindField(kContactCity), u"");
    model_->EndEdits();
    EXPECT_EQ(model_->ErrorCount(), 0u);
    EXPECT_EQ(Applied(kContact), R"({"Iptc4xmpCore:Other":"x"})");
}

TEST_F(DerivedFieldsTest, ADerivedFieldIsFilled)
{
    EXPECT_EQ(Make().FirstFocus()->Path(), "dc:description");
}

TEST_F(DerivedFieldsTest, CameraViewAndReadOnlyDialogShowThemToo)
{
    DialogOptions options;
    options.isReadOnly = true;
    DialogModel& model = Make(std::move(options));
    const Field& aperture = *model.FindField("exif:FNumber");
    EXPECT_EQ(aperture.DisplayText(), u"f/2.8");
    EXPECT_TRUE(aperture.IsDerived());
    EXPECT_TRUE(model.Views()[2].emptyText.empty());
    const Field& city = *model.FindField("photoshop:City");
    EXPECT_EQ(city.DisplayText(), u"Bonn");
    EXPECT_TRUE(city.IsReadOnly());
    EXPECT_EQ(Utf8(city.AccessibleState()), "From the sidecar sea.jpg.xmp, read-only");
}

TEST_F(DerivedFieldsTest, TheListOfAllPropertiesMarksThem)
{
    const DialogView& view = Make().Views().back();
    ASSERT_EQ(view.kind, ViewKind::kAllProperties);
    ASSERT_EQ(view.rows.size(), 13u);
    EXPECT_EQ(view.rows[0].path, "photoshop:Headline");
    EXPECT_EQ(view.rows[0].value, u"Own");
    EXPECT_TRUE(view.rows[0].source.mark.empty());
    EXPECT_EQ(view.rows[1].path, "photoshop:City");
    EXPECT_EQ(view.rows[1].source.mark, u"Sidecar");
    EXPECT_EQ(view.rows[1].source.detail, u"From the sidecar sea.jpg.xmp");
    EXPECT_EQ(view.rows[12].path, "q:own");
    EXPECT_EQ(view.rows[12].value, u"unknown");
}

TEST_F(DerivedFieldsTest, SearchFindsThem)
{
    const std::vector<SearchHit> hits = Make().Search(u"bonn");
    ASSERT_EQ(hits.size(), 4u);  // city, contact's city, and a row for each
    EXPECT_EQ(hits[0].field, model_->FindField("photoshop:City"));
}

TEST_F(DerivedFieldsTest, TheDialogTellsOfTheSidecar)
{
    EXPECT_EQ(Make().Note().text, u"The sidecar sea.jpg.xmp adds 12 properties");
}

}  // namespace
}  // namespace kivmetadataui
