// Skins: which theme documents the user interface takes its colours from.

#pragma once

#include <memory>

#include <kivui/Export.h>

namespace kivui::skins::core {

class KIVUI_API SkinManager {
public:
    SkinManager() = delete;

    /// Starts the skins of the given version and reads the newest theme document that the module of
    /// the registered node manager carries ("KIVCOLORTHEMESV5" down to "KIVCOLORTHEMESV2"). Without
    /// one, or where it is broken, colours are built in, and the reason is traced on "kivui".
    static void Initialize(int version);
    static bool IsInitialized() noexcept;
    static int Version() noexcept;
    /// Silent when nothing was started.
    static void Terminate() noexcept;
};

}  // namespace kivui::skins::core
