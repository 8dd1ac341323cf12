// The native fields of Windows: what goes in comes out as it does elsewhere, and what they would do
// by themselves does not show.

#include "framework/kivtoolkit/src/NativeText.h"

#include "framework/kivtoolkit/src/Accessible.h"
#include "framework/kivtoolkit/src/TextEntry.h"
#include "framework/kivtoolkit/src/WxPainter.h"
#include "framework/kivtoolkit/tests/ScriptedDialog.h"

#include <kivcore/StringConversion.h>

// Behind all others: it defines macros of common words.
#include <wx/access.h>
#include <wx/msw/private.h>

namespace kivtoolkit::tests {
namespace {

using kivmetadataui::DialogSurface;

HWND HandleOf(wxTextCtrl& text)
{
    return static_cast<HWND>(text.GetHandle());
}

kivmetadataui::DriverKeyPress Key(kivmetadataui::DriverKey key)
{
    kivmetadataui::DriverKeyPress press;
    press.key = key;
    return press;
}

class NativeTextOnWindows : public ToolkitTest {
protected:
    // Runs `step` with the control of the field at `path`, in an open dialog.
    static void With(const char* path, std::string_view properties,
                     const std::function<void(TextEntry& entry, DialogSurface& surface)>& step)
    {
        ScriptedDialog dialog(properties);
        bool wasOpen = false;
        dialog.Then([&](ScriptedDialog& s, DialogSurface& surface) {
            FieldView* view = ScriptedDialog::Window().Pages().Reveal(s.FieldAt(path));
            TextEntry* entry = view != nullptr ? view->EntryFor({}) : nullptr;
            ASSERT_NE(entry, nullptr);
            wasOpen = true;
            step(*entry, surface);
        });
        dialog.Show();
        EXPECT_TRUE(wasOpen);
        EXPECT_TRUE(dialog.failures.empty());
    }
};

struct RoundTripCase {
    const char* path;
    const char16_t* text;
    const char16_t* want;
};

TEST_F(NativeTextOnWindows, TextsComeOutAsTheyWentIn)
{
    const RoundTripCase cases[] = {
        {"t:long", u"", u""},
        {"t:long", u"one\ntwo\n\nfour\n", u"one\ntwo\n\nfour\n"},
        {"t:long", u"\n", u"\n"},
        {"t:long", u"tab\tand more", u"tab\tand more"},
        // Line ends of other systems come out as ours; the model knows that this is no edit.
        {"t:long", u"one\r\ntwo", u"one\ntwo"},
        {"t:text", u"one line", u"one line"},
        {"t:text", u"\u6E2F \U0001F600 \u0623 e\u0301", u"\u6E2F \U0001F600 \u0623 e\u0301"},
    };
    for (const RoundTripCase& row : cases) {
        SCOPED_TRACE(kivcore::string::UTF16to8(row.text));
        With(row.path, "", [&](TextEntry& entry, DialogSurface&) {
            entry.SetText(row.text);
            EXPECT_EQ(entry.Text(), row.want);
        });
    }
}

TEST_F(NativeTextOnWindows, LongTextsAreNotCut)
{
    kivcore::UString text;
    while (text.size() < 200000) {
        text += u"A line of some length, and the next one.\n";
    }
    With("t:long", "", [&](TextEntry& entry, DialogSurface& surface) {
        entry.SetText(text);
        EXPECT_EQ(entry.Text().size(), text.size());
        entry.SetFocus();
        entry.PutCaret(/*atEnd=*/true);
        surface.TypeText(u"end");
        EXPECT_EQ(entry.Text(), text + u"end") << "and typing goes on";
    });
}

TEST_F(NativeTextOnWindows, ControlASelectsAllOfSeveralLines)
{
    With("t:long", "<t:long>one&#10;two&#10;three</t:long>",
         [](TextEntry& entry, DialogSurface& surface) {
             entry.SetFocus();
             kivmetadataui::DriverKeyPress all;
             all.character = U'a';
             all.control = true;
             surface.PressKey(all);
             surface.TypeText(u"new");
             EXPECT_EQ(entry.Text(), u"new");
         });
}

TEST_F(NativeTextOnWindows, SeveralLinesAreShownFromTheFirst)
{
    With("t:long", "<t:long>1&#10;2&#10;3&#10;4&#10;5</t:long>",
         [](TextEntry& entry, DialogSurface&) {
             HWND handle = HandleOf(entry.Control());
             EXPECT_EQ(SendMessageW(handle, EM_GETFIRSTVISIBLELINE, 0, 0), 0);
             EXPECT_EQ(SendMessageW(handle, EM_GETLINECOUNT, 0, 0), 5);
             EXPECT_EQ(GetWindowLongPtrW(handle, GWL_STYLE) & (WS_VSCROLL | WS_HSCROLL), 0)
                 << "no bar of the system's";
         });
}

TEST_F(NativeTextOnWindows, ALongLineIsShownFromItsBeginning)
{
    const std::string line(300, 'w');
    With("t:text", "<t:text>" + line + "</t:text>", [](TextEntry& entry, DialogSurface& surface) {
        HWND handle = HandleOf(entry.Control());
        const auto beginning = [handle] {
            return static_cast<short>(LOWORD(SendMessageW(handle, EM_POSFROMCHAR, 0, 0)));
        };
        EXPECT_GE(beginning(), 0);
        entry.SetFocus();
        surface.PressKey(Key(kivmetadataui::DriverKey::kEnd));
        EXPECT_LT(beginning(), 0) << "the caret is in sight";
        ScriptedDialog::Window().Side().List().SetFocus();
        EXPECT_GE(beginning(), 0) << "without the focus";
        entry.SetFocus();
        EXPECT_LT(beginning(), 0) << "the caret is where it was";
        ScriptedDialog::Window().Side().List().SetFocus();
        entry.SetText(kivcore::UString(300, u'm'));
        EXPECT_GE(beginning(), 0);
        entry.SetFocus();
        surface.TypeText(u"end");
        EXPECT_EQ(entry.Text(), kivcore::UString(300, u'm') + u"end");
    });
}

TEST_F(NativeTextOnWindows, AnInputMethodAtWorkIsKnown)
{
    With("t:text", "", [](TextEntry& entry, DialogSurface&) {
        HWND handle = HandleOf(entry.Control());
        EXPECT_TRUE(entry.IsBlank());
        SendMessageW(handle, WM_IME_STARTCOMPOSITION, 0, 0);
        EXPECT_TRUE(IsComposing(entry.Control()));
        EXPECT_FALSE(entry.IsBlank()) << "the placeholder makes room";
        SendMessageW(handle, WM_IME_ENDCOMPOSITION, 0, 0);
        EXPECT_FALSE(IsComposing(entry.Control()));
        EXPECT_TRUE(entry.IsBlank());
    });
}

// What the object that the system hands to assistive technology answers for a window. Asked
// directly: Wine has no way to pass such objects on.
struct Told {
    wxString name;
    wxAccRole role = wxROLE_NONE;
    long state = 0;
};

Told Ask(wxWindow& window)
{
    Told told;
    wxAccessible* object = window.GetAccessible();
    if (object != nullptr) {
        object->GetName(0, &told.name);
        object->GetRole(0, &told.role);
        object->GetState(0, &told.state);
    }
    return told;
}

TEST_F(NativeTextOnWindows, AssistiveTechnologyGetsNamesRolesAndStates)
{
    ScriptedDialog dialog("<t:flag>True</t:flag>");
    dialog.Then([](ScriptedDialog& s, DialogSurface&) {
        DialogWindow& window = ScriptedDialog::Window();
        const Told ok = Ask(window.Bar().Ok());
        EXPECT_EQ(ok.name, "OK");
        EXPECT_EQ(ok.role, wxROLE_SYSTEM_PUSHBUTTON);
        const Told list = Ask(window.Side().List());
        EXPECT_EQ(list.name, "Views");
        EXPECT_EQ(list.role, wxROLE_SYSTEM_LIST);
        const Told search = Ask(window.Side().Search().Control());
        EXPECT_EQ(search.name, "Search");
        EXPECT_EQ(search.role, wxROLE_NONE) << "the native field knows what it is";
        std::vector<wxWindow*> stops;
        window.Pages().Reveal(s.FieldAt("t:flag"))->CollectStops(stops);
        ASSERT_FALSE(stops.empty());
        const Told flag = Ask(*stops.front());
        EXPECT_EQ(flag.role, wxROLE_SYSTEM_CHECKBUTTON);
        EXPECT_NE(flag.state & wxACC_STATE_SYSTEM_CHECKED, 0);
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty());
}

}  // namespace
}  // namespace kivtoolkit::tests
