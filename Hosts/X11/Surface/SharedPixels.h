#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <xcb/shm.h>

namespace quorvel::xdg::x11 {

class Connection;

/// Rows of 32-bit pixels in memory shared with the X server: a whole bar gets there in a hundredth
/// of the time that sending it takes.
class SharedPixels {
public:
    /// Null where the server does not share memory, or there is none.
    static std::unique_ptr<SharedPixels> create(Connection&, int width, int height);
    ~SharedPixels();
    SharedPixels(const SharedPixels&) = delete;
    SharedPixels& operator=(const SharedPixels&) = delete;

    std::uint8_t* row(int y) const { return m_data + static_cast<std::ptrdiff_t>(y) * m_width * 4; }
    int width() const { return m_width; }
    int height() const { return m_height; }
    /// Whether the server has the memory too: one on another machine does not. The first call may
    /// wait for its answer.
    bool isAttached();
    xcb_shm_seg_t segment() const { return m_segment; }

private:
    SharedPixels(Connection&, int width, int height, std::uint8_t* data);
    void attach(int memory);

    Connection& m_connection;
    const int m_width;
    const int m_height;
    std::uint8_t* const m_data;
    xcb_shm_seg_t m_segment = 0;
    std::optional<xcb_void_cookie_t> m_attaching; ///< until the server has answered
    bool m_isAttached = false;
};

}
