#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <glib.h>

#include "Hosts/X11/Applications/DesktopEntries.h"
#include "Hosts/X11/Applications/Icons.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/DesktopServices.h"
#include "Hosts/X11/GLibDispatch.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/PanelEnvironment.h"

namespace quorvel::x11tests {

/// The services of the X11 host as the bar has them, in the test's own process. The environment
/// names the display.
struct HostServices {
    std::string problem;
    x11::GLibDispatch dispatch;
    std::unique_ptr<x11::Connection> connection = x11::Connection::open(problem);
    x11::Monitors monitors{*connection};
    x11::PanelEnvironment environment;
    x11::DesktopEntries entries{dispatch};
    x11::Icons icons{entries};
    x11::DesktopServices services{*connection, dispatch, monitors, environment, entries, icons};

    /// Turns of the real loop until the condition holds; false if it never does.
    bool runUntil(const std::function<bool()>& isDone,
        std::chrono::seconds deadline = std::chrono::seconds{60})
    {
        const auto end = std::chrono::steady_clock::now() + deadline;
        const auto guard = g_timeout_add(
            5, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
        while (!isDone() && std::chrono::steady_clock::now() < end)
            g_main_context_iteration(nullptr, true);
        g_source_remove(guard);
        return isDone();
    }
};

}
