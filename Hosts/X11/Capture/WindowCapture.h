#pragma once

#include <optional>

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include "Hosts/X11/Capture/PixmapReader.h"
#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel::xdg::x11 {

/// One picture of one client, decoration included.
///
/// A server draws windows straight onto the screen, so what another window covers exists nowhere.
/// Only a redirected window has a picture of its own, which lasts while the window is mapped. A
/// compositor redirects every window. Without one, this redirects the window for the duration of
/// the capture, and the server then asks the client to draw what was covered.
class WindowCapture {
public:
    enum class Progress { failed, waitsForClient, ready };

    /// The damage, if any, is what reports drawing on the client: it is emptied, so that it reports
    /// whatever the picture does not show.
    WindowCapture(CaptureConnection&, xcb_window_t client, xcb_damage_damage_t);
    ~WindowCapture();
    WindowCapture(const WindowCapture&) = delete;
    WindowCapture& operator=(const WindowCapture&) = delete;

    Progress begin();
    /// Absent when the window has gone or may not be captured.
    std::optional<WindowPicture> finish(PixmapReader&, const CaptureConfiguration& largest);

private:
    using Area = PixmapReader::Area;

    bool isViewable(xcb_window_t) const;
    bool redirect();
    bool namePixmap();
    bool isFullyShown() const;
    /// The client and its decoration, without the shadow that some draw around themselves.
    std::optional<Area> areaInTopLevel() const;

    CaptureConnection& m_connection;
    const xcb_window_t m_client;
    const xcb_damage_damage_t m_damage;
    xcb_window_t m_topLevel = XCB_WINDOW_NONE; ///< the ancestor below the root
    bool m_isRedirected = false; ///< by us
    xcb_pixmap_t m_pixmap = XCB_PIXMAP_NONE;
};

}
