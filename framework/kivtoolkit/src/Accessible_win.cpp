// The system's own object for a window answers whatever ours leaves open: place, focus, value, and
// all about native text but its name.

#include "framework/kivtoolkit/src/Accessible.h"

#include "framework/kivtoolkit/src/Texts.h"

#include <wx/access.h>

namespace kivtoolkit {

namespace {

struct RoleRow {
    AccessibleRole role;
    wxAccRole systemRole;
};

constexpr RoleRow kRoleRows[] = {
    {AccessibleRole::kButton, wxROLE_SYSTEM_PUSHBUTTON},
    {AccessibleRole::kCheck, wxROLE_SYSTEM_CHECKBUTTON},
    {AccessibleRole::kRadio, wxROLE_SYSTEM_RADIOBUTTON},
    {AccessibleRole::kList, wxROLE_SYSTEM_LIST},
    {AccessibleRole::kListItem, wxROLE_SYSTEM_LISTITEM},
    {AccessibleRole::kSlider, wxROLE_SYSTEM_SLIDER},
    {AccessibleRole::kMenu, wxROLE_SYSTEM_MENUPOPUP},
    {AccessibleRole::kPanel, wxROLE_SYSTEM_PANE},
    {AccessibleRole::kStatus, wxROLE_SYSTEM_STATUSBAR},
    {AccessibleRole::kLabel, wxROLE_SYSTEM_STATICTEXT},
};

// The window itself is child 0.
constexpr int kItself = 0;

class Description : public wxAccessible {
public:
    explicit Description(wxWindow& window) : wxAccessible(&window) {}

    void Set(AccessibleRole role, const wxString& name, const wxString& description)
    {
        const bool isOther = name != name_;
        role_ = role;
        name_ = name;
        description_ = description;
        if (isOther) {
            Tell(wxACC_EVENT_OBJECT_NAMECHANGE);
        }
    }
    void SetChecked(bool isChecked)
    {
        isChecked_ = isChecked;
        Tell(wxACC_EVENT_OBJECT_STATECHANGE);
    }
    const wxString& Name() const noexcept { return name_; }
    const wxString& Words() const noexcept { return description_; }

    wxAccStatus GetName(int child, wxString* name) override { return Give(child, name_, *name); }
    wxAccStatus GetDescription(int child, wxString* description) override
    {
        return Give(child, description_, *description);
    }
    wxAccStatus GetRole(int child, wxAccRole* role) override
    {
        for (const RoleRow& row : kRoleRows) {
            if (child == kItself && row.role == role_) {
                *role = row.systemRole;
                return wxACC_OK;
            }
        }
        return wxACC_NOT_IMPLEMENTED;  // native fields know what they are
    }
    wxAccStatus GetState(int child, long* state) override
    {
        if (child != kItself || role_ != AccessibleRole::kCheck) {
            return wxACC_NOT_IMPLEMENTED;
        }
        const wxWindow& window = *GetWindow();
        *state = wxACC_STATE_SYSTEM_FOCUSABLE;
        *state |= isChecked_ ? wxACC_STATE_SYSTEM_CHECKED : 0;
        *state |= window.HasFocus() ? wxACC_STATE_SYSTEM_FOCUSED : 0;
        *state |= window.IsShownOnScreen() ? 0 : wxACC_STATE_SYSTEM_INVISIBLE;
        return wxACC_OK;
    }

private:
    static wxAccStatus Give(int child, const wxString& text, wxString& result)
    {
        if (child != kItself || text.empty()) {
            return wxACC_NOT_IMPLEMENTED;
        }
        result = text;
        return wxACC_OK;
    }
    void Tell(int event) { NotifyEvent(event, GetWindow(), wxOBJID_CLIENT, kItself); }

    AccessibleRole role_ = AccessibleRole::kPanel;
    wxString name_;
    wxString description_;
    bool isChecked_ = false;
};

Description* FindDescription(const wxWindow& window)
{
    return dynamic_cast<Description*>(const_cast<wxWindow&>(window).GetAccessible());
}

Description& EnsureDescription(wxWindow& window)
{
    if (Description* known = FindDescription(window); known != nullptr) {
        return *known;
    }
    auto* description = new Description(window);
    window.SetAccessible(description);  // which owns it
    return *description;
}

}  // namespace

void DescribeControl(wxWindow& window, AccessibleRole role, kivcore::UStringView name,
                     kivcore::UStringView description)
{
    EnsureDescription(window).Set(role, ToWx(name), ToWx(description));
}

kivcore::UString AccessibleNameOf(const wxWindow& window)
{
    const Description* description = FindDescription(window);
    return description != nullptr ? FromWx(description->Name()) : kivcore::UString();
}

kivcore::UString AccessibleDescriptionOf(const wxWindow& window)
{
    const Description* description = FindDescription(window);
    return description != nullptr ? FromWx(description->Words()) : kivcore::UString();
}

void SetAccessibleChecked(wxWindow& window, bool isChecked)
{
    EnsureDescription(window).SetChecked(isChecked);
}

}  // namespace kivtoolkit
