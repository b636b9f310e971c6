#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/WeakOwner.h"
#include "Quorvel/Views/Menu/MenuStack.h"

namespace quorvel {

/// The one menu that may be open: the system's own where it draws menus, else our views. Main
/// thread; destroying it closes the menu without a callback.
class Menus {
public:
    using OnClosed = std::function<void(MenuEnding)>;

    explicit Menus(const Platform&);
    ~Menus();
    Menus(const Menus&) = delete;
    Menus& operator=(const Menus&) = delete;

    /// Opens a menu beside `anchor` (points in the panel) and returns; the chosen entry's action
    /// runs on the main queue after the menu has closed. A second call replaces the first menu.
    /// `onClosed` is called on the main queue once for each menu, before the action.
    void popUp(PanelSurface&, Menu, const Rect& anchor, OnClosed);
    void close();
    /// The visible entries of the open menu and its submenus; empty where the system draws menus.
    std::vector<MenuEntry> entries() const;

private:
    void tellClosed(MenuEnding, std::function<void()> action = {});

    const Platform m_platform;
    std::unique_ptr<MenuStack> m_stack;
    std::vector<std::unique_ptr<MenuStack>> m_closed; ///< destroyed in the next turn
    OnClosed m_onClosed;
    WeakOwner<Menus> m_weak{*this};
};

}
