#include "Settings/Toolkit/ActiveWindow.h"

#include <utility>

#ifdef GDK_WINDOWING_X11
#include <X11/Xatom.h>
#include <gdk/x11/gdkx.h>
#endif

namespace quorvel::settings {

#ifdef GDK_WINDOWING_X11

namespace {

constexpr char kActiveWindow[] = "_NET_ACTIVE_WINDOW";

/// As the window manager says; none while it changes from one to another.
Window activeWindow(GdkDisplay* display)
{
    auto* connection = gdk_x11_display_get_xdisplay(display);
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    gdk_x11_display_error_trap_push(display);
    XGetWindowProperty(connection, gdk_x11_display_get_xrootwindow(display),
        gdk_x11_get_xatom_by_name_for_display(display, kActiveWindow), 0, 1, False, XA_WINDOW,
        &type, &format, &count, &left, &data);
    gdk_x11_display_error_trap_pop_ignored(display);
    const bool isThere = data && type == XA_WINDOW && format == 32 && count == 1;
    const auto window = isThere ? *reinterpret_cast<const Window*>(data) : Window{None};
    if (data)
        XFree(data);
    return window;
}

/// GDK has no use for the root's properties.
void hearOfRoot(GdkDisplay* display)
{
    auto* connection = gdk_x11_display_get_xdisplay(display);
    const auto root = gdk_x11_display_get_xrootwindow(display);
    XWindowAttributes attributes{};
    XGetWindowAttributes(connection, root, &attributes);
    XSelectInput(connection, root, attributes.your_event_mask | PropertyChangeMask);
}

/// Under its own grab GDK takes no notice when the focus goes.
SignalHandler watchManager(GtkWindow* window, const std::function<void()>& onOther)
{
    auto* surface = gtk_native_get_surface(GTK_NATIVE(window));
    auto* display = gtk_widget_get_display(GTK_WIDGET(window));
    if (!surface || !GDK_IS_X11_DISPLAY(display))
        return {};
    hearOfRoot(display);
    const auto own = gdk_x11_surface_get_xid(surface);
    const auto atom = gdk_x11_get_xatom_by_name_for_display(display, kActiveWindow);
    return SignalHandler::answered(display, "xevent", [=](SignalArguments arguments) {
        const auto* event = static_cast<const XEvent*>(g_value_get_pointer(&arguments[1]));
        if (event->type == PropertyNotify && event->xproperty.atom == atom) {
            const auto active = activeWindow(display);
            if (active != None && active != own)
                onOther();
        }
        return false; // GDK has its own use for it
    });
}

}

#endif

ActiveWindowWatch::ActiveWindowWatch(GtkWindow* window, std::function<void()> onOther)
    : m_activeChanged(window, "notify::is-active", [window, onOther] {
        if (!gtk_window_is_active(window))
            onOther();
    })
{
#ifdef GDK_WINDOWING_X11
    m_managerSays = watchManager(window, onOther);
#endif
}

}
