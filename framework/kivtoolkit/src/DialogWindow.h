// The dialog's window: list of views, page, bottom bar, and the keys that work everywhere in it.

#pragma once

#include "framework/kivmetadataui/src/ToolkitModule.h"
#include "framework/kivtoolkit/src/BottomBar.h"
#include "framework/kivtoolkit/src/Look.h"
#include "framework/kivtoolkit/src/PageStack.h"
#include "framework/kivtoolkit/src/PopupList.h"
#include "framework/kivtoolkit/src/SidePanel.h"
#include "framework/kivtoolkit/src/SystemWindow.h"

#include <functional>
#include <memory>
#include <vector>

#include <wx/dialog.h>
#include <wx/eventfilter.h>

namespace kivtoolkit {

class DialogWindow : public wxDialog,
                     public PopupHost,
                     private kivmetadataui::DialogModelObserver,
                     private wxEventFilter {
public:
    /// `host` may be null, and counts as null where there is no such window.
    DialogWindow(kivmetadataui::ShownDialog& dialog, HWND host);
    ~DialogWindow() override;

    /// Shows the window and returns when it is closed.
    kivmetadataui::DialogResult RunModal();
    /// Lets go of dialog and model; the object is not to be deleted. For a lost display, whose
    /// windows cannot be taken down.
    void Abandon();
    /// Closes the window as cancelled as soon as the loop turns.
    void CancelSoon();

    void OpenPopup(wxWindow& owner, const wxRect& anchor, std::vector<PopupItem> items,
                   std::function<void(std::size_t)> chosen) override;

    void ShowView(std::size_t view);
    PageStack& Pages() { return *pages_; }
    SidePanel& Side() { return *side_; }
    BottomBar& Bar() { return *bar_; }
    /// The list that is open; null where none is.
    PopupList* Popup() { return popup_; }
    Look& GetLook() { return *look_; }

private:
    void FieldChanged(kivmetadataui::Field& field) override;
    void ModelChanged() override;
    int FilterEvent(wxEvent& event) override;

    void Build();
    void SetPlace(HWND host);
    void RememberPlace();
    void Arrange();
    void UpdateWords();
    void CatchUp();
    void Search(const kivcore::UString& text);
    void ClosePopup();

    void HandleKey(wxKeyEvent& key);
    bool HandleControlKey(const wxKeyEvent& key);
    void MoveFocus(bool backwards);
    void FocusFirst();
    void TurnViews(bool backwards);
    void UndoOrRedo(bool isUndo);

    void Confirm();
    void Cancel();
    void EndWith(int result);
    void WindowLost();
    void BeginScript();
    void WaitForScript();

    kivmetadataui::ShownDialog& dialog_;
    kivmetadataui::DialogModel& model_;
    std::unique_ptr<Look> look_;
    std::unique_ptr<DarkSide> darkSide_;
    std::unique_ptr<HostHold> hold_;  // while the loop runs
    SidePanel* side_ = nullptr;       // windows are owned by this one
    SideEdge* edge_ = nullptr;
    BottomBar* bar_ = nullptr;
    std::unique_ptr<PageStack> pages_;
    PopupList* popup_ = nullptr;
    wxWindow* popupOwner_ = nullptr;
    int sideWidth_ = 0;  // design units
    wxSize arrangedSize_;
    std::vector<kivmetadataui::Field*> changedFields_;
    bool hasModelChanged_ = true;
    bool isCatchingUp_ = false;
    bool isClosing_ = false;
    bool hasScriptBegun_ = false;
    std::function<void()> stopWaiting_;
};

}  // namespace kivtoolkit
