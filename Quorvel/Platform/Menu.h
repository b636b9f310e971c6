#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel {

class PanelSurface;

enum class MenuItemKind {
    action,
    toggle, ///< on or off, independent of its neighbours
    choice, ///< one of several entries, exactly one of which is on
};

/// What one can press instead while no menu is open. A menu only tells of it.
struct MenuKeys {
    KeyCode key = KeyCode::unknown;
    std::uint64_t modifiers = 0; ///< of `KeyModifier`
};

struct MenuItem {
    std::string title; ///< empty: a separator
    bool isEnabled = true;
    std::function<void()> action;
    bool isChecked = false;
    std::vector<MenuItem> submenu{}; ///< of an entry that opens another menu instead of acting
    MenuItemKind kind = MenuItemKind::action;
    std::optional<MenuKeys> keys{};

    bool isSeparator() const { return title.empty(); }
    bool canBeChosen() const { return !isSeparator() && isEnabled; }
};

using Menu = std::vector<MenuItem>;

enum class MenuEnding {
    chosen,
    dismissed, ///< by a press elsewhere, or because it could not stay open
    escaped, ///< by a key
};

/// The menus of a system that draws its own. Main thread.
class NativeMenus {
public:
    virtual ~NativeMenus() = default;

    /// Opens a menu beside `anchor` (points in the panel) and returns; the chosen entry's action
    /// runs on the main queue after the menu has gone. A second call replaces the first menu.
    /// `onClosed` comes on the main queue once for each menu, before the action.
    virtual void popUpMenu(
        PanelSurface&, Menu, const Rect& anchor, std::function<void(MenuEnding)> onClosed)
        = 0;
    virtual void closeMenu() = 0;
};

}
