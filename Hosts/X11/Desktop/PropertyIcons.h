#pragma once

#include <optional>
#include <vector>

#include "Hosts/Linux/Desktop/WindowIcons.h"
#include "Hosts/X11/Desktop/RequestBatch.h"

namespace quorvel::xdg::x11 {

class Clients;
class Connection;

/// The pictures that windows provide in their properties, read when one is needed. Main thread.
class PropertyIcons final : public WindowIcons {
public:
    PropertyIcons(Connection&, Clients&);

    std::vector<IconPixels> of(WindowID) override;

private:
    /// The pixmap that a window names, and its size if it exists.
    struct Named {
        xcb_pixmap_t pixmap = XCB_NONE;
        std::optional<DrawableSize> size = {};
    };

    std::vector<IconPixels> fromPixmaps(const Named& picture, const Named& mask) const;

    Connection& m_connection;
    Clients& m_clients;
};

}
