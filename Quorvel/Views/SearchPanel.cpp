#include "Quorvel/Views/SearchPanel.h"

#include <utility>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Views/Menu/Menus.h"

namespace quorvel {

SearchPanel::SearchPanel(
    const Platform& platform, Menus& menus, const PanelOptions& options, OnDismiss onDismiss)
    : m_platform(platform)
    , m_menus(menus)
    , m_onDismissHandler(std::move(onDismiss))
    , m_surface(platform.surfaces.createPanel(options, m_hostingView))
{
    m_hostingView.attach(*m_surface);
    m_hostingView.isRightToLeft
        = [this] { return m_platform.application.appearance().value().isRightToLeft; };
    m_hostingView.onKeyboardChanged = [this](bool hasKeyboard) {
        if (!hasKeyboard)
            requestDismiss();
    };
    m_hostingView.onCloseRequested = [this] { requestDismiss(); };
    auto monitor = [&](PointerScope scope) {
        return m_platform.surfaces.monitorPresses(
            scope, [this](auto& place, auto& button) { pressed(place, button); });
    };
    m_localMouseEventMonitor = monitor(PointerScope::ownWindows);
    m_globalMouseEventMonitor = monitor(PointerScope::otherPrograms);
}

SearchPanel::~SearchPanel()
{
    m_hostingView.onKeyboardChanged = nullptr;
    m_hostingView.setContent(nullptr);
}

void SearchPanel::setContent(std::unique_ptr<SearchPanelContent> content)
{
    m_content = content.get();
    onArrowUp = [this] { m_content->moveSelection(-1); };
    onArrowDown = [this] { m_content->moveSelection(1); };
    onReturn = [this] { m_content->openSelected(); };
    m_content->onKey = [this](auto& event) { return keyPressed(event); };
    m_content->onMenuRequested
        = [this](Menu menu, const Rect& anchor) { popUp(std::move(menu), anchor); };
    m_hostingView.setContent(std::move(content));
}

std::function<void()> SearchPanel::dismissal()
{
    return [weak = m_weak.reference()] {
        if (auto* panel = weak.get())
            panel->requestDismiss();
    };
}

void SearchPanel::open(const Rect& frame)
{
    m_menus.close();
    m_surface->setFrame(frame);
    m_surface->setCanBecomeKey(true);
    m_surface->setCursor(Cursor::arrow);
    m_surface->makeKeyAndOrderFront();
    m_content->flashScroller();
}

void SearchPanel::close()
{
    m_didRequestDismiss = true;
    m_localMouseEventMonitor = {};
    m_globalMouseEventMonitor = {};
    if (std::exchange(m_openMenus, 0) > 0)
        m_menus.close();
    m_surface->releaseKeyboard();
    m_surface->orderOut();
}

void SearchPanel::requestDismiss(LauncherDismissal dismissal)
{
    if (std::exchange(m_didRequestDismiss, true))
        return;
    if (m_onDismissHandler)
        m_onDismissHandler(dismissal);
}

/// While a menu is open it has the pointer to itself; its end tells of a press outside.
void SearchPanel::pressed(Point globalTopLeft, PointerButton button)
{
    if (m_openMenus == 0 && isOutside(globalTopLeft))
        requestDismiss(button == PointerButton::primary ? LauncherDismissal::primaryPress
                                                        : LauncherDismissal::other);
}

bool SearchPanel::isOutside(Point globalTopLeft) const
{
    auto screens = m_platform.displays.screens();
    return !screens.empty() && m_surface->isVisible()
        && !m_surface->frame().flipped(screens.front().frame.height).contains(globalTopLeft);
}

void SearchPanel::popUp(Menu menu, const Rect& anchor)
{
    ++m_openMenus;
    m_menus.popUp(
        *m_surface, std::move(menu), anchor, [weak = m_weak.reference()](MenuEnding ending) {
            if (auto* panel = weak.get())
                panel->menuClosed(ending);
        });
}

void SearchPanel::menuClosed(MenuEnding ending)
{
    if (m_openMenus == 0)
        return;
    --m_openMenus;
    if (m_openMenus > 0)
        return;
    if (ending == MenuEnding::dismissed && isOutside(m_platform.displays.pointerLocation()))
        requestDismiss();
}

bool SearchPanel::keyPressed(const KeyEvent& event)
{
    if (event.asksForMenu()) {
        m_content->showMenuOfSelected();
        return true;
    }
    auto run = [](auto& action) {
        if (action)
            action();
        return true;
    };
    auto* focused = m_hostingView.keyFocusedView();
    bool isOnButton = focused && focused != m_content->preferredKeyView();
    bool pressesButton = event.keyCode == KeyCode::enter || event.keyCode == KeyCode::keypadEnter
        || event.keyCode == KeyCode::space;
    if (isOnButton && pressesButton)
        return false;
    switch (event.keyCode) {
    case KeyCode::up:
        return run(onArrowUp);
    case KeyCode::down:
        return run(onArrowDown);
    case KeyCode::pageUp:
        m_content->moveSelectionByPage(-1);
        return true;
    case KeyCode::pageDown:
        m_content->moveSelectionByPage(1);
        return true;
    case KeyCode::enter:
    case KeyCode::keypadEnter:
        // Perhaps it is still down from the command that opened the panel.
        return event.isRepeat || run(onReturn);
    case KeyCode::escape:
        if (!event.isRepeat && !m_content->clearQuery())
            requestDismiss();
        return true;
    default:
        return m_content->takeTyping(event);
    }
}

}
