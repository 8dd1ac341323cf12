// There is no GDI+ here: nothing to start, nothing to stop.

#include <kivui/GdiPlus.h>

namespace kivui::utility {

struct StartupShutdownGdiPlus::State {};

StartupShutdownGdiPlus::StartupShutdownGdiPlus() = default;

StartupShutdownGdiPlus::~StartupShutdownGdiPlus() = default;

}  // namespace kivui::utility
