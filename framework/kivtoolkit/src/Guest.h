// Being a guest in a foreign process: what of the system's windowing must be checked, chosen, put
// aside and put back so that the host finds everything as it left it.

#pragma once

#include <memory>

namespace kivtoolkit {

/// Throws std::runtime_error, before the windowing system's toolkit is touched, where no window can
/// be shown. What it returns (may be null) is to be held until the toolkit has connected: a display
/// server may start afresh when its last client leaves.
[[nodiscard]] std::shared_ptr<void> RequireDisplay();

/// To be called right before the toolkit starts, once RequireDisplay has passed: chooses the kind
/// of display and takes over message writers that nobody else can have taken.
void PrepareToolkitStart();

/// True if nobody but us has opened the display.
bool IsToolkitOurs() noexcept;

/// True once the connection to the display broke; nothing can be shown any more.
bool IsConnectionLost() noexcept;

/// Called from deep within the toolkit when the connection to the display breaks or the program is
/// asked to end: a dialog must close. Must only note it. A null function takes it away.
void SetEndingHandler(void (*handler)()) noexcept;

/// While it lives the toolkit starts, which changes the environment and how a broken pipe is
/// handled. The destructor puts both back.
class StartGuard {
public:
    StartGuard();
    StartGuard(const StartGuard&) = delete;
    StartGuard& operator=(const StartGuard&) = delete;
    ~StartGuard();

private:
    struct Saved;
    std::unique_ptr<Saved> saved_;
};

/// Hands what was copied to the desktop's clipboard manager, where there is one, and lets go of the
/// clipboard: without a loop nobody could answer those who want to paste.
void ReleaseClipboard();

/// While it lives the process's locale and error handlers may be changed by the toolkit, and errors
/// of our own display connection end in the trace instead of reaching the host, as does its end. A
/// request to end the program that arrives meanwhile is kept for the host.
/// The destructor puts everything back, unless the host itself changed it meanwhile.
class GuestGuard {
public:
    GuestGuard();
    GuestGuard(const GuestGuard&) = delete;
    GuestGuard& operator=(const GuestGuard&) = delete;
    ~GuestGuard();

    /// To be called when the toolkit has started, which may have set handlers of its own.
    void Reinstall();

private:
    struct Saved;
    std::unique_ptr<Saved> saved_;
};

}  // namespace kivtoolkit
