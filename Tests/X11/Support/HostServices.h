#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <glib.h>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/IconPictures.h"
#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/Linux/Loop/GLibDispatch.h"
#include "Hosts/Linux/PanelEnvironment.h"
#include "Hosts/Linux/Pictures/PictureDecoding.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/DesktopServices.h"
#include "Hosts/X11/Monitors.h"

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

/// The services of the X11 host as the bar has them, in the test's own process. The environment
/// names the display.
struct HostServices {
    std::string problem;
    xdg::GLibDispatch dispatch;
    std::unique_ptr<xdg::x11::Connection> connection = xdg::x11::Connection::open(problem);
    Published<xdg::DesktopLooks> looks;
    xdg::x11::Monitors monitors{*connection, dispatch, looks};
    xdg::PanelEnvironment environment;
    xdg::DesktopEntries entries{dispatch};
    xdg::IconPictures pictures{dispatch, {QUORVEL_PROGRAM, xdg::kDecodePictures}};
    xdg::Icons icons{entries, pictures};
    xdg::x11::DesktopServices services{
        *connection, dispatch, monitors, environment, entries, icons};

    /// Turns of the real loop until the condition holds; false if it never does.
    bool runUntil(const std::function<bool()>& isDone)
    {
        const auto end = std::chrono::steady_clock::now() + kWatchdog;
        const auto guard
            = g_timeout_add(5, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
        while (!isDone() && std::chrono::steady_clock::now() < end)
            g_main_context_iteration(nullptr, true);
        g_source_remove(guard);
        return isDone();
    }
};

}
