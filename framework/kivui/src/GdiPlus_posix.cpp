// There is no GDI+ here: nothing to start, nothing to stop.

#include <kivui/GdiPlus.h>

namespace kivui::utility {

StartupShutdownGdiPlus::StartupShutdownGdiPlus() = default;

StartupShutdownGdiPlus::~StartupShutdownGdiPlus()
{
    token_ = 0;
}

}  // namespace kivui::utility
