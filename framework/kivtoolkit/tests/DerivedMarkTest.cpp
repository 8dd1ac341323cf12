// Values that the packet lacks: their mark on the page and in the list of all properties, and the
// note on the photo in the bottom bar.

#include "framework/kivtoolkit/src/QuietWords.h"

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivtoolkit/src/Accessible.h"
#include "framework/kivtoolkit/src/FieldView.h"
#include "framework/kivtoolkit/src/Texts.h"
#include "framework/kivtoolkit/tests/ScriptedDialog.h"

#include <wx/tooltip.h>

#include <kivcore/Locale.h>
#include <kivcore/StringConversion.h>
#include <kivxmp/PhotoFile.h>

namespace kivtoolkit::tests {
namespace {

using kivmetadataui::DialogSurface;
using kivmetadataui::FieldPart;

constexpr char16_t kMark[] = u"Sidecar";
constexpr char16_t kDetail[] = u"From the sidecar sea.jpg.xmp";

/// The ones that are seen.
std::vector<QuietWords*> WordsIn(wxWindow& parent)
{
    std::vector<QuietWords*> found;
    for (wxWindow* child : parent.GetChildren()) {
        if (auto* words = dynamic_cast<QuietWords*>(child); words != nullptr && words->IsShown()) {
            found.push_back(words);
        }
    }
    return found;
}

std::vector<QuietWords*> Marks()
{
    return WordsIn(*ScriptedDialog::Window().Pages().Current());
}

kivcore::UString TooltipOf(const wxWindow& window)
{
    return window.GetToolTip() == nullptr ? kivcore::UString()
                                          : FromWx(window.GetToolTip()->GetTip());
}

class DerivedMarkTest : public ToolkitTest {
protected:
    /// A photo without a packet beside a sidecar with these properties.
    std::unique_ptr<__XMPMeta__> Photo(std::string_view properties) const
    {
        folder_.Write("sea.jpg", std::string("\xFF\xD8\xFF\xDA\0\2\xFF\xD9", 8));
        folder_.Write("sea.jpg.xmp", ScriptedDialog::Packet(properties));
        return kivxmp::OpenPhoto(folder_.Path("sea.jpg"));
    }

private:
    const kivcore::testing::TestFolder folder_;
};

using Edit = std::function<void(ScriptedDialog& dialog, DialogSurface& surface)>;

Edit Typed(const char* path, const char16_t* text, const FieldPart& part = {})
{
    return [=](ScriptedDialog& s, DialogSurface& surface) {
        surface.TypeInto(s.FieldAt(path), part, text);
    };
}

Edit Chosen(const char* path, std::size_t index)
{
    return
        [=](ScriptedDialog& s, DialogSurface& surface) { surface.Choose(s.FieldAt(path), index); };
}

struct KindCase {
    const char* path;
    const char* property;
    Edit edit;
};

std::vector<KindCase> KindCases()
{
    return {
        {"t:text", "<t:text>a</t:text>", Typed("t:text", u"b")},
        {"t:long", "<t:long>a</t:long>", Typed("t:long", u"b")},
        {"t:alt", "<t:alt><rdf:Alt><rdf:li xml:lang='x-default'>a</rdf:li></rdf:Alt></t:alt>",
         Typed("t:alt", u"b", {FieldPart::Kind::kLanguage, "de", 0})},
        {"t:list", "<t:list><rdf:Bag><rdf:li>a</rdf:li></rdf:Bag></t:list>",
         Typed("t:list", u"b", {FieldPart::Kind::kNewItem, {}, 0})},
        {"t:order", "<t:order><rdf:Seq><rdf:li>a</rdf:li></rdf:Seq></t:order>",
         Typed("t:order", u"b", {FieldPart::Kind::kItem, {}, 0})},
        {"t:closed", "<t:closed>5</t:closed>", Chosen("t:closed", 0)},
        {"t:open", "<t:open>5</t:open>", Typed("t:open", u"b")},
        {"t:date", "<t:date>2024</t:date>", Typed("t:date", u"2025")},
        {"t:number", "<t:number>1</t:number>", Typed("t:number", u"2")},
        {"t:rating", "<t:rating>1</t:rating>", Chosen("t:rating", 2)},
        {"t:flag", "<t:flag>True</t:flag>", Chosen("t:flag", 0)},
    };
}

TEST_F(DerivedMarkTest, EachKindIsMarkedWhileItIsDerived)
{
    for (const KindCase& row : KindCases()) {
        SCOPED_TRACE(row.path);
        ScriptedDialog dialog(Photo(row.property));
        int seen = 0;
        // Steps run when everything is painted, so what each one left is looked at by the next.
        dialog.Then([&](ScriptedDialog& s, DialogSurface& surface) {
            const std::vector<QuietWords*> marks = Marks();
            ASSERT_EQ(marks.size(), 1u);
            EXPECT_EQ(marks[0]->Text(), kMark);
            EXPECT_EQ(TooltipOf(*marks[0]), kDetail);
            EXPECT_EQ(AccessibleNameOf(*marks[0]), kMark);
            EXPECT_EQ(AccessibleDescriptionOf(*marks[0]), kDetail);
            EXPECT_FALSE(marks[0]->AcceptsFocus());
            FieldView* const view = ScriptedDialog::Window().Pages().Reveal(s.FieldAt(row.path));
            ASSERT_NE(view, nullptr);
            std::vector<wxWindow*> stops;
            view->CollectStops(stops);
            ASSERT_FALSE(stops.empty());
            EXPECT_NE(AccessibleDescriptionOf(*stops.front()).find(kDetail),
                      kivcore::UString::npos);
            row.edit(s, surface);
            ++seen;
        });
        dialog.Then([&](ScriptedDialog& s, auto&) {
            EXPECT_TRUE(s.FieldAt(row.path).IsChanged());
            EXPECT_TRUE(Marks().empty());
            s.FieldAt(row.path).Revert();
            ++seen;
        });
        dialog.Then([&](ScriptedDialog& s, auto&) {
            EXPECT_TRUE(s.FieldAt(row.path).IsDerived());
            EXPECT_EQ(Marks().size(), 1u);
            ++seen;
        });
        dialog.Show();
        EXPECT_EQ(seen, 3);
        EXPECT_TRUE(dialog.failures.empty());
    }
}

TEST_F(DerivedMarkTest, ReadOnlyFieldsAreMarkedToo)
{
    kivmetadataui::DialogOptions options;
    options.isReadOnly = true;
    ScriptedDialog dialog(Photo("<t:fixed>a</t:fixed><t:rating>3</t:rating>"), std::move(options));
    std::size_t marks = 0;
    dialog.Then([&](auto&, auto&) { marks = Marks().size(); });
    dialog.Show();
    EXPECT_EQ(marks, 2u);
}

TEST_F(DerivedMarkTest, WhatThePacketHoldsIsNotMarked)
{
    ScriptedDialog dialog("<t:text>a</t:text>");
    bool wasOpen = false;
    dialog.Then([&](auto&, auto&) {
        wasOpen = true;
        EXPECT_TRUE(Marks().empty());
        EXPECT_TRUE(WordsIn(ScriptedDialog::Window().Bar()).empty());
    });
    dialog.Show();
    EXPECT_TRUE(wasOpen);
}

// Beside the label and above the field, whole, in both directions and at each scale.
TEST_F(DerivedMarkTest, StandsBesideItsLabel)
{
    for (const char16_t* const locale : {u"en_US", u"ar_EG"}) {
        for (const float scale : {1.0F, 1.5F, 2.0F}) {
            SCOPED_TRACE(kivcore::string::UTF16to8(locale) + std::to_string(scale));
            SetScale(scale);
            kivcore::Locale::Initialize(locale, {});
            ScriptedDialog dialog(Photo("<t:text>a</t:text>"));
            bool wasOpen = false;
            dialog.Then([&](ScriptedDialog& s, auto&) {
                wasOpen = true;
                DialogWindow& window = ScriptedDialog::Window();
                const std::vector<QuietWords*> marks = Marks();
                ASSERT_EQ(marks.size(), 1u);
                FieldView* const view = window.Pages().Reveal(s.FieldAt("t:text"));
                ASSERT_NE(view, nullptr);
                const wxRect mark = marks[0]->VisibleRect();
                EXPECT_TRUE(view->Area().Contains(mark));
                EXPECT_EQ(mark.GetSize(), marks[0]->WantedSize());
                EXPECT_EQ(mark.y, view->Area().y);
                const bool isLeft =
                    mark.x + mark.width / 2 < view->Area().x + view->Area().width / 2;
                EXPECT_EQ(isLeft, !window.GetLook().IsMirrored());
                std::vector<wxWindow*> stops;
                view->CollectStops(stops);
                EXPECT_FALSE(mark.Intersects(stops.front()->GetRect()));
            });
            dialog.Show();
            kivcore::Locale::Reset();
            EXPECT_TRUE(wasOpen);
        }
    }
}

TEST_F(DerivedMarkTest, TheListOfAllPropertiesMarksItsRows)
{
    ScriptedDialog dialog(Photo("<t:text>a</t:text><t:unknown>b</t:unknown>"));
    std::size_t marks = 0;
    dialog.Then([&](ScriptedDialog& s, DialogSurface& surface) {
        surface.ChooseView(s.Model().Views().size() - 1);
    });
    dialog.Then([&](auto&, auto&) {
        for (const QuietWords* mark : Marks()) {
            ++marks;
            EXPECT_EQ(mark->Text(), kMark);
            EXPECT_EQ(TooltipOf(*mark), kDetail);
        }
    });
    dialog.Show();
    EXPECT_EQ(marks, 2u);
    EXPECT_TRUE(dialog.failures.empty());
}

TEST_F(DerivedMarkTest, AVeryLongListKeepsMarksInSightOnly)
{
    std::string properties;
    for (int i = 0; i < 300; ++i) {
        const std::string name = "t:p" + std::to_string(i);
        properties += "<" + name + ">a</" + name + ">";
    }
    ScriptedDialog dialog(Photo(properties));
    std::size_t first = 0;
    std::size_t last = 0;
    dialog.Then([&](ScriptedDialog& s, DialogSurface& surface) {
        surface.ChooseView(s.Model().Views().size() - 1);
    });
    dialog.Then([&](auto&, auto&) {
        first = Marks().size();
        ScriptedDialog::Window().Pages().RevealRow(299);
    });
    dialog.Then([&](auto&, auto&) { last = Marks().size(); });
    dialog.Show();
    EXPECT_GT(first, 10u);
    EXPECT_LT(first, 100u);
    EXPECT_GT(last, 10u);
    EXPECT_LT(last, 100u);
}

TEST_F(DerivedMarkTest, TheBottomBarTellsOfTheSidecar)
{
    ScriptedDialog dialog(Photo("<t:text>a</t:text>"));
    int seen = 0;
    wxRect alone;
    dialog.Then([&](ScriptedDialog& s, DialogSurface& surface) {
        const std::vector<QuietWords*> notes = WordsIn(ScriptedDialog::Window().Bar());
        ASSERT_EQ(notes.size(), 1u);
        EXPECT_EQ(notes[0]->Text(), u"The sidecar sea.jpg.xmp adds 1 property");
        EXPECT_EQ(TooltipOf(*notes[0]), s.Model().Note().detail);
        EXPECT_EQ(AccessibleDescriptionOf(*notes[0]), s.Model().Note().detail);
        EXPECT_EQ(notes[0]->VisibleRect().GetSize(), notes[0]->WantedSize());
        alone = notes[0]->VisibleRect();
        surface.TypeInto(s.FieldAt("t:text"), {}, u"b");
        ++seen;
    });
    dialog.Then([&](ScriptedDialog& s, auto&) {
        const std::vector<QuietWords*> notes = WordsIn(ScriptedDialog::Window().Bar());
        ASSERT_EQ(notes.size(), 1u);
        EXPECT_GT(notes[0]->VisibleRect().x, alone.x + 20);  // behind the summary
        s.Model().SetMessage(u"That did not work.");
        ++seen;
    });
    dialog.Then([&](auto&, auto&) {
        EXPECT_TRUE(WordsIn(ScriptedDialog::Window().Bar()).empty());
        ++seen;
    });
    dialog.Show();
    EXPECT_EQ(seen, 3);
    EXPECT_TRUE(dialog.failures.empty());
}

}  // namespace
}  // namespace kivtoolkit::tests
