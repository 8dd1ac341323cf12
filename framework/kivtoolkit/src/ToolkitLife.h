// The life of wxWidgets inside a foreign process: started at the first dialog, ended at the last
// terminate, as often as wanted. One that the host runs is used and left alone.

#pragma once

namespace kivtoolkit {

class ToolkitLife {
public:
    ToolkitLife() = default;
    ToolkitLife(const ToolkitLife&) = delete;
    ToolkitLife& operator=(const ToolkitLife&) = delete;

    /// Throws std::runtime_error with the reason if no window can be shown. A second call does
    /// nothing but look whether the display is still there.
    void Start();
    /// Silent when nothing was started.
    void Stop() noexcept;

private:
    bool isOurs_ = false;  // wxWidgets was started here
};

}  // namespace kivtoolkit
