#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Hosts/Linux/Applications/PixelBudget.h"
#include "Hosts/Linux/Drawing/IconImage.h"
#include "Hosts/Linux/Pictures/PictureSurface.h"

namespace quorvel::xdg {

/// An icon that keeps its most recently drawn sizes: those of the bar, a menu and a popup, each at
/// the scale in use, within the budget of all icons. A surface stays valid until the next one is
/// requested.
class RenderedIcon : public IconImage {
public:
    static constexpr int kLargestSize = 1024;
    static constexpr std::size_t kKeptSizes = 4;

    explicit RenderedIcon(std::shared_ptr<PixelBudget> budget) : m_budget(std::move(budget)) { }

    cairo_surface_t* rendered(int pixels) const final;

protected:
    /// A square of `pixels` on a side, null when it can never be drawn; absent where it may be
    /// there the next time.
    virtual std::optional<SurfacePointer> draw(int pixels) const = 0;

private:
    struct Rendering final : PixelBudget::Piece {
        Rendering(std::shared_ptr<PixelBudget> budget, int side)
            : Piece(std::move(budget))
            , pixels(side)
        {
        }
        void use() { Piece::use(bytesOf(surface)); }
        void drop() override
        {
            surface.reset();
            isMade = false;
        }

        const int pixels;
        SurfacePointer surface;
        bool isMade = false;
    };

    const std::shared_ptr<PixelBudget> m_budget;
    mutable std::vector<std::unique_ptr<Rendering>> m_renderings; ///< the last used comes first
};

}
