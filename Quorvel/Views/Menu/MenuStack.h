#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/Kit/PressedButton.h"
#include "Quorvel/Views/Menu/MenuPanel.h"
#include "Quorvel/Views/Menu/MenuTyping.h"

namespace quorvel {

/// An open menu with its submenus, and its reactions to the pointer and the keyboard. It holds both
/// until an entry is chosen or the menu is dismissed. All positions are points, global top-left
/// origin. Main thread; destroying it removes all of it from the screen.
///
/// The user may press, drag and release on an entry, or click twice; the release that ends the
/// opening click chooses nothing. A pointer on its way to a submenu may cross the rows between.
class MenuStack final : private MenuListener {
public:
    /// Called once, with the action to run if an entry was chosen. The menu must not be destroyed
    /// inside the call.
    using Ended = std::function<void(MenuEnding, std::function<void()> action)>;

    /// The platform outlives it. There must be a screen.
    MenuStack(const Platform&, Menu, const Rect& anchor, Ended);
    ~MenuStack() override;
    MenuStack(const MenuStack&) = delete;
    MenuStack& operator=(const MenuStack&) = delete;

    /// Takes the pointer and the keyboard; may end at once.
    void start();
    /// The visible entries of the menu and its submenus.
    std::vector<MenuEntry> entries() const;

private:
    /// Depth 0 is the menu, each further one a submenu of the one before.
    using Depth = std::size_t;
    using Row = std::size_t;
    struct Level {
        std::unique_ptr<MenuPanel> panel;
        Row opener = 0; ///< its row in the previous panel
    };

    void pointerEvent(const PointerEvent&, Point) override;
    void scrollEvent(const ScrollEvent&, Point) override;
    bool keyPressed(const KeyEvent&) override;
    void inputGrabDidEnd() override { end(MenuEnding::dismissed); }
    void rowChosen(MenuPanel&, Row) override;

    std::unique_ptr<MenuPanel> makePanel(const Menu&, const MenuPanel::Place&);
    void motion(Point);
    void press(Point);
    void release(Point);
    void waitForDeliberateMove(Point);
    bool isReleaseDeliberate() const;

    bool headsForSubmenu(Depth);
    std::optional<Depth> depthAt(Point) const;
    MenuPanel& panel(Depth depth) { return *m_levels[depth].panel; }
    const MenuView& view(Depth depth) const { return m_levels[depth].panel->view(); }
    Depth deepest() const { return m_levels.size() - 1; }
    void pointOutside();
    void pointAt(Depth, Point);
    void rollBy(Depth, int side);
    void roll(Depth, int side);
    bool step(std::optional<Row> from, int step);
    bool moveTo(std::optional<Row>);
    bool moveByPage(int side);
    bool goForwards();
    bool goBack();
    bool type(const KeyEvent&);
    bool openSubmenu(Depth, std::optional<Row>);
    void closeBelow(Depth);
    void choose(Depth, std::optional<Row>);
    void end(MenuEnding, std::function<void()> action = {});
    bool isRightToLeft() const;
    bool isScreenThere() const;

    const Platform m_platform;
    const Menu m_menu;
    const Screen m_screen;
    const Rect m_bounds; ///< of the screen
    Ended m_ended; ///< null once it has been called
    MenuTyping m_typing;
    std::vector<Level> m_levels; ///< never empty
    PressedButton m_press;
    Point m_pointer;
    Point m_trail; ///< where its movement was last judged
    bool m_isOnTheWay = false; ///< to the deepest submenu
    Point m_origin; ///< where the pointer was when the last wait began
    Instant m_waitingSince;
    bool m_wasPressed = false; ///< since then
    bool m_isInside = false; ///< the pointer is in a menu
    bool m_wasInside = false; ///< or was, since the last press
    WorkItem m_rest; ///< waits for the pointer to rest on a row or reach a submenu
    WorkItem m_roll; ///< scrolls the rows while the pointer is on a strip
    Subscription m_screens;
};

}
