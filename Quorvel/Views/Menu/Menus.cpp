#include "Quorvel/Views/Menu/Menus.h"

#include <utility>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

Menus::Menus(const Platform& platform) : m_platform(platform)
{
}

Menus::~Menus() = default;

void Menus::popUp(PanelSurface& panel, Menu menu, const Rect& anchor, OnClosed onClosed)
{
    if (auto* native = m_platform.surfaces.nativeMenus())
        return native->popUpMenu(panel, std::move(menu), anchor, std::move(onClosed));
    close();
    m_onClosed = std::move(onClosed);
    auto screens = m_platform.displays.screens();
    if (menu.empty() || screens.empty() || !panel.isVisible())
        return tellClosed(MenuEnding::dismissed);
    auto place = panel.frame().flipped(screens.front().frame.height);
    m_stack = std::make_unique<MenuStack>(m_platform, std::move(menu),
        anchor.translated(place.x, place.y),
        [this](MenuEnding ending, std::function<void()> action) {
            m_closed.push_back(std::move(m_stack));
            tellClosed(ending, std::move(action));
        });
    m_stack->start();
}

void Menus::close()
{
    if (auto* native = m_platform.surfaces.nativeMenus())
        return native->closeMenu();
    if (!m_stack)
        return;
    m_stack.reset();
    tellClosed(MenuEnding::dismissed);
}

/// Whoever tells that a menu has closed may be called by it, so it goes in a turn of its own, and
/// the action after it.
void Menus::tellClosed(MenuEnding ending, std::function<void()> action)
{
    m_platform.dispatch.main().async([weak = m_weak.reference(), ending, action = std::move(action),
                                         onClosed = std::exchange(m_onClosed, {})] {
        auto* menus = weak.get();
        if (!menus)
            return;
        menus->m_closed.clear();
        if (onClosed)
            onClosed(ending);
        if (action)
            action();
    });
}

std::vector<MenuEntry> Menus::entries() const
{
    return m_stack ? m_stack->entries() : std::vector<MenuEntry>{};
}

}
