#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/BarHostingView.h"
#include "Quorvel/Views/Kit/Animation.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/ThumbnailCard.h"
#include "Quorvel/Views/ThumbnailPopupLayout.h"
#include "Quorvel/Views/WindowPeek.h"

namespace quorvel {

class Text;
class ThumbnailService;

/// The popup above a chip: a card with a live picture for each of its windows. Never takes the
/// focus; keys come to it from the bar. Destroying it removes it from the screen. Main thread.
///
/// While the pointer is on it, its cards hold still: one whose window closes leaves its place
/// empty, and a new window waits. Whoever shows it does so again when the pointer has left. To a
/// pointer that rests on a card, the window itself is shown.
class ThumbnailPopup {
public:
    struct Inputs {
        Surfaces& surfaces;
        Dispatch& dispatch;
        const Text& text;
        ThumbnailService& thumbnailService;
        const Published<Appearance>& appearance;
        PeekFading* peeking = nullptr; ///< null where a window cannot be shown alone
        DisplayNumber display{};
    };

    explicit ThumbnailPopup(const Inputs&);
    ~ThumbnailPopup();

    /// Shows these windows above the chip (points, bottom-left origin). When it first appears, it
    /// moves from `animatingFrom`, if given, else it fades in.
    void show(const std::vector<ChipData>&, const Rect& chip, const Rect& screen,
        const std::optional<Rect>& animatingFrom);
    void hide();
    /// True if it shows these windows, or holds still: they are updated, and the arrow moves to the
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

    /// The keyboard comes to the cards: to that of the focused window, or the first.
    void takeKeys();
    /// The arrows, Tab, Home and End walk the cards. False: the key leads out of them, or means
    /// nothing here.
    bool walk(const KeyEvent&);
    /// The card with the keyboard; absent while it is elsewhere.
    std::optional<CardPlace> keyCard() const;

    /// As of a view's host, while a card asks for its menu.
    std::uint64_t menuModifiers() const { return m_hostingView.menuModifiers(); }

    std::function<void(WindowID)> onWindowChosen;
    std::function<void(WindowID)> onWindowClosed;
    /// Beside a place on the screen (points, bottom-left origin).
    std::function<void(WindowID, const Rect&)> onMenuRequested;
    std::function<void(bool isHovered)> onHoverChanged;

private:
    class Content;
    struct ShownCard {
        ThumbnailCard* card = nullptr;
        Subscription picture;
    };

    void makeCards(const std::vector<ChipData>&);
    ThumbnailCard& makeCard(const ChipData&);
    void connect(ThumbnailCard&);
    void askForPictures();
    void askForPicture(ShownCard&);
    void followWindows();
    void removeCardsExcept(const std::vector<ChipData>&);
    std::vector<std::string> titleLines(const std::vector<ChipData>&) const;
    ThumbnailCard* cardOf(WindowID) const;
    std::optional<std::size_t> neighbour(std::size_t card, KeyCode) const;
    void setKeyCard(std::optional<std::size_t>);
    void animate(const Rect& from);
    CardPlace placeOf(const ThumbnailCard&) const;
    Rect onScreen(const Rect& inRoot) const;

    Inputs m_inputs;
    Palette m_palette; ///< outlives the views that point at it
    WindowPeek m_peek; ///< outlives the cards, of which the last ones go with their surface
    BarHostingView m_hostingView;
    std::unique_ptr<PanelSurface> m_surface;
    Content* m_content = nullptr;
    ThumbnailPopupLayout m_layout;
    std::vector<WindowID> m_windows; ///< as laid out, including those without room for a card
    std::vector<ShownCard> m_cards;
    std::size_t m_filled = 0; ///< the first cards, for which pictures have been asked
    std::optional<std::size_t> m_keyCard;
    std::vector<std::string> m_titleLines;
    Subscription m_following;
    Animation m_animation;
    WorkItem m_filling;
    Subscription m_appearanceChanged;
};

}
