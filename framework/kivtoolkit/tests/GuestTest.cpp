// What a host that knows nothing of toolkits finds during and after dialogs.

#include <malloc.h>

#include <array>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "framework/kivtoolkit/tests/GuestHost.h"

#include <gtest/gtest.h>
#include <kivmetadataui/MetadataDialog.h>

// Behind all others: it defines macros of common words.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

extern char** environ;

namespace kivtoolkit::tests {
namespace {

namespace fs = std::filesystem;
using kivmetadataui::DialogDriver;

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

TEST(Guest, TypesAndConfirms)
{
    GuestHost host;
    EXPECT_TRUE(host.ShowDialog(TypeTitle("Möwen über 港"))) << GuestHost::Failure();
    EXPECT_EQ(host.Title(), "Möwen über 港");
    EXPECT_EQ(GuestHost::Failure(), "");
    EXPECT_FALSE(
        host.ShowDialog(DialogDriver().TypeValue("photoshop:Headline", "other").PressCancel()));
    EXPECT_EQ(host.Title(), "Möwen über 港");
    EXPECT_EQ(GuestHost::Failure(), "");
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

TEST(Guest, SecondDialogFromWithinIsRefused)
{
    GuestHost host;
    host.whileOpen = [] {
        EXPECT_FALSE(kivmetadataui::DoMetadataDialog(nullptr, nullptr, {}));
        EXPECT_NE(GuestHost::Failure(), "");
    };
    EXPECT_TRUE(host.ShowDialog(TypeTitle("x")));
}

TEST(Guest, TerminateFromWithinCancels)
{
    GuestHost host;
    bool wasOpen = false;
    host.whileOpen = [&] {
        wasOpen = true;
        host.End();
        throw std::runtime_error("not written");
    };
    EXPECT_FALSE(host.ShowDialog(TypeTitle("x")));
    EXPECT_TRUE(wasOpen);
    // And the next round works.
    GuestHost next;
    EXPECT_TRUE(next.ShowDialog(TypeTitle("y")));
}

TEST(Guest, ScreenshotHasTheWindowsSize)
{
    const fs::path file = fs::temp_directory_path() / "kivtoolkit_screenshot.png";
    fs::remove(file);
    GuestHost host;
    EXPECT_FALSE(host.ShowDialog(DialogDriver().Screenshot(file.string()).PressCancel()));
    std::ifstream stream(file, std::ios::binary);
    std::array<unsigned char, 24> head{};
    stream.read(reinterpret_cast<char*>(head.data()), head.size());
    ASSERT_TRUE(stream.good()) << GuestHost::Failure();
    const auto number = [&](std::size_t at) {
        return head[at] << 24U | head[at + 1] << 16U | head[at + 2] << 8U | head[at + 3];
    };
    EXPECT_EQ(std::string(reinterpret_cast<char*>(head.data()) + 1, 3), "PNG");
    EXPECT_GE(number(16), 640);
    EXPECT_GE(number(20), 440);
    stream.close();
    fs::remove(file);
    // A folder that is not there.
    EXPECT_FALSE(host.ShowDialog(DialogDriver().Screenshot("/nonexistent-folder/a.png").PressOk()));
    EXPECT_NE(GuestHost::Failure().find("/nonexistent-folder/a.png"), std::string::npos);
}

}  // namespace
}  // namespace kivtoolkit::tests
