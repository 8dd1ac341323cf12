// GDI+ for as long as an object lives. There is nothing to start outside Windows.

#pragma once

#include <cstdint>

#include <kivui/Export.h>

namespace kivui::utility {

class KIVUI_API StartupShutdownGdiPlus {
public:
    StartupShutdownGdiPlus();
    StartupShutdownGdiPlus(const StartupShutdownGdiPlus&) = delete;
    StartupShutdownGdiPlus& operator=(const StartupShutdownGdiPlus&) = delete;
    ~StartupShutdownGdiPlus();

private:
    std::uintptr_t token_ = 0;
};

}  // namespace kivui::utility
