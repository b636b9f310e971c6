#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// What the pointer rests on: the chip of a window or of a group.
struct HoverTarget {
    enum class Kind { single, group };

    Kind kind = Kind::single;
    std::string chipID;
    std::vector<WindowID> windows;

    friend bool operator==(const HoverTarget&, const HoverTarget&) = default;
};

/// When a popup opens and closes. The first opens once the pointer has rested on a chip; while one
/// is open, the next chip's opens at once. It closes shortly after the pointer has left both the
/// chip and the popup. Main thread.
class ThumbnailHover {
public:
    static constexpr Duration kShowDelay = seconds(0.25);
    static constexpr Duration kDismissDelay = seconds(0.2);

    ThumbnailHover(Dispatch&, Surfaces&);

    /// Captures may begin.
    std::function<void(const HoverTarget&)> onPrefetch;
    std::function<void(const HoverTarget&)> onShow;
    std::function<void()> onDismiss;

    void handleChipHover(bool isHovering, const HoverTarget&);
    void setPopupHovered(bool);
    void dismissThumbnailPopupImmediate();
    /// No popup until the pointer leaves the chip: it was clicked or dragged.
    void suppressForCurrentHover(std::string chipID)
    {
        m_suppressThumbnailForCurrentHover = std::move(chipID);
    }
    /// The chip has gone, and its popup with it. What the pointer now rests on may open its own.
    void targetDidVanish();
    /// Another chip stands for its windows now.
    void targetDidBecome(std::string chipID) { m_thumbnailTargetID = std::move(chipID); }
    /// No popup opens beside a menu; the one that is open goes, unless the menu is that of a card.
    enum class OpenMenu { none, elsewhere, ofCard };
    void setMenuOpen(OpenMenu);
    /// Opens it for the keyboard; then it stays, wherever the pointer is, until it is dismissed.
    void openForKeyboard(const HoverTarget&);
    bool isHeldByKeyboard() const { return m_isHeldByKeyboard; }

    /// The chip that the shown popup belongs to.
    const std::optional<std::string>& thumbnailTargetID() const { return m_thumbnailTargetID; }

private:
    void restartShowTimer();
    void startMouseStabilityMonitoring();
    void startDismissTimer();
    void show();

    Dispatch& m_dispatch;
    Surfaces& m_surfaces;
    std::optional<std::string> m_thumbnailTargetID;
    std::optional<HoverTarget> m_pendingHoverTarget;
    bool m_isThumbnailPopupHovered = false;
    std::optional<std::string> m_suppressThumbnailForCurrentHover; ///< the chip it applies to
    OpenMenu m_openMenu = OpenMenu::none;
    bool m_isHeldByKeyboard = false;
    Subscription m_mouseMovementMonitor;
    WorkItem m_showTimer;
    WorkItem m_dismissTimer;
};

}
