// The window as a person meets it: keys, clicks, verdicts, what is remembered.

#include "framework/kivtoolkit/src/DialogWindow.h"

#include "framework/kivtoolkit/src/Accessible.h"
#include "framework/kivtoolkit/src/Texts.h"
#include "framework/kivtoolkit/tests/ScriptedDialog.h"

#include <wx/app.h>
#include <wx/display.h>

#include <kivcore/Locale.h>
#include <kivcore/StringConversion.h>

namespace kivtoolkit::tests {
namespace {

using kivmetadataui::DialogButton;
using kivmetadataui::DialogResult;
using kivmetadataui::DialogSurface;
using kivmetadataui::DriverKey;
using kivmetadataui::DriverKeyPress;

DriverKeyPress Key(DriverKey key, bool control = false, bool shift = false)
{
    DriverKeyPress press;
    press.key = key;
    press.control = control;
    press.shift = shift;
    return press;
}

DriverKeyPress Control(char32_t character, bool shift = false)
{
    DriverKeyPress press;
    press.character = character;
    press.control = true;
    press.shift = shift;
    return press;
}

// The name that assistive technology reads of what has the focus.
std::string FocusName()
{
    const wxWindow* focus = wxWindow::FindFocus();
    return focus == nullptr ? "nothing" : kivcore::string::UTF16to8(AccessibleNameOf(*focus));
}

class DialogWindowTest : public ToolkitTest {};

TEST_F(DialogWindowTest, OkConfirmsAndCancelCancels)
{
    ScriptedDialog ok("");
    ok.Then([](auto&, DialogSurface& surface) { surface.PressButton(DialogButton::kOk); });
    EXPECT_EQ(ok.Show(), DialogResult::kConfirmed);
    ScriptedDialog cancel("");
    cancel.Then([](auto&, DialogSurface& surface) { surface.PressButton(DialogButton::kCancel); });
    EXPECT_EQ(cancel.Show(), DialogResult::kCancelled);
    // A script that ends without a press.
    EXPECT_EQ(ScriptedDialog("").Show(), DialogResult::kCancelled);
}

struct KeyCase {
    const char* name;
    DriverKeyPress press;
    DialogResult want;
};

TEST_F(DialogWindowTest, KeysThatClose)
{
    const KeyCase cases[] = {
        {"Esc", Key(DriverKey::kEscape), DialogResult::kCancelled},
        {"Ctrl+Enter", Key(DriverKey::kEnter, true), DialogResult::kConfirmed},
        // Enter ends the edit of the field and leaves the dialog open; the script's end cancels.
        {"Enter", Key(DriverKey::kEnter), DialogResult::kCancelled},
    };
    for (const KeyCase& row : cases) {
        SCOPED_TRACE(row.name);
        ScriptedDialog dialog("");
        bool isOpenAfterwards = false;
        dialog.Then([&](auto&, DialogSurface& surface) { surface.PressKey(row.press); });
        dialog.Then([&](auto&, auto&) { isOpenAfterwards = true; });
        EXPECT_EQ(dialog.Show(), row.want);
        EXPECT_EQ(isOpenAfterwards, std::string(row.name) == "Enter");
    }
}

TEST_F(DialogWindowTest, ARefusedConfirmLeavesItOpenAndShowsTheError)
{
    ScriptedDialog dialog("");
    dialog
        .Then([](ScriptedDialog& s, DialogSurface& surface) {
            surface.TypeInto(s.FieldAt("t:date"), {}, u"2024-02-31");
            surface.ChooseView(1);
        })
        .Then([](auto&, DialogSurface& surface) { surface.PressButton(DialogButton::kOk); })
        .Then([](ScriptedDialog& s, DialogSurface& surface) {
            EXPECT_EQ(s.Model().CurrentView(), 0U) << "the view with the error is opened";
            EXPECT_EQ(FocusName(), "date");
            EXPECT_FALSE(s.Model().Message().empty());
            surface.TypeInto(s.FieldAt("t:date"), {}, u"2024-02-28");
            surface.PressButton(DialogButton::kOk);
        });
    EXPECT_EQ(dialog.Show(), DialogResult::kConfirmed);
    EXPECT_EQ(dialog.Content("t:date"), "2024-02-28");
}

TEST_F(DialogWindowTest, AFailingCallbackLeavesItOpenWithAMessage)
{
    ScriptedDialog dialog("");
    bool isOpenAfterwards = false;
    dialog.Then([](auto&, auto&) {
        ScriptedDialog::Window().GetLook().Run([] { throw std::runtime_error("it broke"); });
    });
    dialog.Then([&](ScriptedDialog& s, auto&) {
        isOpenAfterwards = true;
        EXPECT_EQ(s.Model().Message(), u"it broke");
    });
    dialog.Show();
    EXPECT_TRUE(isOpenAfterwards);
    EXPECT_EQ(dialog.failures, std::vector<std::string>{"it broke"});
}

TEST_F(DialogWindowTest, ViewsByKeys)
{
    ScriptedDialog dialog("");
    dialog
        .Then([](ScriptedDialog& s, DialogSurface& surface) {
            EXPECT_EQ(s.Model().CurrentView(), 0U);
            surface.PressKey(Control(U'2'));
            EXPECT_EQ(s.Model().CurrentView(), 1U);
            surface.PressKey(Key(DriverKey::kTab, true));
            EXPECT_EQ(s.Model().CurrentView(), 2U) << "the list of all properties";
            surface.PressKey(Key(DriverKey::kTab, true));
            EXPECT_EQ(s.Model().CurrentView(), 0U);
            surface.PressKey(Key(DriverKey::kTab, true, true));
            EXPECT_EQ(s.Model().CurrentView(), 2U);
            surface.PressKey(Control(U'9'));
            EXPECT_EQ(s.Model().CurrentView(), 2U) << "there is no ninth view";
        })
        .Then([](ScriptedDialog& s, DialogSurface& surface) {
            ScriptedDialog::Window().Side().List().SetFocus();
            surface.PressKey(Key(DriverKey::kHome));
            EXPECT_EQ(s.Model().CurrentView(), 0U);
            surface.PressKey(Key(DriverKey::kDown));
            EXPECT_EQ(s.Model().CurrentView(), 1U);
            EXPECT_EQ(FocusName(), "Views") << "arrows stay in the list";
        });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty());
}

TEST_F(DialogWindowTest, TabGoesThroughEverythingInReadingOrderAndAround)
{
    ScriptedDialog dialog("<t:fixed>F</t:fixed>");
    std::vector<std::string> names;
    dialog.Then([&](auto&, DialogSurface& surface) {
        surface.PressKey(Control(U'f'));
        for (int i = 0; i < 19; ++i) {
            names.push_back(FocusName());
            surface.PressKey(Key(DriverKey::kTab));
        }
        EXPECT_EQ(FocusName(), names.front()) << "around";
        surface.PressKey(Key(DriverKey::kTab, false, true));
        EXPECT_EQ(FocusName(), names.back()) << "and back";
    });
    dialog.Show();
    std::vector<std::string> want = {"Search", "Views",
                                     "text",   "long",
                                     "alt",    "Language: Default",
                                     "rights", "Language: Default",
                                     "list",   "order",
                                     "closed", "open",
                                     "date",   "number",
                                     "rating", "flag",
                                     "fixed"};
    for (const char* button : {"Cancel", "OK"}) {
        want.insert(ConfirmingButtonStandsLast() ? want.end() : want.begin() + 17, button);
    }
    EXPECT_EQ(names, want);
}

TEST_F(DialogWindowTest, SearchFindsAndEscClearsBeforeItCancels)
{
    ScriptedDialog dialog("");
    dialog
        .Then([](auto&, DialogSurface& surface) {
            surface.PressKey(Control(U'f'));
            surface.TypeText(u"other");
        })
        .Then([](ScriptedDialog& s, DialogSurface& surface) {
            EXPECT_TRUE(ScriptedDialog::Window().Pages().IsSearchShown());
            // Enter goes to what was found, which can be edited there.
            surface.PressKey(Key(DriverKey::kEnter));
            EXPECT_EQ(FocusName(), "other");
            surface.TypeText(u"x");
            EXPECT_EQ(s.Content("t:other"), "x");
            surface.PressKey(Key(DriverKey::kEscape));
            EXPECT_FALSE(ScriptedDialog::Window().Pages().IsSearchShown());
            surface.PressKey(Key(DriverKey::kEscape));
        })
        .Then([](auto&, auto&) { FAIL() << "the second Esc cancels"; });
    EXPECT_EQ(dialog.Show(), DialogResult::kCancelled);
}

TEST_F(DialogWindowTest, EscClosesAPopupFirst)
{
    ScriptedDialog dialog("");
    bool isOpenAfterwards = false;
    dialog
        .Then([](auto&, DialogSurface& surface) {
            surface.PressKey(Control(U'f'));
            for (int i = 0; i < 10; ++i) {
                surface.PressKey(Key(DriverKey::kTab));
            }
            EXPECT_EQ(FocusName(), "closed");
            surface.PressKey(Key(DriverKey::kDown));
            EXPECT_NE(ScriptedDialog::Window().Popup(), nullptr);
            surface.PressKey(Key(DriverKey::kEscape));
            EXPECT_EQ(ScriptedDialog::Window().Popup(), nullptr);
        })
        .Then([&](auto&, auto&) { isOpenAfterwards = true; });
    dialog.Show();
    EXPECT_TRUE(isOpenAfterwards);
    EXPECT_TRUE(dialog.failures.empty());
}

TEST_F(DialogWindowTest, UndoAndRedo)
{
    ScriptedDialog dialog("<t:text>old</t:text>");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        surface.TypeInto(s.FieldAt("t:text"), {}, u"new");
        EXPECT_EQ(s.Content("t:text"), "new");
        surface.PressKey(Control(U'z'));
        EXPECT_EQ(s.Content("t:text"), "old");
        surface.PressKey(Control(U'z', true));
        EXPECT_EQ(s.Content("t:text"), "new");
        surface.PressKey(Control(U'z'));
        surface.PressKey(Control(U'y'));
        EXPECT_EQ(s.Content("t:text"), "new");
        // What is shown went along.
        surface.PressKey(Key(DriverKey::kEnd));
        surface.TypeText(u"er");
        EXPECT_EQ(s.Content("t:text"), "newer");
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty());
}

TEST_F(DialogWindowTest, TitleAndSummaryFollowTheChanges)
{
    ScriptedDialog dialog("");
    dialog.Then([](ScriptedDialog& s, DialogSurface& surface) {
        DialogWindow& window = ScriptedDialog::Window();
        EXPECT_EQ(window.GetTitle(), "sea.jpg");
        surface.TypeInto(s.FieldAt("t:text"), {}, u"x");
        EXPECT_EQ(window.GetTitle(), ToWx(s.Model().WindowTitle()));
        EXPECT_NE(window.GetTitle(), "sea.jpg");
        EXPECT_EQ(AccessibleNameOf(window.Bar()), s.Model().SummaryText());
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty());
}

TEST_F(DialogWindowTest, FirstFocusIsTheFirstEmptyField)
{
    ScriptedDialog dialog("<t:text>x</t:text>");
    dialog.Then([](auto&, auto&) { EXPECT_EQ(FocusName(), "long"); });
    dialog.Show();
}

TEST_F(DialogWindowTest, ReadOnlyHasNoOk)
{
    kivmetadataui::DialogOptions options;
    options.isReadOnly = true;
    ScriptedDialog dialog("<t:text>x</t:text>", options);
    bool isOpenAfterwards = false;
    dialog
        .Then([](auto&, DialogSurface& surface) {
            EXPECT_THROW(surface.PressButton(DialogButton::kOk), std::runtime_error);
            surface.PressKey(Key(DriverKey::kEnter, true));
        })
        .Then([&](ScriptedDialog& s, DialogSurface& surface) {
            isOpenAfterwards = true;
            EXPECT_THROW(surface.TypeInto(s.FieldAt("t:text"), {}, u"y"), std::runtime_error);
        });
    EXPECT_EQ(dialog.Show(), DialogResult::kCancelled);
    EXPECT_TRUE(isOpenAfterwards);
    EXPECT_EQ(dialog.Content("t:text"), "x");
}

TEST_F(DialogWindowTest, PlaceIsRememberedAndFitsTheScreen)
{
    kivcore::proplist::PropList preferences;
    kivmetadataui::DialogOptions options;
    options.preferences = &preferences;
    options.clientName = u"host";
    wxSize client;
    wxPoint corner;
    ScriptedDialog first("", options);
    first.Then([&](auto&, auto&) {
        DialogWindow& window = ScriptedDialog::Window();
        client = window.GetClientSize();
        EXPECT_EQ(client, wxSize(880, 640));
        window.SetClientSize(700, 500);
        window.Move(120, 90);
    });
    first.Then([&](auto&, auto&) {});
    first.Then([&](auto&, auto&) {
        client = ScriptedDialog::Window().GetClientSize();
        corner = ScriptedDialog::Window().GetPosition();
    });
    first.Show();
    EXPECT_EQ(client, wxSize(700, 500));
    ScriptedDialog second("", options);
    second.Then([&](auto&, auto&) {});
    second.Then([&](auto&, auto&) {
        EXPECT_EQ(ScriptedDialog::Window().GetClientSize(), client);
        EXPECT_EQ(ScriptedDialog::Window().GetPosition(), corner);
    });
    second.Show();

    // Larger than the screen, and on one that is gone.
    ScriptedDialog distant("", options);
    distant.Model().RememberPlace({100000, -5000, 9000, 9000, false});
    distant.Then([&](auto&, auto&) {
        const wxRect area = wxDisplay(0U).GetClientArea();
        const wxRect window = ScriptedDialog::Window().GetRect();
        EXPECT_TRUE(area.Contains(window))
            << window.x << " " << window.y << " " << window.width << " " << window.height;
    });
    distant.Show();
}

TEST_F(DialogWindowTest, CancelFromOutsideEndsTheLoop)
{
    ScriptedDialog dialog("");
    dialog.Then(
        [](auto&, auto&) { KivToolkitOpen(kivmetadataui::kToolkitVersion)->CancelDialog(); });
    for (int i = 0; i < 5; ++i) {
        dialog.Then([](auto&, auto&) {});
    }
    dialog.Then([](auto&, auto&) { FAIL() << "it should be closed"; });
    EXPECT_EQ(dialog.Show(), DialogResult::kCancelled);
}

TEST_F(DialogWindowTest, EveryScaleAndBrightnessOpens)
{
    for (const float scale : {0.5F, 1.5F, 4.0F}) {
        SCOPED_TRACE(scale);
        SetScale(scale);
        SetBrightness(scale / 4);
        ScriptedDialog dialog("");
        bool wasOpen = false;
        dialog.Then([&](auto&, auto&) {
            wasOpen = true;
            EXPECT_EQ(ScriptedDialog::Window().GetLook().Scale(), scale);
            const wxRect area = wxDisplay(0U).GetClientArea();
            EXPECT_TRUE(area.Contains(ScriptedDialog::Window().GetRect()));
        });
        dialog.Show();
        EXPECT_TRUE(wasOpen);
    }
}

TEST_F(DialogWindowTest, MirroredForRightToLeft)
{
    kivcore::Locale::Initialize(u"ar_EG", {});
    ScriptedDialog dialog("");
    dialog.Then([](auto&, auto&) {
        DialogWindow& window = ScriptedDialog::Window();
        EXPECT_GT(window.Side().GetPosition().x, window.Pages().Current()->GetPosition().x);
        EXPECT_EQ(window.Bar().Ok().GetPosition().x < window.Bar().Cancel().GetPosition().x,
                  ConfirmingButtonStandsLast());
    });
    dialog.Show();
    kivcore::Locale::Reset();
    EXPECT_TRUE(dialog.failures.empty());
}

TEST_F(DialogWindowTest, ManyRounds)
{
    for (int round = 0; round < 15; ++round) {
        ScriptedDialog dialog("");
        dialog.Then([&](ScriptedDialog& s, DialogSurface& surface) {
            surface.TypeInto(s.FieldAt("t:text"), {}, u"x");
            surface.ChooseView(1);
        });
        dialog.Then([](auto&, DialogSurface& surface) { surface.PressButton(DialogButton::kOk); });
        ASSERT_EQ(dialog.Show(), DialogResult::kConfirmed);
        if (round % 5 == 4) {
            KivToolkitOpen(kivmetadataui::kToolkitVersion)->Stop();
            EXPECT_EQ(wxAppConsole::GetInstance(), nullptr);
            KivToolkitOpen(kivmetadataui::kToolkitVersion)->Start();
        }
    }
}

}  // namespace
}  // namespace kivtoolkit::tests
