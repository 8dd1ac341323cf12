// GDI+ for as long as an object lives. There is nothing to start outside Windows.

#pragma once

#include <memory>

#include <kivui/Export.h>

namespace kivui::utility {

class KIVUI_API StartupShutdownGdiPlus {
public:
    /// Guards may overlap; each stands for one start. GDI+ gets no thread of its own.
    /// Throws std::runtime_error if the system cannot start it.
    StartupShutdownGdiPlus();
    StartupShutdownGdiPlus(const StartupShutdownGdiPlus&) = delete;
    StartupShutdownGdiPlus& operator=(const StartupShutdownGdiPlus&) = delete;
    ~StartupShutdownGdiPlus();

private:
    struct State;

    std::unique_ptr<State> state_;
};

}  // namespace kivui::utility
