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

class ThumbnailPopup;
class ThumbnailService;
struct Platform;

/// The popup over one bar: made for the first chip that wants it, moved on to the next one, and
/// gone a turn after it was closed, since a click inside may be what closes it. Main thread.
class ThumbnailPresenter {
public:
    /// What is given outlives it.
    ThumbnailPresenter(const Platform&, ThumbnailService&, DisplayNumber);
    ~ThumbnailPresenter();

    /// Just before a popup is shown.
    std::function<void()> onWillShow;
    std::function<void(bool isHovered)> onHoverChanged;
    std::function<void(WindowID)> onWindowChosen;
    std::function<void(WindowID)> onWindowClosed;

    /// Above the chip (points, bottom-left origin). False: there is nothing to show, or no screen.
    bool show(const std::vector<ChipData>&, const Rect& chip);
    /// True if the popup shows just these windows, which are now as given. It stays where it is,
    /// for the pointer may be on it, but points at the chip.
    bool update(const std::vector<ChipData>&, const Rect& chip);
    void hide();

    /// Null while none is open.
    const ThumbnailPopup* popup() const { return m_activeThumbnailPanel.get(); }

private:
    void makePopup();

    const Platform& m_platform;
    ThumbnailService& m_thumbnailService;
    DisplayNumber m_display;
    std::unique_ptr<ThumbnailPopup> m_activeThumbnailPanel;
    std::unique_ptr<ThumbnailPopup> m_closedThumbnailPanel;
    std::optional<Rect> m_lastPopupFrame;
    WorkItem m_afterClosing;
};

}
