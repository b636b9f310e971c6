#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/BarHostingView.h"
#include "Quorvel/Views/Kit/Animation.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/ThumbnailCard.h"

namespace quorvel {

class ThumbnailService;

/// The positions of a popup and its cards; values only.
struct ThumbnailPopupLayout {
    static constexpr double kArrowHeight = 8;

    Size pictureSize;
    std::vector<Rect> cards; ///< in the popup, origin top left
    std::size_t hiddenCount = 0; ///< windows for which there is no room
    Rect frame; ///< on the screen, points, bottom-left origin
    double arrowX = 0; ///< in the popup

    void pointAt(const Rect& chip);

    /// Above the chip and wholly on its screen; all in points, bottom-left origin.
    static ThumbnailPopupLayout of(
        std::size_t windowCount, const Rect& chip, const Rect& screen, bool isRightToLeft);
};

/// The popup above a chip: a card with a live picture for each of its windows. Never takes the
/// focus. Destroying it removes it from the screen. Main thread.
class ThumbnailPopup {
public:
    struct Inputs {
        Surfaces& surfaces;
        Dispatch& dispatch;
        ThumbnailService& thumbnailService;
        const Published<Appearance>& appearance;
        DisplayNumber display{};
    };

    explicit ThumbnailPopup(const Inputs&);
    ~ThumbnailPopup();

    /// Shows these windows above the chip (points, bottom-left origin). When it first appears, it
    /// moves from `animatingFrom`, if given, else it fades in.
    void show(const std::vector<ChipData>&, const Rect& chip, const Rect& screen,
        const std::optional<Rect>& animatingFrom);
    void hide();
    /// True if it already shows exactly these windows: they are updated, and the arrow moves to the
    /// chip. Otherwise nothing changes.
    bool update(const std::vector<ChipData>&, const Rect& chip);

    Rect frame() const { return m_layout.frame; }
    /// Including its close button; points, bottom-left origin.
    struct CardPlace {
        WindowID window{};
        Rect frame;
        Rect closeButton;
    };
    std::vector<CardPlace> cardPlaces() const;

    std::function<void(WindowID)> onWindowChosen;
    std::function<void(WindowID)> onWindowClosed;
    std::function<void(bool isHovered)> onHoverChanged;

private:
    class Content;

    void makeCards(const std::vector<ChipData>&);
    void askForPictures();
    void askForPicture(ThumbnailCard&);
    void followWindows();
    ThumbnailCard* cardOf(WindowID) const;
    void animate(const Rect& from);
    Rect onScreen(const Rect& inRoot) const;

    Inputs m_inputs;
    Palette m_palette; ///< outlives the views that point at it
    BarHostingView m_hostingView;
    std::unique_ptr<PanelSurface> m_surface;
    Content* m_content = nullptr;
    ThumbnailPopupLayout m_layout;
    std::vector<WindowID> m_windows; ///< including those without room for a card
    std::vector<ThumbnailCard*> m_cards;
    std::vector<Subscription> m_pictures;
    Subscription m_following;
    Animation m_animation;
    WorkItem m_filling;
    Subscription m_appearanceChanged;
};

}
