#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

class PeekFading;
class ThumbnailPopup;
class ThumbnailService;
struct Platform;

/// The popup over one bar: made for the first chip that needs it, reused for the next ones, and
/// destroyed a turn after it closes, since a click inside may be what closes it. Main thread.
class ThumbnailPresenter {
public:
    /// The parameters outlive it.
    ThumbnailPresenter(const Platform&, ThumbnailService&, DisplayNumber);
    ~ThumbnailPresenter();

    /// Just before a popup is shown.
    std::function<void()> onWillShow;
    std::function<void(bool isHovered)> onHoverChanged;
    std::function<void(WindowID)> onWindowChosen;
    std::function<void(WindowID)> onWindowClosed;
    /// Beside a place on the screen (points, bottom-left origin).
    std::function<void(WindowID, const Rect&)> onMenuRequested;

    /// Above the chip (points, bottom-left origin). False: there is nothing to show, or no screen.
    bool show(const std::vector<ChipData>&, const Rect& chip);
    /// True if the popup shows exactly these windows, which are updated. It stays where it is,
    /// since the pointer may be on it, but its arrow moves to the chip.
    bool update(const std::vector<ChipData>&, const Rect& chip);
    void hide();

    /// Null while none is open.
    ThumbnailPopup* popup() const { return m_activeThumbnailPanel.get(); }

private:
    void makePopup();

    const Platform& m_platform;
    ThumbnailService& m_thumbnailService;
    DisplayNumber m_display;
    /// Windows go on fading in when the popup has gone; null where they cannot be shown alone.
    std::unique_ptr<PeekFading> m_peeking;
    std::unique_ptr<ThumbnailPopup> m_activeThumbnailPanel;
    std::unique_ptr<ThumbnailPopup> m_closedThumbnailPanel;
    std::optional<Rect> m_lastPopupFrame;
    WorkItem m_afterClosing;
};

}
