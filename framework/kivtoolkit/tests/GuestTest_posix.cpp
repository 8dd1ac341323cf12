// What a host on X11 that knows nothing of toolkits finds during and after dialogs.

#include <malloc.h>

#include <clocale>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>

#include "framework/kivtoolkit/tests/GuestHost.h"

#include <gtest/gtest.h>

// Behind all others: it defines macros of common words.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

extern char** environ;

namespace kivtoolkit::tests {
namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 50;
constexpr std::size_t kHeapGrowth = 256 * 1024;

int errorsOfHost = 0;
unsigned char lastError = 0;

int OnHostError(Display*, XErrorEvent* error)
{
    ++errorsOfHost;
    lastError = error->error_code;
    return 0;
}

int OnHostFatalError(Display*)
{
    return 0;
}

// A connection of the host's own, with its error handlers.
class HostDisplay {
public:
    HostDisplay() : display_(XOpenDisplay(nullptr))
    {
        errorsOfHost = 0;
        before_ = XSetErrorHandler(OnHostError);
        beforeFatal_ = XSetIOErrorHandler(OnHostFatalError);
    }
    HostDisplay(const HostDisplay&) = delete;
    HostDisplay& operator=(const HostDisplay&) = delete;
    ~HostDisplay()
    {
        XCloseDisplay(display_);
        XSetErrorHandler(before_);
        XSetIOErrorHandler(beforeFatal_);
    }

    Display* Get() { return display_; }
    void MakeError()
    {
        XDestroyWindow(display_, 0x7FFFFFF);
        XSync(display_, False);
    }
    Window NewWindow()
    {
        const Window window =
            XCreateSimpleWindow(display_, DefaultRootWindow(display_), 50, 60, 500, 400, 0, 0, 0);
        XMapWindow(display_, window);
        XSync(display_, False);
        return window;
    }

private:
    Display* display_;
    XErrorHandler before_ = nullptr;
    XIOErrorHandler beforeFatal_ = nullptr;
};

bool HandlersAreTheHosts()
{
    const XErrorHandler error = XSetErrorHandler(OnHostError);
    const XIOErrorHandler fatal = XSetIOErrorHandler(OnHostFatalError);
    return error == OnHostError && fatal == OnHostFatalError;
}

HWND Handle(Window window)
{
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(window));
}

std::size_t OpenFiles()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

std::string Environment()
{
    std::string all;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        all += *entry;
        all += '\n';
    }
    return all;
}

TEST(Guest, NothingOfTheProcessChanges)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const std::string environment = Environment();
    const fs::path folder = fs::current_path();
    HostDisplay display;
    {
        GuestHost host;
        bool wasOpen = false;
        host.whileOpen = [&] {
            wasOpen = true;
            EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
        };
        EXPECT_TRUE(host.ShowDialog(TypeTitle("x")));
        EXPECT_TRUE(wasOpen);
        EXPECT_TRUE(HandlersAreTheHosts());
    }
    EXPECT_TRUE(HandlersAreTheHosts());
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
    EXPECT_EQ(Environment(), environment);
    EXPECT_EQ(fs::current_path(), folder);
    EXPECT_EQ(errorsOfHost, 0);
    std::setlocale(LC_ALL, "C");
}

TEST(Guest, ErrorsOfTheHostReachTheHost)
{
    HostDisplay display;
    GuestHost host;
    host.whileOpen = [&] {
        EXPECT_EQ(errorsOfHost, 0);
        display.MakeError();
        EXPECT_EQ(errorsOfHost, 1) << "passed on while the dialog is open";
        EXPECT_EQ(lastError, BadWindow);
    };
    EXPECT_TRUE(host.ShowDialog(TypeTitle("x")));
    display.MakeError();
    EXPECT_EQ(errorsOfHost, 2);
}

TEST(Guest, DialogIsTransientForTheHostsWindow)
{
    HostDisplay display;
    const Window parent = display.NewWindow();
    GuestHost host;
    bool found = false;
    host.whileOpen = [&] {
        // The window manager has wrapped the dialog: look two levels deep.
        const auto look = [&](Window window, const auto& self, int depth) -> void {
            Window root = 0;
            Window above = 0;
            Window* children = nullptr;
            unsigned count = 0;
            Window owner = 0;
            if (XGetTransientForHint(display.Get(), window, &owner) != 0 && owner == parent) {
                found = true;
            }
            if (depth < 3 &&
                XQueryTree(display.Get(), window, &root, &above, &children, &count) != 0) {
                for (unsigned i = 0; i < count; ++i) {
                    self(children[i], self, depth + 1);
                }
                if (children != nullptr) {
                    XFree(children);
                }
            }
        };
        look(DefaultRootWindow(display.Get()), look, 0);
    };
    EXPECT_TRUE(host.ShowDialog(TypeTitle("x"), Handle(parent)));
    EXPECT_TRUE(found);
    XWindowAttributes attributes;
    EXPECT_NE(XGetWindowAttributes(display.Get(), parent, &attributes), 0)
        << "the host's window is still there";
    EXPECT_EQ(errorsOfHost, 0);
}

TEST(Guest, AParentThatDoesNotExistCountsAsNone)
{
    HostDisplay display;
    GuestHost host;
    for (const std::uintptr_t number : {std::uintptr_t{1}, std::uintptr_t{0x7FFFFFF}}) {
        EXPECT_TRUE(host.ShowDialog(TypeTitle("x" + std::to_string(number)),
                                    reinterpret_cast<HWND>(number)));
    }
    EXPECT_EQ(errorsOfHost, 0);
}

TEST(Guest, ManyRoundsLeaveNothingOpen)
{
    const auto round = [](int number) {
        GuestHost host;
        EXPECT_TRUE(host.ShowDialog(TypeTitle(std::to_string(number))));
    };
    round(1);
    round(2);
    const std::size_t files = OpenFiles();
    std::size_t halfway = 0;
    for (int i = 0; i < kRounds; ++i) {
        round(i + 3);
        if (i + 1 == kRounds / 2) {
            halfway = mallinfo2().uordblks;
        }
    }
    EXPECT_EQ(OpenFiles(), files);
    const std::size_t end = mallinfo2().uordblks;
    std::cout << "heap at half-way " << halfway << ", at the end " << end << "\n";
    EXPECT_LE(end, halfway + kHeapGrowth);
}

}  // namespace
}  // namespace kivtoolkit::tests
