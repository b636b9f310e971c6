#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/Linux/Applications/RenderedIcon.h"

namespace quorvel::xdg {

/// A picture that was provided as pixels. A window often gives 256 pixels and more on a side: only
/// the sizes that a bar shows are kept, and are requested again if they had to be dropped.
class PixelIcon final : public RenderedIcon {
public:
    static constexpr int kLargestKept = 128;
    static constexpr int kLargeEnough = 64; ///< with such a size there, larger ones are dropped
    static constexpr int kLargestUsable = 2048;

    /// Provides the same pixels again; none when the source has gone.
    using Reload = std::function<std::vector<IconPixels>()>;

    /// Empty when no size is usable: the pixels must match the measures.
    static Image from(const std::vector<IconPixels>&, Reload, const std::shared_ptr<PixelBudget>&);

    PixelIcon(std::vector<SurfacePointer> sizes, Reload, const std::shared_ptr<PixelBudget>&);

protected:
    std::optional<SurfacePointer> draw(int pixels) const override;

private:
    struct Source final : PixelBudget::Piece {
        explicit Source(std::shared_ptr<PixelBudget> budget) : Piece(std::move(budget)) { }
        void use();
        void drop() override { sizes.clear(); }

        std::vector<SurfacePointer> sizes; ///< the smallest first
    };

    const Reload m_reload;
    mutable Source m_source;
};

}
