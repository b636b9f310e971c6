#pragma once

#include <functional>

#include <gtk/gtk.h>

#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// Calls back when the user turns to another window, also while this one holds the keyboard. Main
/// thread.
class ActiveWindowWatch {
public:
    ActiveWindowWatch(GtkWindow*, std::function<void()> onOther);

private:
    SignalHandler m_activeChanged;
    SignalHandler m_managerSays; ///< X11
};

}
