#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Views/ThumbnailHover.h"
#include "Quorvel/Views/ThumbnailPresenter.h"

namespace quorvel {

/// The popups above the chips of one bar: when they open and close, and what they show. Main
/// thread.
class ChipPopups {
public:
    struct Inputs {
        const BarViewModel& viewModel;
        ThumbnailService& thumbnailService;
        const Platform& platform;
        SpaceID spaceID{};
        DisplayNumber display{};
        std::optional<std::size_t> screenIndex; ///< as for the bar
        /// Where the chip is now (points, bottom-left origin); absent if it has gone.
        std::function<std::optional<Rect>(const std::string& chipID)> chipFrame;
    };

    /// All it is given outlives it.
    explicit ChipPopups(Inputs);

    /// Just before a popup is shown.
    std::function<void()> onWillShow;
    std::function<void(WindowID)> onWindowChosen;
    std::function<void(WindowID)> onWindowClosed;

    void chipHovered(const DisplayItem&, bool isHovered);
    /// No popup until the pointer leaves the chip: it was clicked or dragged.
    void suppress(const DisplayItem& item) { m_hover.suppressForCurrentHover(displayItemID(item)); }
    /// No popup beside an open menu.
    void setMenuOpen(bool isOpen) { m_hover.setMenuOpen(isOpen); }
    /// The chips, or what they stand for, may have changed.
    void update();
    void dismiss() { m_hover.dismissThumbnailPopupImmediate(); }
    /// Null while none is open.
    const ThumbnailPopup* popup() const { return m_presenter.popup(); }

private:
    struct Contents {
        std::vector<ChipData> windows;
        Rect chip;
    };

    HoverTarget target(const DisplayItem&) const;
    /// As things are now; absent if the chip has gone.
    std::optional<Contents> contents(const std::string& chipID) const;
    void show(const std::string& chipID);

    Inputs m_inputs;
    ThumbnailHover m_hover;
    ThumbnailPresenter m_presenter;
};

}
