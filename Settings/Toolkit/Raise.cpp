#include "Settings/Toolkit/Raise.h"

#ifdef GDK_WINDOWING_X11
#include <gdk/x11/gdkx.h>
#endif

namespace quorvel::settings {

void raise(GtkWindow* window)
{
#ifdef GDK_WINDOWING_X11
    // The user asked in another program. With the time of the last key that was pressed in this
    // one, window managers take the wish for a late one and only let the window blink.
    auto* surface = gtk_native_get_surface(GTK_NATIVE(window));
    if (surface && GDK_IS_X11_SURFACE(surface) && gtk_widget_get_mapped(GTK_WIDGET(window))) {
        gdk_x11_surface_move_to_current_desktop(surface);
        gtk_window_present_with_time(window, gdk_x11_get_server_time(surface));
        return;
    }
#endif
    gtk_window_present(window);
}

}
