// A host of the dialog for tests: the framework without the library, the real module, a script.

#pragma once

#include <functional>
#include <memory>
#include <string>

#include <kivcore/Handles.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivui/NodeManager.h>
#include <kivxmp/XMPMeta.h>

namespace kivtoolkit::tests {

class GuestHost {
public:
    GuestHost();
    GuestHost(const GuestHost&) = delete;
    GuestHost& operator=(const GuestHost&) = delete;
    /// The last terminate, unless End() was called.
    ~GuestHost();
    void End() noexcept;

    /// Shows the dialog over a packet of one title; `driver` is its script.
    bool ShowDialog(kivmetadataui::DialogDriver driver, HWND parent = nullptr);
    /// The title afterwards, "" where there is none.
    std::string Title() const;
    static std::string Failure();

    /// Runs while the dialog is open, right before OK has written the changes.
    std::function<void()> whileOpen;

private:
    struct NodeManager : kivui::ui::OS_NodeManager {};
    std::unique_ptr<NodeManager> manager_;
    std::unique_ptr<__XMPMeta__> meta_;
    bool isUp_ = true;
};

/// A script that types a title and presses OK.
kivmetadataui::DialogDriver TypeTitle(const std::string& title);

}  // namespace kivtoolkit::tests
