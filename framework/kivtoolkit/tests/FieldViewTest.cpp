// Every kind of field, filled in by keys and clicks.

#include "framework/kivtoolkit/src/FieldView.h"

#include "framework/kivtoolkit/src/ListFieldView.h"
#include "framework/kivtoolkit/tests/ScriptedDialog.h"

namespace kivtoolkit::tests {
namespace {

using kivmetadataui::DialogSurface;
using kivmetadataui::DriverKey;
using kivmetadataui::DriverKeyPress;
using kivmetadataui::FieldPart;

DriverKeyPress Key(DriverKey key)
{
    DriverKeyPress press;
    press.key = key;
    return press;
}

class FieldViewTest : public ToolkitTest {};

struct TypeCase {
    const char* path;
    const char16_t* typed;
    const char* want;
};

constexpr TypeCase kTypeCases[] = {
    {"t:text", u"plain ASCII, 100 % {[\\]}", "plain ASCII, 100 % {[\\]}"},
    {"t:text", u"Fähre über Öresund – ß €", "Fähre über Öresund – ß €"},
    // Characters without a key are committed as an input method would.
    {"t:text", u"港の夕暮れ", "港の夕暮れ"},
    {"t:text", u"\U0001F600 one, two", "\U0001F600 one, two"},
    {"t:text", u"العربية", "العربية"},
    {"t:long", u"first\nsecond", "first\nsecond"},
    {"t:text", u"first\nsecond", "first second"},
    {"t:date", u"2024-05-17 14:30", "2024-05-17 14:30"},
    {"t:number", u"42", "42"},
    {"t:open", u"my own", "my own"},
    {"t:text", u"", ""},
};

TEST_F(FieldViewTest, Typing)
{
    for (const TypeCase& row : kTypeCases) {
        SCOPED_TRACE(row.want);
        ScriptedDialog dialog("<t:text>before</t:text>");
        dialog.Then([&](ScriptedDialog& s, DialogSurface& surface) {
            surface.TypeInto(s.FieldAt(row.path), {}, row.typed);
        });
        dialog.Show();
        EXPECT_EQ(dialog.Content(row.path), row.want);
        EXPECT_TRUE(dialog.failures.empty());
    }
}

TEST_F(FieldViewTest, Languages)
{
    ScriptedDialog dialog(
        "<t:alt><rdf:Alt><rdf:li xml:lang='x-default'>Sea</rdf:li>"
        "<rdf:li xml:lang='en'>Sea</rdf:li></rdf:Alt></t:alt>");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        surface.TypeInto(s.FieldAt("t:alt"), {FieldPart::Kind::kLanguage, "de", 0}, u"Meer");
        EXPECT_EQ(s.Content("t:alt"), "x-default=Sea|en=Sea|de=Meer");
        surface.TypeInto(s.FieldAt("t:alt"), {FieldPart::Kind::kLanguage, "en", 0}, u"Ocean");
        EXPECT_EQ(s.Content("t:alt"), "x-default=Sea|en=Ocean|de=Meer");
        surface.TypeInto(s.FieldAt("t:alt"), {FieldPart::Kind::kLanguage, "de", 0}, u"");
        EXPECT_EQ(s.Content("t:alt"), "x-default=Sea|en=Ocean");
        EXPECT_THROW(surface.TypeInto(s.FieldAt("t:alt"),
                                      {FieldPart::Kind::kLanguage, "not a tag", 0}, u"x"),
                     std::runtime_error);
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty()) << dialog.failures.front();
}

TEST_F(FieldViewTest, ListByTyping)
{
    ScriptedDialog dialog(
        "<t:order><rdf:Seq><rdf:li>a</rdf:li><rdf:li>b</rdf:li><rdf:li>c</rdf:li></rdf:Seq>"
        "</t:order>");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        kivmetadataui::Field& order = s.FieldAt("t:order");
        surface.TypeInto(order, {FieldPart::Kind::kNewItem, {}, 0}, u"d");
        EXPECT_EQ(s.Content("t:order"), "a|b|c|d");
        surface.TypeInto(order, {FieldPart::Kind::kItem, {}, 1}, u"Bär");
        EXPECT_EQ(s.Content("t:order"), "a|Bär|c|d");
        surface.RemoveItem(order, 0);
        EXPECT_EQ(s.Content("t:order"), "Bär|c|d");
        surface.TypeInto(order, {FieldPart::Kind::kItem, {}, 2}, u"");
        EXPECT_EQ(s.Content("t:order"), "Bär|c");
        EXPECT_THROW(surface.TypeInto(order, {FieldPart::Kind::kItem, {}, 2}, u"x"),
                     std::runtime_error);
        EXPECT_THROW(surface.RemoveItem(order, 2), std::runtime_error);
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty()) << dialog.failures.front();
}

TEST_F(FieldViewTest, ListByKeys)
{
    ScriptedDialog dialog(
        "<t:order><rdf:Seq><rdf:li>a</rdf:li><rdf:li>b</rdf:li><rdf:li>c</rdf:li></rdf:Seq>"
        "</t:order>");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        surface.TypeInto(s.FieldAt("t:order"), {FieldPart::Kind::kNewItem, {}, 0}, u"d");
        // Backspace in the empty entry goes to the last chip, the next one removes it.
        surface.PressKey(Key(DriverKey::kBackspace));
        EXPECT_EQ(s.Content("t:order"), "a|b|c|d");
        surface.PressKey(Key(DriverKey::kBackspace));
        EXPECT_EQ(s.Content("t:order"), "a|b|c");
        surface.PressKey(Key(DriverKey::kLeft));
        DriverKeyPress move = Key(DriverKey::kLeft);
        move.alt = true;
        surface.PressKey(move);
        EXPECT_EQ(s.Content("t:order"), "b|a|c");
        // Enter takes a chip into edit, Esc leaves it as it was and the dialog open.
        surface.PressKey(Key(DriverKey::kEnter));
        surface.TypeText(u"zzz");
        surface.PressKey(Key(DriverKey::kEscape));
        EXPECT_EQ(s.Content("t:order"), "b|a|c");
    });
    bool isOpenAfterwards = false;
    dialog.Then([&](auto&, auto&) { isOpenAfterwards = true; });
    dialog.Show();
    EXPECT_TRUE(isOpenAfterwards);
    EXPECT_TRUE(dialog.failures.empty()) << dialog.failures.front();
}

TEST_F(FieldViewTest, WhatIsBeingTypedIsHandedOver)
{
    ScriptedDialog dialog("");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        surface.TypeInto(s.FieldAt("t:list"), {FieldPart::Kind::kNewItem, {}, 0}, u"first");
        surface.TypeText(u"second");
        DriverKeyPress confirm = Key(DriverKey::kEnter);
        confirm.control = true;
        surface.PressKey(confirm);
    });
    EXPECT_EQ(dialog.Show(), kivmetadataui::DialogResult::kConfirmed);
    EXPECT_EQ(dialog.Content("t:list"), "first|second");
}

TEST_F(FieldViewTest, LongListsFoldAndUnfold)
{
    std::string items;
    for (int i = 0; i < 200; ++i) {
        items += "<rdf:li>keyword " + std::to_string(i) + "</rdf:li>";
    }
    ScriptedDialog dialog("<t:list><rdf:Bag>" + items + "</rdf:Bag></t:list>");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        FieldView* view = ScriptedDialog::Window().Pages().Reveal(s.FieldAt("t:list"));
        ASSERT_NE(view, nullptr);
        const int folded = view->Area().height;
        EXPECT_LT(folded, 180);
        // A chip that is folded away is unfolded to be removed.
        surface.RemoveItem(s.FieldAt("t:list"), 150);
        EXPECT_GT(view->Area().height, folded);
        EXPECT_LT(ScriptedDialog::Window().Pages().Current()->GetChildren().size(), 250U);
        EXPECT_EQ(static_cast<kivmetadataui::ListField&>(s.FieldAt("t:list")).Count(), 199U);
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty()) << dialog.failures.front();
}

TEST_F(FieldViewTest, Choices)
{
    ScriptedDialog dialog("");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        for (const char* path : {"t:closed", "t:open"}) {
            SCOPED_TRACE(path);
            surface.Choose(s.FieldAt(path), 2);
            EXPECT_EQ(s.Content(path), "8");
            surface.Choose(s.FieldAt(path), 0);
            EXPECT_EQ(s.Content(path), "1");
            surface.Choose(s.FieldAt(path), std::nullopt);
            EXPECT_EQ(s.Content(path), "");
        }
        EXPECT_THROW(surface.TypeInto(s.FieldAt("t:closed"), {}, u"Low"), std::runtime_error);
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty()) << dialog.failures.front();
}

TEST_F(FieldViewTest, RatingAndYesNo)
{
    ScriptedDialog dialog("<t:rating>2</t:rating>");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        for (const std::size_t stars : {5U, 1U, 1U, 3U}) {
            surface.Choose(s.FieldAt("t:rating"), stars);
            EXPECT_EQ(s.Content("t:rating"), std::to_string(stars));
        }
        surface.PressKey(Key(DriverKey::kRight));
        EXPECT_EQ(s.Content("t:rating"), "4");
        surface.Choose(s.FieldAt("t:rating"), std::nullopt);
        EXPECT_EQ(s.Content("t:rating"), "");
        surface.Choose(s.FieldAt("t:flag"), 0);
        EXPECT_EQ(s.Content("t:flag"), "False");
        surface.Choose(s.FieldAt("t:flag"), 1);
        EXPECT_EQ(s.Content("t:flag"), "True");
        surface.PressKey(Key(DriverKey::kSpace));
        EXPECT_EQ(s.Content("t:flag"), "False");
        surface.Choose(s.FieldAt("t:flag"), std::nullopt);
        EXPECT_EQ(s.Content("t:flag"), "");
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty()) << dialog.failures.front();
}

TEST_F(FieldViewTest, LongTextGrowsToItsLimit)
{
    ScriptedDialog dialog("");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        kivmetadataui::Field& field = s.FieldAt("t:long");
        FieldView* view = ScriptedDialog::Window().Pages().Reveal(field);
        ASSERT_NE(view, nullptr);
        const int three = view->Area().height;
        surface.TypeInto(field, {}, u"1\n2\n3");
        EXPECT_EQ(view->Area().height, three);
        surface.TypeInto(field, {}, u"1\n2\n3\n4\n5");
        const int five = view->Area().height;
        EXPECT_GT(five, three);
        surface.TypeInto(field, {}, u"1\n2\n3\n4\n5\n6\n7\n8");
        const int eight = view->Area().height;
        EXPECT_EQ((eight - five) * 2, (five - three) * 3) << "each line adds the same";
        surface.TypeInto(field, {}, u"1\n2\n3\n4\n5\n6\n7\n8\n9\n10");
        EXPECT_EQ(view->Area().height, eight);
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty()) << dialog.failures.front();
}

TEST_F(FieldViewTest, AClickElsewhereClosesAPopup)
{
    ScriptedDialog dialog("");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        surface.Choose(s.FieldAt("t:closed"), 1);
        surface.PressKey(Key(DriverKey::kDown));
        ASSERT_NE(ScriptedDialog::Window().Popup(), nullptr);
        surface.ChooseView(1);
        EXPECT_EQ(ScriptedDialog::Window().Popup(), nullptr);
        EXPECT_EQ(s.Content("t:closed"), "5");
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty());
}

TEST_F(FieldViewTest, ChoicesByLetter)
{
    ScriptedDialog dialog("");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        surface.Choose(s.FieldAt("t:closed"), 0);
        surface.PressKey(Key(DriverKey::kSpace));
        surface.TypeText(u"l");
        surface.PressKey(Key(DriverKey::kEnter));
        EXPECT_EQ(s.Content("t:closed"), "8");
        surface.PressKey(Key(DriverKey::kDown));
        surface.PressKey(Key(DriverKey::kHome));
        surface.PressKey(Key(DriverKey::kEnter));
        EXPECT_EQ(s.Content("t:closed"), "") << "the first entry empties the field";
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty());
}

TEST_F(FieldViewTest, TypingLeavesWhatIsTypedAloneUntilTheEditEnds)
{
    ScriptedDialog dialog("");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        kivmetadataui::Field& date = s.FieldAt("t:date");
        surface.TypeInto(date, {}, u"2024-05-17T14");
        surface.TypeText(u":30");
        EXPECT_EQ(s.Content("t:date"), "2024-05-17T14:30");
        surface.PressKey(Key(DriverKey::kEnter));
        EXPECT_EQ(s.Content("t:date"), "2024-05-17 14:30");
        surface.PressKey(Key(DriverKey::kEnd));
        surface.TypeText(u":05");
        EXPECT_EQ(s.Content("t:date"), "2024-05-17 14:30:05") << "the tidy text is shown";
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty());
}

TEST_F(FieldViewTest, OnlyWhatIsInSightHasWindows)
{
    std::string all;
    for (int i = 0; i < 3000; ++i) {
        all += "<t:p" + std::to_string(i) + ">v</t:p" + std::to_string(i) + ">";
    }
    ScriptedDialog dialog(all);
    dialog.Then([](auto&, DialogSurface& surface) { surface.ChooseView(2); });
    dialog.Then([](auto&, auto&) {
        Page& page = *ScriptedDialog::Window().Pages().Current();
        EXPECT_GE(page.Slots().size(), 3000U);
        EXPECT_LT(page.GetChildren().size(), 150U);
        EXPECT_GT(page.GetChildren().size(), 10U);
        page.ScrollBy(100000000);
        EXPECT_TRUE(page.GetClientRect().Intersects(page.Slots().back().item->Area()))
            << "the last row is in sight";
    });
    dialog.Then([](auto&, auto&) {
        EXPECT_LT(ScriptedDialog::Window().Pages().Current()->GetChildren().size(), 150U);
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty());
}

}  // namespace
}  // namespace kivtoolkit::tests
