// Own-drawn controls that hold a value: stars, a check box, and the closed form of a choice.

#pragma once

#include "framework/kivtoolkit/src/OwnControl.h"

#include <functional>
#include <optional>

namespace kivtoolkit {

/// A rating. A click on the star that is set takes the rating out; digits and arrows set it.
class StarsControl : public OwnControl {
public:
    StarsControl(Look& look, wxWindow& parent, int count,
                 std::function<void(std::optional<int>)> chosen);

    void SetValue(std::optional<int> stars);
    wxSize WantedSize();
    /// Where the star `index` (from 0) is clicked, in the control's pixels.
    wxPoint StarCenter(int index);

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint& at) override;
    void Point(const wxPoint& at, bool inside) override;
    bool PressKey(const wxKeyEvent& key) override;

private:
    int StarAt(const wxPoint& at);
    void Choose(std::optional<int> stars);

    int count_;
    std::optional<int> stars_;
    int hovered_ = 0;
    std::function<void(std::optional<int>)> chosen_;
};

/// Yes, no, or not set; a click goes on to the next of them.
class CheckControl : public OwnControl {
public:
    CheckControl(Look& look, wxWindow& parent, std::function<void(std::optional<bool>)> chosen);

    void SetValue(std::optional<bool> value, const kivcore::UString& label);
    wxSize WantedSize();

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint& at) override;

private:
    std::optional<bool> value_;
    kivcore::UString label_;
    std::function<void(std::optional<bool>)> chosen_;
};

/// Looks like a field and opens a list: a click, Space, Enter or an arrow key.
class DropControl : public OwnControl {
public:
    DropControl(Look& look, wxWindow& parent, std::function<void()> opened);

    void SetValue(const kivcore::UString& text, const kivcore::UString& placeholder);
    void SetError(bool hasError);

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint& at) override;
    bool PressKey(const wxKeyEvent& key) override;

private:
    kivcore::UString text_;
    kivcore::UString placeholder_;
    std::function<void()> opened_;
};

}  // namespace kivtoolkit
