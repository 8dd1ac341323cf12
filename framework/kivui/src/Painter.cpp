#include <kivui/Painter.h>

namespace kivui::ui {

Painter::~Painter() = default;

}  // namespace kivui::ui
