#pragma once

#include <memory>
#include <vector>

#include "Hosts/Linux/Drawing/IconImage.h"

namespace quorvel::xdg {

struct ReleaseSurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using SurfacePointer = std::unique_ptr<cairo_surface_t, ReleaseSurface>;

/// An icon that keeps the sizes drawn last: those of the bar, a menu and a popup, each at the scale
/// in use. A surface stays valid until three other sizes were asked for.
class RenderedIcon : public IconImage {
public:
    static constexpr int kLargestSize = 1024;
    static constexpr std::size_t kKeptSizes = 4;

    cairo_surface_t* rendered(int pixels) const final;

protected:
    /// A square of `pixels` on a side, null when it cannot be made.
    virtual SurfacePointer draw(int pixels) const = 0;

private:
    struct Rendering {
        int pixels;
        SurfacePointer surface; ///< null is kept too, so a broken file is read once
    };
    mutable std::vector<Rendering> m_renderings; ///< the last used comes first
};

/// An empty square; null when there is no memory for it.
SurfacePointer makeSquare(int pixels);

/// Draws the picture centred and as large as fits, smoothly, keeping its proportions.
SurfacePointer fitted(cairo_surface_t* picture, int pixels);

}
