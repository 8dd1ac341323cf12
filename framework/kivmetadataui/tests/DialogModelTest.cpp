#include "framework/kivmetadataui/src/DialogModel.h"

#include <string>

#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>
#include <kivcore/PropList.h>
#include <kivxmp/XMPAccess.h>

namespace kivmetadataui {
namespace {

using kivcore::proplist::PropList;
using kivcore::proplist::PropValue;
using samples::Utf8;

constexpr char kSample[] =
    "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>The Sea</rdf:li>"
    "<rdf:li xml:lang='de'>Das Meer</rdf:li></rdf:Alt></dc:title>\n"
    "<dc:subject><rdf:Bag><rdf:li>Ärmelkanal</rdf:li></rdf:Bag></dc:subject>\n"
    "<exif:FNumber>28/10</exif:FNumber>\n"
    "<Iptc4xmpCore:CreatorContactInfo rdf:parseType='Resource'>"
    "<Iptc4xmpCore:CiAdrCity>Bonn</Iptc4xmpCore:CiAdrCity>"
    "</Iptc4xmpCore:CreatorContactInfo>\n"
    "<xmp:Rating>2</xmp:Rating>";

kivmetadata::ViewDefinitions SampleViews()
{
    auto camera = samples::MakeView("camera", {"exif:ExposureTime", "exif:FNumber"});
    camera->isCamera = true;
    return {
        samples::MakeView("basic", {"dc:title", "photoshop:City", "-", "dc:subject",
                                    "xmp:CreateDate", "-", "xmp:Unknown"}),
        samples::MakeView("contact", {"Iptc4xmpCore:CreatorContactInfo", "xmp:Rating", "dc:title"}),
        camera};
}

class DialogModelTest : public testing::Test {
protected:
    DialogModel& Make(DialogOptions options = {}, const char* properties = kSample)
    {
        meta_ = samples::Parse(properties);
        model_ = std::make_unique<DialogModel>(*meta_, SampleViews(),
                                               kivmetadata::SchemaDefinitions(samples::Schemas()),
                                               std::move(options));
        return *model_;
    }
    TextField& City() { return static_cast<TextField&>(*model_->FindField("photoshop:City")); }
    DateField& Created() { return static_cast<DateField&>(*model_->FindField("xmp:CreateDate")); }

    std::unique_ptr<__XMPMeta__> meta_;
    std::unique_ptr<DialogModel> model_;
};

/// "basic[dc:title photoshop:City | dc:subject]".
std::string Outline(const DialogView& view)
{
    std::string text = view.name.substr(view.name.find('/') + 1) + "[";
    bool isFirst = true;
    for (const FieldGroup& group : view.groups) {
        text += isFirst ? "" : " | ";
        isFirst = false;
        text += Utf8(group.heading) + ":";
        for (const FieldPlacement& placement : group.fields) {
            text += " " + placement.field->Path();
        }
    }
    for (const PropertyRow& row : view.rows) {
        text += " " + row.path + "=" + Utf8(row.value);
    }
    return text + "]";
}

TEST_F(DialogModelTest, BuildsViews)
{
    DialogModel& model = Make();
    ASSERT_EQ(model.Views().size(), 4U);
    EXPECT_EQ(Outline(model.Views()[0]),
              "basic[: dc:title photoshop:City | Group: dc:subject xmp:CreateDate]");
    EXPECT_EQ(Outline(model.Views()[1]),
              "contact[Contact: Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrCity "
              "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiEmailWork | : xmp:Rating dc:title]");
    EXPECT_EQ(Outline(model.Views()[2]), "camera[: exif:FNumber]");
    EXPECT_EQ(Outline(model.Views()[3]),
              "all-properties[ dc:title=x-default: The Sea; de: Das Meer dc:subject=Ärmelkanal "
              "exif:FNumber=28/10 Iptc4xmpCore:CreatorContactInfo=CiAdrCity: Bonn xmp:Rating=2]");
    EXPECT_EQ(model.Views()[3].kind, ViewKind::kAllProperties);
    EXPECT_EQ(model.Views()[0].label, u"View basic");
}

TEST_F(DialogModelTest, PlainLeavesCameraAndListOut)
{
    DialogOptions options;
    options.isPlain = true;
    EXPECT_EQ(Make(options).Views().size(), 2U);
}

TEST_F(DialogModelTest, EmptyViewsSayWhy)
{
    DialogModel& model = Make({}, "");
    EXPECT_EQ(model.Views()[2].emptyText, u"This file has no camera data.");
    EXPECT_EQ(model.Views()[3].emptyText, u"This file has no metadata yet.");
    EXPECT_TRUE(model.Views()[0].emptyText.empty());
}

TEST_F(DialogModelTest, ViewsShareFields)
{
    DialogModel& model = Make();
    Field* const title = model.FindField("dc:title");
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(model.Views()[0].groups[0].fields[0].field, title);
    EXPECT_EQ(model.Views()[1].groups[1].fields[1].field, title);
    EXPECT_EQ(model.ViewOf(*title), 0U);
    model.SetCurrentView(1);
    EXPECT_EQ(model.ViewOf(*title), 1U) << "the current view comes first";
    model.SetCurrentView(2);
    EXPECT_EQ(model.ViewOf(*title), 0U);
}

TEST_F(DialogModelTest, FindsFieldsByPath)
{
    DialogModel& model = Make();
    EXPECT_NE(model.FindField("{http://purl.org/dc/elements/1.1/}title"), nullptr);
    EXPECT_NE(model.FindField("Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrCity"), nullptr);
    for (const char* const path : {"dc:title[@de]", "dc:subject[1]", "dc:nothing", "nothing", "",
                                   "xx:y", "dc:title[", "Iptc4xmpCore:CreatorContactInfo"}) {
        EXPECT_EQ(model.FindField(path), nullptr) << path;
    }
}

TEST_F(DialogModelTest, FindsViewsByName)
{
    DialogModel& model = Make();
    EXPECT_EQ(model.FindView("com.orvan.xmp/contact"), 1U);
    EXPECT_EQ(model.FindView("contact"), 1U);
    EXPECT_EQ(model.FindView("View contact"), 1U);
    EXPECT_EQ(model.FindView("all-properties"), 3U);
    EXPECT_EQ(model.FindView("nothing"), std::nullopt);
}

TEST_F(DialogModelTest, TitleSummaryAndDots)
{
    DialogOptions options;
    options.title = u"sea.jpg";
    DialogModel& model = Make(options);
    EXPECT_EQ(model.WindowTitle(), u"sea.jpg");
    EXPECT_EQ(model.SummaryText(), u"");
    EXPECT_FALSE(model.Views()[0].HasChanges());

    City().SetText(u"Bonn");
    EXPECT_EQ(model.WindowTitle(), u"• sea.jpg");
    EXPECT_EQ(model.SummaryText(), u"1 change");
    EXPECT_TRUE(model.Views()[0].HasChanges());
    EXPECT_FALSE(model.Views()[1].HasChanges());

    Created().SetText(u"2024-02-31");
    EXPECT_EQ(model.SummaryText(), u"2 changes");
    EXPECT_FALSE(model.Views()[0].HasErrors());
    model.EndEdits();
    EXPECT_EQ(model.SummaryText(), u"2 changes, 1 error");
    EXPECT_TRUE(model.Views()[0].HasErrors());

    City().Revert();
    Created().Revert();
    EXPECT_EQ(model.SummaryText(), u"");
}

TEST_F(DialogModelTest, DefaultTitleAndLabels)
{
    DialogModel& model = Make();
    EXPECT_EQ(model.WindowTitle(), u"Metadata");
    EXPECT_EQ(model.ConfirmLabel(), u"OK");
    EXPECT_EQ(model.CancelLabel(), u"Cancel");
    DialogOptions options;
    options.confirmLabel = u"Save";
    EXPECT_EQ(Make(options).ConfirmLabel(), u"Save");
}

/// "0:dc:title 3:dc:title" - view and path of each hit.
std::string Hits(const DialogModel& model, kivcore::UStringView text)
{
    std::string hits;
    for (const SearchHit& hit : model.Search(text)) {
        hits += hits.empty() ? "" : " ";
        hits += std::to_string(hit.view) + ":";
        hits +=
            hit.field != nullptr ? hit.field->Path() : model.Views()[hit.view].rows[hit.row].path;
    }
    return hits;
}

TEST_F(DialogModelTest, Searches)
{
    DialogModel& model = Make();
    EXPECT_EQ(Hits(model, u""), "");
    EXPECT_EQ(Hits(model, u"  "), "");
    EXPECT_EQ(Hits(model, u"title"), "0:dc:title 1:dc:title 3:dc:title") << "by label and path";
    EXPECT_EQ(Hits(model, u"meer"), "0:dc:title 1:dc:title 3:dc:title") << "in every language";
    EXPECT_EQ(Hits(model, u"ärmel"), "0:dc:subject 3:dc:subject") << "without regard to case";
    EXPECT_EQ(Hits(model, u"title meer"), "0:dc:title 1:dc:title 3:dc:title") << "every word";
    EXPECT_EQ(Hits(model, u"title bonn"), "");
    EXPECT_EQ(Hits(model, u"f/2.8"), "2:exif:FNumber") << "as it is shown";
    City().SetText(u"Zwickau");
    EXPECT_EQ(Hits(model, u"zwickau"), "0:photoshop:City") << "what was typed";
}

TEST_F(DialogModelTest, FirstFocusIsTheFirstEmptyField)
{
    DialogModel& model = Make();
    EXPECT_EQ(model.FirstFocus(), &City());
    City().SetText(u"Bonn");
    EXPECT_EQ(model.FirstFocus(), &Created());
    Created().SetText(u"2024");
    EXPECT_EQ(model.FirstFocus(), nullptr) << "all is filled";
    model.SetCurrentView(3);
    EXPECT_EQ(model.FirstFocus(), nullptr);
}

TEST_F(DialogModelTest, ReadOnly)
{
    DialogOptions options;
    options.isReadOnly = true;
    DialogModel& model = Make(options);
    EXPECT_FALSE(model.CanConfirm());
    EXPECT_EQ(model.FirstFocus(), nullptr);
    City().SetText(u"Bonn");
    EXPECT_EQ(model.ChangeCount(), 0U);
}

TEST_F(DialogModelTest, SinglePathsCanBeReadOnly)
{
    DialogOptions options;
    options.isPathReadOnly = [](const std::string& path) { return path == "photoshop:City"; };
    Make(options);
    EXPECT_TRUE(City().IsReadOnly());
    EXPECT_FALSE(Created().IsReadOnly());
}

TEST_F(DialogModelTest, AppliesAllChanges)
{
    DialogModel& model = Make();
    City().SetText(u"Köln");
    static_cast<LanguageField*>(model.FindField("dc:title"))->SetTextOf("de", u"Die See");
    static_cast<TextField*>(
        model.FindField("Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiEmailWork"))
        ->SetText(u"a@b.c");
    const auto changed = meta_->Clone();
    model.Apply(*changed);
    std::string report;
    for (const kivxmp::Change& change : kivxmp::Compare(*meta_, *changed)) {
        report += kivxmp::PrintChange(change) + "\n";
    }
    EXPECT_EQ(report,
              "dc:title[@de]\t\"Das Meer\"\t\"Die See\"\n"
              "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiEmailWork\tnull\t\"a@b.c\"\n"
              "photoshop:City\tnull\t\"Köln\"\n");
    EXPECT_FALSE(meta_->IsChanged());
}

// A structure that loses its last member goes with it.
TEST_F(DialogModelTest, EmptiedStructureGoes)
{
    DialogModel& model = Make();
    static_cast<TextField*>(
        model.FindField("Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrCity"))
        ->SetText(u"");
    const auto changed = meta_->Clone();
    model.Apply(*changed);
    EXPECT_EQ(changed->Find("Iptc4xmpCore:CreatorContactInfo"), nullptr);
}

// A list where the structure is defined: one locked field, and the value survives.
TEST_F(DialogModelTest, WrongFormOfAStructure)
{
    DialogModel& model =
        Make({}, "<Iptc4xmpCore:CreatorContactInfo>Bonn</Iptc4xmpCore:CreatorContactInfo>");
    Field* const field = model.FindField("Iptc4xmpCore:CreatorContactInfo");
    ASSERT_NE(field, nullptr);
    EXPECT_TRUE(field->IsReadOnly());
    EXPECT_EQ(field->DisplayText(), u"Bonn");
}

TEST_F(DialogModelTest, FirstErrorFromTheCurrentViewOn)
{
    DialogModel& model = Make();
    EXPECT_FALSE(model.FirstError().has_value());
    Created().SetText(u"soon");
    model.EndEdits();
    model.SetCurrentView(1);
    const std::optional<SearchHit> error = model.FirstError();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->view, 0U);
    EXPECT_EQ(error->field, &Created());
}

class Watcher : public DialogModelObserver {
public:
    void FieldChanged(Field& field) override { log += "field " + field.Path() + "\n"; }
    void ModelChanged() override { log += "model\n"; }
    std::string log;
};

TEST_F(DialogModelTest, TellsItsObserver)
{
    DialogModel& model = Make();
    Watcher watcher;
    model.SetObserver(&watcher);
    City().SetText(u"Bonn");
    EXPECT_EQ(watcher.log, "field photoshop:City\nmodel\n");
    watcher.log.clear();
    model.SetCurrentView(1);
    model.SetCurrentView(1);
    model.SetCurrentView(99);
    EXPECT_EQ(watcher.log, "model\n");
    model.SetMessage(u"Oh");
    EXPECT_EQ(model.Message(), u"Oh");
    City().SetText(u"Rome");
    EXPECT_EQ(model.Message(), u"") << "the message was about what has changed since";
    model.SetObserver(nullptr);
}

// ---- preferences ----

class DialogPreferencesTest : public DialogModelTest {
protected:
    DialogModel& MakeWith(PropList& list, kivcore::UString client = u"Host")
    {
        DialogOptions options;
        options.preferences = &list;
        options.clientName = std::move(client);
        return Make(std::move(options));
    }
};

TEST_F(DialogPreferencesTest, RemembersTheView)
{
    PropList list;
    EXPECT_EQ(MakeWith(list).CurrentView(), 0U);
    model_->SetCurrentView(1);
    EXPECT_EQ(MakeWith(list).CurrentView(), 1U);
    list.Set("LastView", PropValue(kivcore::UString(u"com.orvan.xmp/gone")));
    EXPECT_EQ(MakeWith(list).CurrentView(), 0U);
}

TEST_F(DialogPreferencesTest, RemembersThePlaceOfEachHost)
{
    PropList list;
    EXPECT_EQ(MakeWith(list).RememberedPlace(), std::nullopt);
    const WindowPlace place{-10, 20, 880, 640, true};
    model_->RememberPlace(place);
    EXPECT_EQ(MakeWith(list).RememberedPlace(), place);
    EXPECT_EQ(MakeWith(list, u"Other").RememberedPlace(), std::nullopt);
}

TEST_F(DialogPreferencesTest, RemembersSizes)
{
    PropList list;
    DialogModel& model = MakeWith(list);
    EXPECT_EQ(model.NavigationWidth(), 200);
    model.SetNavigationWidth(1000);
    EXPECT_EQ(MakeWith(list).NavigationWidth(), 320);
    model_->RememberSize("heightOf/dc:description", 120);
    model_->RememberSize("wrong", -1);
    EXPECT_EQ(MakeWith(list).RememberedSize("heightOf/dc:description", 60), 120);
    EXPECT_EQ(model_->RememberedSize("wrong", 60), 60);
}

TEST_F(DialogPreferencesTest, WithoutAListNothingIsRemembered)
{
    DialogModel& model = Make();
    model.SetCurrentView(1);
    model.RememberPlace({0, 0, 880, 640, false});
    model.SetNavigationWidth(300);
    model.RememberSize("a", 5);
    EXPECT_EQ(model.RememberedPlace(), std::nullopt);
    EXPECT_EQ(model.NavigationWidth(), 200);
    EXPECT_EQ(model.RememberedSize("a", 7), 7);
}

// What others wrote into the file must neither break the dialog nor put it out of sight.
TEST_F(DialogPreferencesTest, GarbageIsIgnored)
{
    const PropValue garbage[] = {PropValue(true),
                                 PropValue(std::int64_t{1} << 60),
                                 PropValue(-5),
                                 PropValue(1e300),
                                 PropValue(kivcore::UString(u"\xD800")),
                                 PropValue(PropValue::Array{PropValue(1)}),
                                 PropValue(PropList())};
    for (const PropValue& value : garbage) {
        PropList list;
        for (const char* const name : {"Windows", "LastView", "NavigationWidth", "Sizes"}) {
            list.Set(name, value);
        }
        DialogModel& model = MakeWith(list);
        EXPECT_EQ(model.CurrentView(), 0U);
        EXPECT_EQ(model.RememberedPlace(), std::nullopt);
        EXPECT_EQ(model.NavigationWidth(), 200);
        EXPECT_EQ(model.RememberedSize("a", 7), 7);
        // And it is replaced by what makes sense.
        model.RememberPlace({0, 0, 880, 640, false});
        EXPECT_TRUE(model.RememberedPlace().has_value());
    }
    for (const char* const name : {"X", "Y", "Width", "Height"}) {
        PropList place;
        for (const char* const each : {"X", "Y", "Width", "Height"}) {
            place.Set(each, PropValue(std::string(each) == name ? 1'000'000 : 500));
        }
        PropList windows;
        windows.Set("Host", PropValue(place));
        PropList list;
        list.Set("Windows", PropValue(windows));
        EXPECT_EQ(MakeWith(list).RememberedPlace(), std::nullopt) << name;
    }
}

TEST_F(DialogPreferencesTest, ListsOfNamesDoNotGrowWithoutEnd)
{
    PropList list;
    DialogModel& model = MakeWith(list);
    for (int i = 0; i < 1000; ++i) {
        model.RememberSize("size" + std::to_string(i), 50);
    }
    EXPECT_LE(list.GetList("Sizes").Values().size(), 200U);
    EXPECT_EQ(model.RememberedSize("size999", 7), 50);
}

}  // namespace
}  // namespace kivmetadataui
