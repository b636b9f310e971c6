#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/X11/Desktop/Properties.h"

namespace quorvel::xdg::x11 {

/// A window's place on the X screen in pixels, without its frame.
struct WindowPlace {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

struct DrawableSize {
    int width = 0;
    int height = 0;
    int depth = 0;
};

/// Questions to the server that go out together: each call sends, and `finish` reads all answers in
/// the order of the questions, so that any number of them costs one round trip. The answer for a
/// window that is gone is "absent". One thread.
class RequestBatch {
public:
    explicit RequestBatch(xcb_connection_t* connection) : m_connection(connection) { }
    /// Discards the answers that were not read.
    ~RequestBatch();
    RequestBatch(const RequestBatch&) = delete;
    RequestBatch& operator=(const RequestBatch&) = delete;

    using OnProperty = std::function<void(const RawProperty&)>;
    using OnPlace = std::function<void(std::optional<WindowPlace>)>;
    using OnSize = std::function<void(std::optional<Size>)>;
    using OnWindows = std::function<void(std::span<const xcb_window_t>)>;
    using OnWindow = std::function<void(std::optional<xcb_window_t>)>;
    using OnDrawable = std::function<void(std::optional<DrawableSize>)>;
    using OnData = std::function<void(std::span<const std::byte>)>;
    using OnNumber = std::function<void(std::optional<std::uint32_t>)>;

    void property(xcb_window_t, xcb_atom_t, std::uint32_t maximumWords, OnProperty);
    /// Where the window's corner lies on the root.
    void place(xcb_window_t, xcb_window_t root, OnPlace);
    void size(xcb_window_t, OnSize);
    void parent(xcb_window_t, OnWindow);
    /// From the lowest to the uppermost; none if it has gone.
    void children(xcb_window_t, OnWindows);
    /// The process of the client that created the window, if it runs on this machine.
    void clientProcess(xcb_window_t, OnNumber);
    /// The events that this program receives from the window.
    void eventMask(xcb_window_t, OnNumber);
    /// The pointer's button and modifier mask.
    void pointerMask(xcb_window_t root, OnNumber);

    void drawable(xcb_drawable_t, OnDrawable);
    /// The pixels of a pixmap, row by row in the server's format, one bit each at depth 1; none if
    /// it has gone.
    void pixels(xcb_pixmap_t, const DrawableSize&, OnData);

    void finish();

private:
    /// What a new window is asked for.
    static constexpr std::size_t kUsualSize = 24;

    struct Pending {
        unsigned sequence;
        std::function<void(void* reply)> handle; ///< null where the server answered with an error
    };

    template <typename Cookie> void add(Cookie cookie, std::function<void(void*)> handle)
    {
        if (m_pending.empty())
            m_pending.reserve(kUsualSize);
        m_pending.push_back({cookie.sequence, std::move(handle)});
    }

    xcb_connection_t* m_connection;
    std::vector<Pending> m_pending;
};

}
