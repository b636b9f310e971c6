#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include "Hosts/X11/PixelLayout.h"

namespace quorvel::xdg::x11 {

class CaptureConnection;

/// Reads pixels in bands of a few megabytes, so that a window as large as the screen needs no more
/// memory than a small one, and the server can serve its other clients between two bands.
class PixmapReader {
public:
    static constexpr std::size_t kBandBytes = 4U << 20;

    explicit PixmapReader(CaptureConnection&);
    ~PixmapReader();
    PixmapReader(const PixmapReader&) = delete;
    PixmapReader& operator=(const PixmapReader&) = delete;

    struct Area {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };
    using OnRow = std::function<void(std::span<const std::uint32_t>)>;
    /// Row by row from the top, in cairo's format; false if the server did not deliver every row.
    /// The layout must be readable.
    bool read(xcb_pixmap_t, const Area&, const PixelLayout&, const OnRow&);

private:
    void shareMemory();
    bool readBand(xcb_pixmap_t, const Area&, const OnRow&);
    bool readShared(xcb_pixmap_t, const Area&, const OnRow&);
    std::size_t bytesOf(const Area&) const;
    void giveRows(const void* data, const Area&, const OnRow&);

    CaptureConnection& m_connection;
    PixelLayout m_layout; ///< of what is being read
    std::vector<std::uint32_t> m_row; ///< one row, when its pixels are not in cairo's format
    void* m_memory = nullptr;
    xcb_shm_seg_t m_segment = 0; ///< 0: the server runs on another machine
};

}
