#include "framework/kivtoolkit/src/Accessible.h"

#include <gtk/gtk.h>

#include <kivcore/StringConversion.h>

namespace kivtoolkit {

namespace {

AtkRole RoleOf(AccessibleRole role)
{
    switch (role) {
        case AccessibleRole::kButton:
            return ATK_ROLE_PUSH_BUTTON;
        case AccessibleRole::kCheck:
            return ATK_ROLE_CHECK_BOX;
        case AccessibleRole::kRadio:
            return ATK_ROLE_RADIO_BUTTON;
        case AccessibleRole::kList:
            return ATK_ROLE_LIST;
        case AccessibleRole::kListItem:
            return ATK_ROLE_LIST_ITEM;
        case AccessibleRole::kSlider:
            return ATK_ROLE_SLIDER;
        case AccessibleRole::kMenu:
            return ATK_ROLE_MENU;
        case AccessibleRole::kText:
            return ATK_ROLE_ENTRY;
        case AccessibleRole::kStatus:
            return ATK_ROLE_STATUSBAR;
        case AccessibleRole::kLabel:
            return ATK_ROLE_LABEL;
        case AccessibleRole::kPanel:
            break;
    }
    return ATK_ROLE_PANEL;
}

// The widget that takes the focus: inside the scrolled frame for a text of several lines.
AtkObject* AccessibleOf(const wxWindow& window)
{
    GtkWidget* widget = window.GetHandle();
    if (GTK_IS_SCROLLED_WINDOW(widget)) {
        GtkWidget* child = gtk_bin_get_child(GTK_BIN(widget));
        widget = child != nullptr ? child : widget;
    }
    return gtk_widget_get_accessible(widget);
}

}  // namespace

void DescribeControl(wxWindow& window, AccessibleRole role, kivcore::UStringView name,
                     kivcore::UStringView description)
{
    AtkObject* object = AccessibleOf(window);
    if (object == nullptr) {
        return;
    }
    if (role != AccessibleRole::kText) {  // native fields know what they are
        atk_object_set_role(object, RoleOf(role));
    }
    atk_object_set_name(object, kivcore::string::UTF16to8(name).c_str());
    atk_object_set_description(object, kivcore::string::UTF16to8(description).c_str());
}

kivcore::UString AccessibleNameOf(const wxWindow& window)
{
    AtkObject* object = AccessibleOf(window);
    const char* name = object != nullptr ? atk_object_get_name(object) : nullptr;
    return kivcore::string::UTF8to16(name != nullptr ? name : "");
}

kivcore::UString AccessibleDescriptionOf(const wxWindow& window)
{
    AtkObject* object = AccessibleOf(window);
    const char* description = object != nullptr ? atk_object_get_description(object) : nullptr;
    return kivcore::string::UTF8to16(description != nullptr ? description : "");
}

void SetAccessibleChecked(wxWindow& window, bool isChecked)
{
    if (AtkObject* object = AccessibleOf(window); object != nullptr) {
        atk_object_notify_state_change(object, ATK_STATE_CHECKED, isChecked ? TRUE : FALSE);
    }
}

}  // namespace kivtoolkit
