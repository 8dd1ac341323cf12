// What a module of the user interface tells the node manager about itself.

#pragma once

#include <string>

#include <kivui/Export.h>

namespace kivui::ui {

struct ModuleInfo {
    std::string name;     ///< "kivmetadataui"
    std::string version;  ///< "0.1.0"
};

}  // namespace kivui::ui
