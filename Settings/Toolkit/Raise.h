#pragma once

#include <gtk/gtk.h>

namespace quorvel::settings {

/// Shows the window, or brings the one that is shown to the front and to the current desktop, as if
/// the user had just asked for it here.
void raise(GtkWindow*);

}
