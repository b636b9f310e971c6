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
    /// The popup belongs to another chip, or to none, now.
    std::function<void()> onChipChanged;
    std::function<void(WindowID)> onWindowChosen;
    std::function<void(WindowID)> onWindowClosed;
    /// Beside a place on the screen (points, bottom-left origin).
    std::function<void(WindowID, const Rect&)> onMenuRequested;

    void chipHovered(const DisplayItem&, bool isHovered);
    /// No popup until the pointer leaves the chip: it was clicked or dragged.
    void suppress(const DisplayItem& item) { m_hover.suppressForCurrentHover(displayItemID(item)); }
    void setMenuOpen(ThumbnailHover::OpenMenu menu) { m_hover.setMenuOpen(menu); }
    /// The chips, or what they stand for, may have changed.
    void update();
    void dismiss() { m_hover.dismissThumbnailPopupImmediate(); }
    /// Null while none is open.
    const ThumbnailPopup* popup() const { return m_presenter.popup(); }

    /// The chip that the open popup belongs to.
    const std::optional<std::string>& chipID() const { return m_hover.thumbnailTargetID(); }
    /// Opens the chip's popup and takes the keyboard to its cards. False: it has none.
    bool takeKeys(const DisplayItem&);
    /// True if the key moves the keyboard among the cards.
    bool walk(const KeyEvent&);
    /// The window whose card has the keyboard, and its place on the screen.
    std::optional<std::pair<WindowID, Rect>> keyCard() const;

private:
    struct Contents {
        std::vector<ChipData> windows;
        Rect chip;
    };

    HoverTarget target(const DisplayItem&) const;
    /// As things are now; absent if the chip has gone.
    std::optional<Contents> contents(const std::string& chipID) const;
    void show(const std::string& chipID);
    void chipDidChange() const;
    /// The chip that now stands for windows that the popup shows.
    std::optional<std::string> successor() const;

    Inputs m_inputs;
    ThumbnailHover m_hover;
    ThumbnailPresenter m_presenter;
};

}
