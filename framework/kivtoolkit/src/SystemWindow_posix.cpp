#include "framework/kivtoolkit/src/SystemWindow.h"

#include "framework/kivtoolkit/src/Guest.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <cairo.h>
#include <gdk/gdkx.h>
#include <gtk/gtk.h>

#include <wx/dialog.h>

#include <X11/Xlib.h>

#include <kivcore/StringConversion.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <utility>

namespace kivtoolkit {

namespace {

constexpr int kIdleTurns = 3;
constexpr int kMostTurns = 2000;
constexpr guint kPaintLimitMilliseconds = 5000;

struct FreeSurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct FreeContext {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

// Runs X requests that may fail.
class ErrorTrap {
public:
    explicit ErrorTrap(GdkDisplay* display) : display_(display)
    {
        gdk_x11_display_error_trap_push(display_);
    }
    ErrorTrap(const ErrorTrap&) = delete;
    ErrorTrap& operator=(const ErrorTrap&) = delete;
    ~ErrorTrap() { HasFailed(); }

    bool HasFailed()
    {
        if (!isOver_) {
            isOver_ = true;
            hasFailed_ = gdk_x11_display_error_trap_pop(display_) != 0;
        }
        return hasFailed_;
    }

private:
    GdkDisplay* display_;
    bool isOver_ = false;
    bool hasFailed_ = false;
};

GdkDisplay* X11Display()
{
    GdkDisplay* display = gdk_display_get_default();
    return display != nullptr && GDK_IS_X11_DISPLAY(display) ? display : nullptr;
}

Window NumberOf(HWND host)
{
    return static_cast<Window>(reinterpret_cast<std::uintptr_t>(host));
}

bool WindowExists(GdkDisplay* display, Window window)
{
    ErrorTrap trap(display);
    XWindowAttributes attributes;
    const Status status =
        XGetWindowAttributes(gdk_x11_display_get_xdisplay(display), window, &attributes);
    return !trap.HasFailed() && status != 0;
}

// One wait for painting. It deletes itself when it is over.
class PaintWait {
public:
    PaintWait(GtkWidget* widget, std::function<void()> callback) : callback_(std::move(callback))
    {
        limit_ = g_timeout_add(kPaintLimitMilliseconds, OnLimit, this);
        clock_ = gtk_widget_get_frame_clock(widget);
        gtk_widget_queue_draw(widget);
        if (clock_ != nullptr) {
            g_object_ref(clock_);
            painted_ = g_signal_connect(clock_, "after-paint", G_CALLBACK(OnPainted), this);
            gdk_frame_clock_request_phase(clock_, GDK_FRAME_CLOCK_PHASE_AFTER_PAINT);
        } else {
            idle_ = g_idle_add(OnIdle, this);
        }
    }
    PaintWait(const PaintWait&) = delete;
    PaintWait& operator=(const PaintWait&) = delete;

    // Ends the wait without a call.
    void Stop()
    {
        if (limit_ != 0) {
            g_source_remove(limit_);
        }
        if (idle_ != 0) {
            g_source_remove(idle_);
        }
        Unwatch();
        delete this;
    }

private:
    ~PaintWait() = default;

    void Unwatch()
    {
        if (clock_ != nullptr) {
            g_signal_handler_disconnect(clock_, painted_);
            g_object_unref(std::exchange(clock_, nullptr));
        }
    }

    void Finish()
    {
        const std::function<void()> callback = std::move(callback_);
        Stop();
        callback();
    }

    static void OnPainted(GdkFrameClock*, gpointer data)
    {
        auto* wait = static_cast<PaintWait*>(data);
        wait->Unwatch();
        wait->idle_ = g_idle_add(OnIdle, wait);
    }

    static gboolean OnIdle(gpointer data)
    {
        auto* wait = static_cast<PaintWait*>(data);
        if (--wait->turns_ > 0) {
            return G_SOURCE_CONTINUE;
        }
        wait->idle_ = 0;
        wait->Finish();
        return G_SOURCE_REMOVE;
    }

    static gboolean OnLimit(gpointer data)
    {
        auto* wait = static_cast<PaintWait*>(data);
        wait->limit_ = 0;
        wait->Finish();
        return G_SOURCE_REMOVE;
    }

    std::function<void()> callback_;
    GdkFrameClock* clock_ = nullptr;
    gulong painted_ = 0;
    guint limit_ = 0;
    guint idle_ = 0;
    int turns_ = kIdleTurns;
};

struct FreeEvent {
    void operator()(GdkEvent* event) const { gdk_event_free(event); }
};
using EventHandle = std::unique_ptr<GdkEvent, FreeEvent>;

// The toolkit takes two events that are alike for one, so no two have the same time.
guint32 NextEventTime()
{
    static guint32 time = 0;
    time += 2;
    return static_cast<guint32>(g_get_monotonic_time() / 1000) + time;
}

EventHandle NewEvent(GdkEventType type, GdkWindow* window)
{
    EventHandle event(gdk_event_new(type));
    event->any.window = GDK_WINDOW(g_object_ref(window));
    event->any.send_event = TRUE;
    GdkSeat* seat = gdk_display_get_default_seat(gdk_window_get_display(window));
    const bool isKey = type == GDK_KEY_PRESS || type == GDK_KEY_RELEASE;
    GdkDevice* device = isKey ? gdk_seat_get_keyboard(seat) : gdk_seat_get_pointer(seat);
    gdk_event_set_device(event.get(), device);
    gdk_event_set_source_device(event.get(), device);
    return event;
}

// Where the desktop did not give the window the focus, it believes that it has it.
void EnsureActive(wxTopLevelWindow& window)
{
    GtkWidget* widget = window.GetHandle();
    if (gtk_window_has_toplevel_focus(GTK_WINDOW(widget)) != FALSE) {
        return;
    }
    const EventHandle event = NewEvent(GDK_FOCUS_CHANGE, gtk_widget_get_window(widget));
    event->focus_change.in = TRUE;
    gtk_main_do_event(event.get());
}

struct KeyRow {
    kivmetadataui::DriverKey key;
    guint keyval;
};

constexpr KeyRow kKeyRows[] = {
    {kivmetadataui::DriverKey::kEnter, GDK_KEY_Return},
    {kivmetadataui::DriverKey::kEscape, GDK_KEY_Escape},
    {kivmetadataui::DriverKey::kTab, GDK_KEY_Tab},
    {kivmetadataui::DriverKey::kBackspace, GDK_KEY_BackSpace},
    {kivmetadataui::DriverKey::kDelete, GDK_KEY_Delete},
    {kivmetadataui::DriverKey::kSpace, GDK_KEY_space},
    {kivmetadataui::DriverKey::kLeft, GDK_KEY_Left},
    {kivmetadataui::DriverKey::kRight, GDK_KEY_Right},
    {kivmetadataui::DriverKey::kUp, GDK_KEY_Up},
    {kivmetadataui::DriverKey::kDown, GDK_KEY_Down},
    {kivmetadataui::DriverKey::kHome, GDK_KEY_Home},
    {kivmetadataui::DriverKey::kEnd, GDK_KEY_End},
    {kivmetadataui::DriverKey::kPageUp, GDK_KEY_Page_Up},
    {kivmetadataui::DriverKey::kPageDown, GDK_KEY_Page_Down},
};

guint KeyvalOf(const kivmetadataui::DriverKeyPress& press)
{
    for (const KeyRow& row : kKeyRows) {
        if (row.key == press.key) {
            // With Shift the tab key is another one.
            return row.keyval == GDK_KEY_Tab && press.shift ? GDK_KEY_ISO_Left_Tab : row.keyval;
        }
    }
    return gdk_unicode_to_keyval(press.character);
}

void SendKey(wxTopLevelWindow& window, guint keyval, guint state)
{
    GtkWidget* widget = window.GetHandle();
    GdkWindow* target = gtk_widget_get_window(widget);
    if (target == nullptr) {
        throw std::runtime_error("the dialog has no window");
    }
    EnsureActive(window);
    GdkKeymapKey* keys = nullptr;
    gint count = 0;
    GdkKeymapKey key{};  // none: the character has no key
    GdkKeymap* keymap = gdk_keymap_get_for_display(gdk_window_get_display(target));
    if (gdk_keymap_get_entries_for_keyval(keymap, keyval, &keys, &count) != FALSE && count > 0) {
        key = keys[0];
        if (key.level == 1) {
            state |= GDK_SHIFT_MASK;
        }
    }
    g_free(keys);
    for (const GdkEventType type : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
        if (gtk_widget_get_realized(widget) == FALSE) {
            return;  // the press closed the window
        }
        const EventHandle event = NewEvent(type, target);
        event->key.time = NextEventTime();
        event->key.state = state;
        event->key.keyval = keyval;
        event->key.hardware_keycode = static_cast<guint16>(key.keycode);
        event->key.group = static_cast<guint8>(key.group);
        char utf8[7] = {};
        const gunichar character = gdk_keyval_to_unicode(keyval);
        event->key.length = character != 0 ? g_unichar_to_utf8(character, utf8) : 0;
        event->key.string = g_strdup(utf8);
        gtk_main_do_event(event.get());
    }
}

}  // namespace

bool ConfirmingButtonStandsLast()
{
    return true;
}

long DialogStyle()
{
    return wxCAPTION | wxSYSTEM_MENU | wxCLOSE_BOX | wxRESIZE_BORDER | wxMAXIMIZE_BOX |
           wxDIALOG_NO_PARENT;
}

void DressDialog(wxTopLevelWindow&, bool) {}

void LayOverSiblings(wxWindow& window)
{
    window.Raise();
}

bool AttachToHost(wxTopLevelWindow& window, HWND host)
{
    GdkDisplay* display = X11Display();
    if (host == nullptr || display == nullptr || !WindowExists(display, NumberOf(host))) {
        return false;
    }
    GtkWidget* widget = window.GetHandle();
    gtk_widget_realize(widget);
    ErrorTrap trap(display);
    XSetTransientForHint(gdk_x11_display_get_xdisplay(display),
                         gdk_x11_window_get_xid(gtk_widget_get_window(widget)), NumberOf(host));
    return !trap.HasFailed();
}

std::optional<wxRect> RectOfHost(HWND host)
{
    GdkDisplay* display = X11Display();
    if (host == nullptr || display == nullptr) {
        return std::nullopt;
    }
    Display* connection = gdk_x11_display_get_xdisplay(display);
    ErrorTrap trap(display);
    XWindowAttributes attributes;
    int x = 0;
    int y = 0;
    Window child = 0;
    const bool known = XGetWindowAttributes(connection, NumberOf(host), &attributes) != 0 &&
                       XTranslateCoordinates(connection, NumberOf(host), attributes.root, 0, 0, &x,
                                             &y, &child) != 0;
    if (trap.HasFailed() || !known) {
        return std::nullopt;
    }
    const int scale = gdk_monitor_get_scale_factor(gdk_display_get_monitor(display, 0));
    return wxRect(x / scale, y / scale, attributes.width / scale, attributes.height / scale);
}

// The window manager keeps the host's window below; whether it takes input is the host's affair.
struct HostHold::State {};

HostHold::HostHold(wxTopLevelWindow&, const std::function<void()>&) {}

HostHold::~HostHold() = default;

void HostHold::Release() noexcept {}

DarkSide::DarkSide(bool isDark)
{
    if (!IsToolkitOurs()) {
        return;
    }
    GtkSettings* settings = gtk_settings_get_default();
    gboolean before = FALSE;
    g_object_get(settings, "gtk-application-prefer-dark-theme", &before, nullptr);
    before_ = before != FALSE;
    isSet_ = before_ != isDark;
    if (isSet_) {
        g_object_set(settings, "gtk-application-prefer-dark-theme", isDark ? TRUE : FALSE, nullptr);
    }
}

DarkSide::~DarkSide()
{
    if (isSet_ && !IsConnectionLost()) {
        g_object_set(gtk_settings_get_default(), "gtk-application-prefer-dark-theme",
                     before_ ? TRUE : FALSE, nullptr);
    }
}

std::function<void()> CallWhenPainted(wxWindow& window, std::function<void()> callback)
{
    // What stops the wait must not touch one that is over.
    auto wait = std::make_shared<PaintWait*>(nullptr);
    *wait = new PaintWait(window.GetHandle(), [wait, callback = std::move(callback)] {
        *wait = nullptr;
        callback();
    });
    return [wait] {
        if (*wait != nullptr) {
            std::exchange(*wait, nullptr)->Stop();
        }
    };
}

void HandleWaitingEvents()
{
    for (int turn = 0; turn < kMostTurns && gtk_events_pending() != FALSE; ++turn) {
        gtk_main_iteration_do(FALSE);
    }
}

void WriteScreenshot(wxWindow& window, const std::string& path)
{
    GtkWidget* widget = window.GetHandle();
    const int scale = gtk_widget_get_scale_factor(widget);
    const int width = gtk_widget_get_allocated_width(widget);
    const int height = gtk_widget_get_allocated_height(widget);
    const std::unique_ptr<cairo_surface_t, FreeSurface> surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, width * scale, height * scale));
    cairo_surface_set_device_scale(surface.get(), scale, scale);
    {
        const std::unique_ptr<cairo_t, FreeContext> context(cairo_create(surface.get()));
        gtk_widget_draw(widget, context.get());
    }
    const cairo_status_t status = cairo_surface_write_to_png(surface.get(), path.c_str());
    if (status != CAIRO_STATUS_SUCCESS) {
        throw std::runtime_error(
            Utf8Text("$$$/Kiv/Dialog/Failure/Screenshot=The picture cannot be written: ^0",
                     kivcore::string::UTF8to16(path + ": " + cairo_status_to_string(status))));
    }
}

void ClickAt(wxWindow& window, const wxPoint& at)
{
    GdkWindow* target =
        window.m_wxwindow != nullptr ? gtk_widget_get_window(window.m_wxwindow) : nullptr;
    if (target == nullptr || gdk_window_is_viewable(target) == FALSE) {
        throw std::runtime_error("what is to be clicked is not in sight");
    }
    EnsureActive(*static_cast<wxTopLevelWindow*>(wxGetTopLevelParent(&window)));
    g_object_ref(target);
    gint rootX = 0;
    gint rootY = 0;
    gdk_window_get_root_coords(target, at.x, at.y, &rootX, &rootY);
    const auto cross = [&](GdkEventType type) {
        const EventHandle event = NewEvent(type, target);
        event->crossing.time = NextEventTime();
        event->crossing.x = at.x;
        event->crossing.y = at.y;
        event->crossing.x_root = rootX;
        event->crossing.y_root = rootY;
        event->crossing.mode = GDK_CROSSING_NORMAL;
        event->crossing.detail = GDK_NOTIFY_ANCESTOR;
        gtk_main_do_event(event.get());
    };
    const auto press = [&](GdkEventType type, guint state) {
        const EventHandle event = NewEvent(type, target);
        event->button.time = NextEventTime();
        event->button.x = at.x;
        event->button.y = at.y;
        event->button.x_root = rootX;
        event->button.y_root = rootY;
        event->button.button = GDK_BUTTON_PRIMARY;
        event->button.state = state;
        gtk_main_do_event(event.get());
    };
    cross(GDK_ENTER_NOTIFY);
    press(GDK_BUTTON_PRESS, 0);
    press(GDK_BUTTON_RELEASE, GDK_BUTTON1_MASK);
    if (gdk_window_is_destroyed(target) == FALSE) {
        cross(GDK_LEAVE_NOTIFY);
    }
    g_object_unref(target);
}

void PressKeyIn(wxTopLevelWindow& window, const kivmetadataui::DriverKeyPress& press)
{
    guint state = 0;
    state |= press.control ? static_cast<guint>(GDK_CONTROL_MASK) : 0U;
    state |= press.shift ? static_cast<guint>(GDK_SHIFT_MASK) : 0U;
    state |= press.alt ? static_cast<guint>(GDK_MOD1_MASK) : 0U;
    SendKey(window, KeyvalOf(press), state);
}

void TypeCharacterIn(wxTopLevelWindow& window, char32_t character)
{
    SendKey(
        window,
        character == U'\n' ? static_cast<guint>(GDK_KEY_Return) : gdk_unicode_to_keyval(character),
        0);
}

}  // namespace kivtoolkit
