#pragma once

#include <vector>

#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/Linux/Applications/RenderedIcon.h"

namespace quorvel::xdg {

/// A picture that came as pixels. Of what a window gives (often 256 pixels and more on a side) it
/// keeps only what a bar shows, so that hundreds of windows cost little memory.
class PixelIcon final : public RenderedIcon {
public:
    static constexpr int kLargestKept = 128;
    static constexpr int kLargeEnough = 64; ///< with such a size there, larger ones are dropped
    static constexpr int kLargestUsable = 2048;

    /// Empty when no size is usable: one whose pixels do not match its measures is not.
    static Image from(const std::vector<IconPixels>&);

    explicit PixelIcon(std::vector<SurfacePointer> sizes) : m_sizes(std::move(sizes)) { }

protected:
    SurfacePointer draw(int pixels) const override;

private:
    std::vector<SurfacePointer> m_sizes; ///< the smallest first; at least one
};

}
