#include "framework/kivtoolkit/src/PageItem.h"

#include "framework/kivtoolkit/src/NativeText.h"

#include <wx/app.h>
#include <wx/weakref.h>

namespace kivtoolkit {

namespace ui = kivui::ui;

void DeleteSoon(wxWindow* window)
{
    window->Hide();
    wxTheApp->CallAfter([gone = wxWeakRef<wxWindow>(window)] {
        if (gone) {
            gone->Destroy();
        }
    });
}

void HeadingItem::Draw(const ui::Drawing& drawing)
{
    ui::DrawTextLine(drawing, text_, FromWx(area_), role_);
}

int NoteItem::Measure(int width)
{
    lines_ = WrapText(look_.Font(ui::TextRole::kBody), text_, width);
    return static_cast<int>(lines_.size()) * look_.LineHeight(ui::TextRole::kBody);
}

void NoteItem::Draw(const ui::Drawing& drawing)
{
    DrawLines(drawing, lines_, FromWx(area_), ui::TextRole::kPlaceholder);
}

void DrawLines(const ui::Drawing& drawing, const std::vector<kivcore::UString>& lines,
               const ui::Rect& area, ui::TextRole role)
{
    ui::Rect line = area;
    line.height = ui::LineHeight(drawing, role);
    for (const kivcore::UString& text : lines) {
        ui::DrawTextLine(drawing, text, line, role);
        line.y += line.height;
    }
}

}  // namespace kivtoolkit
