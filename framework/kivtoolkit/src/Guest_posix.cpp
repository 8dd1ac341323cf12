// X11 and GTK as a guest. GDK sets X error handlers that end the process; ours take their place
// while a guard lives, keep what concerns GDK's connection to themselves and pass on the rest.

#include "framework/kivtoolkit/src/Guest.h"

#include "framework/kivtoolkit/src/Texts.h"
#include "framework/kivtoolkit/src/Tracing.h"

#include <dlfcn.h>
#include <gdk/gdkx.h>
#include <gio/gio.h>
#include <gtk/gtk.h>
#include <link.h>
#include <unistd.h>

#include <X11/Xlib.h>
#include <X11/Xlibint.h>

// Macros of common words, which the header leaves behind.
#undef max
#undef min

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kivtoolkit {

namespace {

// Plain data, because it outlives every static destructor.
constinit bool connectionLost = false;
using Handler = void (*)();
constinit Handler endingHandler = nullptr;
constinit bool logWriterIsOurs = false;
constinit Display* ourConnection = nullptr;  // that GDK opened for us
constinit XErrorHandler hostErrorHandler = nullptr;
constinit XIOErrorHandler hostFatalHandler = nullptr;
constinit int guardDepth = 0;

// The display that GDK uses, if it is an X11 one.
Display* GdkConnection()
{
    GdkDisplay* display = gdk_display_get_default();
    return display != nullptr && GDK_IS_X11_DISPLAY(display) ? gdk_x11_display_get_xdisplay(display)
                                                             : nullptr;
}

int OnError(Display* connection, XErrorEvent* error)
{
    if (connection == GdkConnection()) {
        Trace("X error " + std::to_string(error->error_code) + " of request " +
              std::to_string(error->request_code) + "." + std::to_string(error->minor_code));
        return 0;
    }
    return hostErrorHandler != nullptr ? hostErrorHandler(connection, error) : 0;
}

int OnFatalError(Display* connection)
{
    if (connection == ourConnection) {
        return 0;  // OnConnectionLost follows
    }
    return hostFatalHandler != nullptr ? hostFatalHandler(connection) : 0;
}

// Xlib has nowhere to send to any more, and a full buffer makes it crash: what is asked for from
// here on, while windows are taken down, is dropped request by request.
int DropUnsentRequests(Display* connection)
{
    connection->bufptr = connection->buffer;
    return 0;
}

// In place of Xlib's exit().
void OnConnectionLost(Display* connection, void*)
{
    connectionLost = true;
    DropUnsentRequests(connection);
    XSetAfterFunction(connection, DropUnsentRequests);
    if (endingHandler != nullptr) {
        endingHandler();
    }
}

struct LoadOrder {
    bool ourselvesSeen = false;
    bool glibWasFirst = false;
};

// The loader lists modules in the order in which they came: what stands before us was there before
// us, and what we need comes behind.
bool WasGlibThereFirst()
{
    LoadOrder order;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            auto& seen = *static_cast<LoadOrder*>(data);
            const std::string_view name = info->dlpi_name != nullptr ? info->dlpi_name : "";
            if (name.find("/kivtoolkit.so") != std::string_view::npos) {
                seen.ourselvesSeen = true;
            } else if (name.find("/libglib-2.0.so") != std::string_view::npos &&
                       !seen.ourselvesSeen) {
                seen.glibWasFirst = true;
            }
            return 0;
        },
        &order);
    return order.glibWasFirst || !order.ourselvesSeen;
}

bool IsToolkitDomain(std::string_view domain)
{
    for (const std::string_view own : {"GLib", "Gtk", "Gdk", "Pango", "Atk", "dconf"}) {
        if (domain.substr(0, own.size()) == own) {
            return true;
        }
    }
    return false;
}

std::map<std::string, std::string> Variables()
{
    std::map<std::string, std::string> variables;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        const std::size_t sign = text.find('=');
        if (sign != std::string_view::npos && sign != 0) {
            variables.emplace(text.substr(0, sign), text.substr(sign + 1));
        }
    }
    return variables;
}

std::string_view FieldText(const GLogField& field)
{
    const auto* text = static_cast<const char*>(field.value);
    return field.length < 0 ? std::string_view(text)
                            : std::string_view(text, static_cast<std::size_t>(field.length));
}

GLogWriterOutput WriteLog(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer)
{
    std::string_view domain;
    std::string_view message;
    for (gsize i = 0; i < count; ++i) {
        if (std::strcmp(fields[i].key, "GLIB_DOMAIN") == 0) {
            domain = FieldText(fields[i]);
        } else if (std::strcmp(fields[i].key, "MESSAGE") == 0) {
            message = FieldText(fields[i]);
        }
    }
    if (!IsToolkitDomain(domain)) {
        return g_log_writer_default(level, fields, count, nullptr);
    }
    Trace(std::string(domain) + ": " + std::string(message));
    return G_LOG_WRITER_HANDLED;
}

}  // namespace

std::shared_ptr<void> RequireDisplay()
{
    if (connectionLost) {
        throw std::runtime_error(
            Utf8Text("$$$/Kiv/Dialog/Failure/DisplayLost=The connection to the display was lost."));
    }
    if (gdk_display_get_default() != nullptr) {
        return nullptr;
    }
    Display* probe = XOpenDisplay(nullptr);
    if (probe == nullptr) {
        throw std::runtime_error(
            Utf8Text("$$$/Kiv/Dialog/Failure/NoDisplay=There is no display that a dialog could be "
                     "shown on."));
    }
    return {probe, [](Display* display) { XCloseDisplay(display); }};
}

void PrepareToolkitStart()
{
    if (!logWriterIsOurs && !WasGlibThereFirst()) {
        g_log_set_writer_func(WriteLog, nullptr, nullptr);
        logWriterIsOurs = true;
    }
    if (gdk_display_get_default() == nullptr) {
        gdk_set_allowed_backends("x11");
    }
}

bool IsToolkitOurs() noexcept
{
    return ourConnection != nullptr;
}

bool IsConnectionLost() noexcept
{
    return connectionLost;
}

void SetEndingHandler(void (*handler)()) noexcept
{
    endingHandler = handler;
}

struct StartGuard::Saved {
    std::map<std::string, std::string> variables;
    struct sigaction brokenPipe = {};
};

StartGuard::StartGuard() : saved_(std::make_unique<Saved>())
{
    saved_->variables = Variables();
    sigaction(SIGPIPE, nullptr, &saved_->brokenPipe);
    // GIO ignores the signal from its first socket on, which would else come at an unknown time. It
    // does not depend on that: it sends without raising signals.
    g_type_class_unref(g_type_class_ref(G_TYPE_SOCKET));
}

StartGuard::~StartGuard()
{
    sigaction(SIGPIPE, &saved_->brokenPipe, nullptr);
    for (const auto& [name, value] : Variables()) {
        if (saved_->variables.find(name) == saved_->variables.end()) {
            unsetenv(name.c_str());
        }
    }
    for (const auto& [name, value] : saved_->variables) {
        const char* const now = std::getenv(name.c_str());
        if (now == nullptr || now != value) {
            setenv(name.c_str(), value.c_str(), 1);
        }
    }
}

void ReleaseClipboard()
{
    if (!IsToolkitOurs() || connectionLost) {
        return;
    }
    GtkClipboard* clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
    gtk_clipboard_store(clipboard);
    for (const GdkAtom selection : {GDK_SELECTION_CLIPBOARD, GDK_SELECTION_PRIMARY}) {
        gtk_clipboard_clear(gtk_clipboard_get(selection));  // nothing if it is somebody else's
    }
}

struct GuestGuard::Saved {
    std::string locale;
    bool handlersAreOurs = false;
    std::optional<struct sigaction> brokenPipe;  // what the host had, where we ignore the signal
};

GuestGuard::GuestGuard() : saved_(std::make_unique<Saved>())
{
    const char* locale = std::setlocale(LC_ALL, nullptr);
    saved_->locale = locale != nullptr ? locale : "";
    // Writing to a display that went away must come back as an error.
    struct sigaction brokenPipe = {};
    if (sigaction(SIGPIPE, nullptr, &brokenPipe) == 0 && (brokenPipe.sa_flags & SA_SIGINFO) == 0 &&
        brokenPipe.sa_handler == SIG_DFL) {
        saved_->brokenPipe = brokenPipe;
        std::signal(SIGPIPE, SIG_IGN);
    }
    // Where the host opened the display, the handlers are its own affair.
    const bool gdkIsHosts = ourConnection == nullptr && gdk_display_get_default() != nullptr;
    if (++guardDepth == 1 && !gdkIsHosts) {
        saved_->handlersAreOurs = true;
        hostErrorHandler = XSetErrorHandler(OnError);
        hostFatalHandler = XSetIOErrorHandler(OnFatalError);
    }
}

void GuestGuard::Reinstall()
{
    if (!saved_->handlersAreOurs) {
        return;
    }
    XSetErrorHandler(OnError);
    XSetIOErrorHandler(OnFatalError);
    if (ourConnection == nullptr) {
        ourConnection = GdkConnection();
        if (ourConnection != nullptr) {
            XSetIOErrorExitHandler(ourConnection, OnConnectionLost, nullptr);
        }
    }
}

GuestGuard::~GuestGuard()
{
    --guardDepth;
    if (saved_->handlersAreOurs) {
        // What our last requests did wrong must be told while the handler is ours.
        if (ourConnection != nullptr && !connectionLost) {
            XSync(ourConnection, False);
        }
        const XErrorHandler error = XSetErrorHandler(nullptr);
        XSetErrorHandler(error == OnError ? hostErrorHandler : error);
        const XIOErrorHandler fatal = XSetIOErrorHandler(nullptr);
        XSetIOErrorHandler(fatal == OnFatalError ? hostFatalHandler : fatal);
    }
    struct sigaction brokenPipe = {};
    if (saved_->brokenPipe && sigaction(SIGPIPE, nullptr, &brokenPipe) == 0 &&
        (brokenPipe.sa_flags & SA_SIGINFO) == 0 && brokenPipe.sa_handler == SIG_IGN) {
        sigaction(SIGPIPE, &*saved_->brokenPipe, nullptr);
    }
    const char* locale = std::setlocale(LC_ALL, nullptr);
    if (locale == nullptr || saved_->locale != locale) {
        std::setlocale(LC_ALL, saved_->locale.c_str());
    }
}

}  // namespace kivtoolkit
