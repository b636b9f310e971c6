#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>

#include "Hosts/Linux/Pictures/PictureSurface.h"

namespace quorvel::xdg {

/// Keeps pictures that look the same once. Some window managers give the same icon to every window
/// that brings none. Main thread.
class SharedSurfaces {
public:
    /// The picture, or the one with the same pixels that is in use somewhere. Nobody may draw on it
    /// any more. Image surfaces of 32 bits a pixel; null stays null.
    SurfacePointer share(SurfacePointer);

private:
    using ByHash = std::unordered_multimap<std::size_t, cairo_surface_t*>;
    struct Entry;

    std::shared_ptr<ByHash> m_inUse = std::make_shared<ByHash>(); ///< not owned
};

}
