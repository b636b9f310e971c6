#pragma once

#include <deque>
#include <list>
#include <map>
#include <memory>

#include <xcb/xcb.h>

#include "Hosts/X11/Capture/CaptureConnection.h"
#include "Hosts/X11/Capture/PixmapReader.h"
#include "Hosts/X11/Capture/WindowCapture.h"
#include "Hosts/X11/Capture/WindowRedirection.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel::xdg::x11 {

/// Takes pictures one after another; while one waits for its client to draw, the next can begin.
/// Lives on its queue.
class CaptureWorker {
public:
    /// How long a client gets to draw the part of its window that was covered.
    static constexpr Duration kRepaintTime = seconds(0.06);
    /// Captures that wait at the same time; the server holds a full-size picture for each.
    static constexpr std::size_t kRepaintingAtOnce = 4;
    /// Resources are freed when nothing was captured for this long.
    static constexpr Duration kIdleTime = seconds(3);

    explicit CaptureWorker(Queue& queue) : m_queue(queue) { }

    struct Target {
        xcb_window_t client = XCB_WINDOW_NONE;
        xcb_damage_damage_t damage = XCB_NONE; ///< of a client that is watched
    };

    void capture(Target, const CaptureConfiguration&, ScreenCapture::PictureHandler);
    /// Until it is let go, the client has a whole picture of its own, and a capture need not wait.
    void hold(xcb_window_t client);
    void letGo(xcb_window_t client);

private:
    struct Job {
        Target target;
        CaptureConfiguration configuration;
        ScreenCapture::PictureHandler handler;
        std::unique_ptr<WindowCapture> capture;
        WorkItem repainted;
    };
    using Jobs = std::list<Job>;

    bool connect();
    void keepConnected();
    void beginWaiting();
    void begin(Job);
    void finish(Job);

    Queue& m_queue;
    std::unique_ptr<CaptureConnection> m_connection;
    std::unique_ptr<PixmapReader> m_reader;
    std::deque<Job> m_waiting;
    Jobs m_repainting;
    std::map<xcb_window_t, std::unique_ptr<WindowRedirection>> m_held;
    WorkItem m_disconnect;
};

}
