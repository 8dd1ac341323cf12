#include <kivui/Window.h>

namespace kivui::ui {

namespace {

constinit HINSTANCE instanceInUse = nullptr;

}  // namespace

void OS_Window::UI_Initialize(HINSTANCE instance) noexcept
{
    instanceInUse = instance;
}

HINSTANCE OS_Window::Instance() noexcept
{
    return instanceInUse;
}

}  // namespace kivui::ui
