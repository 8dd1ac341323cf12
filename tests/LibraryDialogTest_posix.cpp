// The dialog beside an X11 host: windows of the host's own as its parent, and the host's handlers
// of X errors.

#include <gtest/gtest.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/DialogFixture.h"

#include <kivmetadataui/DialogDriver.h>

namespace kivtests {
namespace {

int errorsOfTheHost = 0;

int CountError(Display*, XErrorEvent*)
{
    ++errorsOfTheHost;
    return 0;
}

int OnConnectionLost(Display*)
{
    return 0;
}

// A host with a connection of its own to the display.
class XHost {
public:
    XHost() : display_(XOpenDisplay(nullptr))
    {
        if (display_ != nullptr) {
            errorsOfTheHost = 0;
            errorBefore_ = XSetErrorHandler(CountError);
            lostBefore_ = XSetIOErrorHandler(OnConnectionLost);
        }
    }
    XHost(const XHost&) = delete;
    XHost& operator=(const XHost&) = delete;
    ~XHost()
    {
        if (display_ != nullptr) {
            XSetErrorHandler(errorBefore_);
            XSetIOErrorHandler(lostBefore_);
            XCloseDisplay(display_);
        }
    }

    bool IsOpen() const { return display_ != nullptr; }

    Window MakeWindow()
    {
        const Window window =
            XCreateSimpleWindow(display_, DefaultRootWindow(display_), 50, 60, 400, 300, 0, 0, 0);
        XSelectInput(display_, window, StructureNotifyMask);
        XMapWindow(display_, window);
        XEvent event;
        do {
            XWindowEvent(display_, window, StructureNotifyMask, &event);
        } while (event.type != MapNotify);
        return window;
    }

    void DestroyWindow(Window window)
    {
        XDestroyWindow(display_, window);
        XSync(display_, False);
    }

    bool IsMapped(Window window)
    {
        XWindowAttributes attributes = {};
        return XGetWindowAttributes(display_, window, &attributes) != 0 &&
               attributes.map_state == IsViewable;
    }

    // A request that must fail.
    void CauseError()
    {
        XDestroyWindow(display_, 0x1FFFFFFF);
        XSync(display_, False);
    }

    bool AreHandlersInForce() const
    {
        const XErrorHandler error = XSetErrorHandler(CountError);
        const XIOErrorHandler lost = XSetIOErrorHandler(OnConnectionLost);
        return error == CountError && lost == OnConnectionLost;
    }

    /// Windows on the screen that say they belong to `window`.
    std::vector<Window> TransientsOf(Window window)
    {
        std::vector<Window> found;
        Visit(DefaultRootWindow(display_), [&](Window each) {
            Window owner = 0;
            if (XGetTransientForHint(display_, each, &owner) != 0 && owner == window) {
                found.push_back(each);
            }
        });
        return found;
    }

    /// True if a window on the screen has this title.
    bool HasTitle(const std::string& title)
    {
        bool hasIt = false;
        Visit(DefaultRootWindow(display_), [&](Window each) { hasIt |= TitleOf(each) == title; });
        return hasIt;
    }

private:
    template <class Action>
    void Visit(Window window, const Action& action)
    {
        action(window);
        Window root = 0;
        Window parent = 0;
        Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display_, window, &root, &parent, &children, &count) == 0) {
            return;
        }
        for (unsigned i = 0; i < count; ++i) {
            Visit(children[i], action);
        }
        if (children != nullptr) {
            XFree(children);
        }
    }

    std::string TitleOf(Window window)
    {
        Atom type = 0;
        int format = 0;
        unsigned long count = 0;
        unsigned long rest = 0;
        unsigned char* value = nullptr;
        const Atom name = XInternAtom(display_, "_NET_WM_NAME", False);
        XGetWindowProperty(display_, window, name, 0, 1024, False, AnyPropertyType, &type, &format,
                           &count, &rest, &value);
        std::string title;
        if (value != nullptr) {
            title = reinterpret_cast<const char*>(value);
            XFree(value);
        }
        return title;
    }

    Display* display_;
    XErrorHandler errorBefore_ = nullptr;
    XIOErrorHandler lostBefore_ = nullptr;
};

MetadataDialogRequest RequestOver(Window parent)
{
    MetadataDialogRequest request = {};
    request.parentWindow = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(parent));
    return request;
}

class LibraryDialogXTest : public DialogFixture {
protected:
    void SetUp() override { ASSERT_TRUE(host.IsOpen()); }

    // Late enough for the window to be on the screen.
    static constexpr std::size_t kLateCallback = 30;

    // The hook counts callbacks; this gives it enough of them.
    static DialogDriver Busy()
    {
        DialogDriver script;
        script.WaitUntilPainted();
        for (const char* const view : {"rights", "camera", "iptc", "description"}) {
            script.ChooseView(view);
        }
        script.TypeValue("dc:title[@x-default]", "Busy").PressOk();
        return script;
    }

    XHost host;
};

TEST_F(LibraryDialogXTest, TheHostsHandlersAreInForceAfterwards)
{
    const XmpObject object;
    ASSERT_TRUE(host.AreHandlersInForce());
    Start();
    EXPECT_TRUE(Run(object, Ok())) << LastFailure();
    EXPECT_TRUE(host.AreHandlersInForce());
    EXPECT_FALSE(Run(object, Cancel()));
    EXPECT_TRUE(host.AreHandlersInForce());
    api.terminate();
    EXPECT_TRUE(host.AreHandlersInForce());
    EXPECT_EQ(errorsOfTheHost, 0);
    host.CauseError();
    EXPECT_EQ(errorsOfTheHost, 1);
}

TEST_F(LibraryDialogXTest, ErrorsOfTheHostReachItWhileTheDialogIsOpen)
{
    const XmpObject object;
    Start();
    const auto hook = CallbackHook::Install(kLateCallback, [this] { host.CauseError(); });
    EXPECT_TRUE(Run(object, Busy())) << LastFailure();
    EXPECT_TRUE(hook->HasRun());
    EXPECT_EQ(errorsOfTheHost, 1);
    api.terminate();
}

// What the host sets while the dialog is open is the host's wish.
TEST_F(LibraryDialogXTest, AHandlerSetMeanwhileStays)
{
    const XmpObject object;
    Start();
    const XErrorHandler other = [](Display*, XErrorEvent*) { return 0; };
    CallbackHook::Install(kLateCallback, [other] { XSetErrorHandler(other); });
    EXPECT_TRUE(Run(object, Busy())) << LastFailure();
    EXPECT_EQ(XSetErrorHandler(CountError), other);
    api.terminate();
    EXPECT_TRUE(host.AreHandlersInForce());
}

TEST_F(LibraryDialogXTest, TheDialogBelongsToItsParent)
{
    const XmpObject object;
    const Window parent = host.MakeWindow();
    Start();
    std::size_t transients = 0;
    const auto hook = CallbackHook::Install(kLateCallback,
                                            [&] { transients = host.TransientsOf(parent).size(); });
    EXPECT_TRUE(Run(object, Busy(), RequestOver(parent))) << LastFailure();
    EXPECT_TRUE(hook->HasRun());
    EXPECT_EQ(transients, 1U);
    EXPECT_TRUE(host.IsMapped(parent));
    EXPECT_TRUE(host.TransientsOf(parent).empty()) << "the dialog's window is gone";
    // Without a parent it belongs to nobody.
    transients = 1;
    CallbackHook::Install(kLateCallback, [&] { transients = host.TransientsOf(parent).size(); });
    EXPECT_TRUE(Run(object, Busy())) << LastFailure();
    EXPECT_EQ(transients, 0U);
    api.terminate();
    EXPECT_TRUE(host.IsMapped(parent));
    EXPECT_EQ(errorsOfTheHost, 0);
}

TEST_F(LibraryDialogXTest, AParentThatDoesNotExistCountsAsNone)
{
    const XmpObject object;
    const Window gone = host.MakeWindow();
    host.DestroyWindow(gone);
    Start();
    for (const Window parent : {gone, Window{1}, Window{0x1FFFFFFF}, ~Window{0}}) {
        SCOPED_TRACE(parent);
        EXPECT_TRUE(Run(object, Title(std::to_string(parent)), RequestOver(parent)))
            << LastFailure();
        EXPECT_EQ(object.Text("dc:title[@x-default]"), std::to_string(parent));
    }
    api.terminate();
    EXPECT_EQ(errorsOfTheHost, 0);
}

TEST_F(LibraryDialogXTest, AParentMayGoWhileTheDialogIsOpen)
{
    const XmpObject object;
    const Window parent = host.MakeWindow();
    Start();
    const auto hook = CallbackHook::Install(kLateCallback, [&] { host.DestroyWindow(parent); });
    EXPECT_TRUE(Run(object, Busy(), RequestOver(parent))) << LastFailure();
    EXPECT_TRUE(hook->HasRun());
    EXPECT_EQ(object.Text("dc:title[@x-default]"), "Busy");
    EXPECT_TRUE(Run(object, Title("Next"))) << LastFailure();
    api.terminate();
    EXPECT_EQ(errorsOfTheHost, 0);
}

TEST_F(LibraryDialogXTest, TheTextIsTheTitle)
{
    const XmpObject object;
    Start();
    bool hasTitle = false;
    MetadataDialogRequest request = {};
    request.text = "Größe ✓.jpg";
    const auto hook =
        CallbackHook::Install(kLateCallback, [&] { hasTitle = host.HasTitle("Größe ✓.jpg"); });
    EXPECT_TRUE(Run(object, Busy(), request)) << LastFailure();
    EXPECT_TRUE(hook->HasRun());
    EXPECT_TRUE(hasTitle);
    api.terminate();
    EXPECT_FALSE(host.HasTitle("Größe ✓.jpg"));
}

}  // namespace
}  // namespace kivtests
