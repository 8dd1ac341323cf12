// What assistive technology is told of a control.

#pragma once

#include <wx/window.h>

#include <kivcore/UString.h>

namespace kivtoolkit {

enum class AccessibleRole {
    kButton,
    kCheck,
    kRadio,
    kList,
    kListItem,
    kSlider,
    kMenu,
    kPanel,
    kText,
    kStatus,
    kLabel,
};

/// Names `window` and what it is; nothing happens where the system has no assistive interface.
void DescribeControl(wxWindow& window, AccessibleRole role, kivcore::UStringView name,
                     kivcore::UStringView description);

/// The name that DescribeControl gave; empty where there is none. For tests.
kivcore::UString AccessibleNameOf(const wxWindow& window);

/// The description that it gave.
kivcore::UString AccessibleDescriptionOf(const wxWindow& window);

/// Marks a control as checked or not.
void SetAccessibleChecked(wxWindow& window, bool isChecked);

}  // namespace kivtoolkit
