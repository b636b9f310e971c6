#pragma once

#include <functional>
#include <memory>

#include "Quorvel/Core/LauncherPanel.h"
#include "Quorvel/Platform/WeakOwner.h"
#include "Quorvel/Views/BarHostingView.h"
#include "Quorvel/Views/SearchPanelContent.h"

namespace quorvel {

class Menus;

/// A floating panel with a search field, a list and the keyboard, which wants to close as soon as
/// the user turns to something else. What is listed is its content's. Main thread.
class SearchPanel : public LauncherPanel {
public:
    ~SearchPanel() override;

    // Keys that the panel uses itself.
    std::function<void()> onArrowUp;
    std::function<void()> onArrowDown;
    std::function<void()> onReturn;

    PanelSurface& surface() override { return *m_surface; }
    const PanelSurface& surface() const { return *m_surface; }
    void open(const Rect& frame) override;
    void close() override;

    const SearchPanelContent& searchContent() const { return *m_content; }
    bool didRequestDismiss() const { return m_didRequestDismiss; }
    /// Null while the keyboard is elsewhere.
    const View* keyFocusedView() const { return m_hostingView.keyFocusedView(); }

protected:
    using OnDismiss = std::function<void(LauncherDismissal)>;

    /// The platform and the menus outlive the panel.
    SearchPanel(const Platform&, Menus&, const PanelOptions&, OnDismiss);

    const Platform& platform() const { return m_platform; }
    /// Call once, at the end of the constructor.
    void setContent(std::unique_ptr<SearchPanelContent>);
    void requestDismiss(LauncherDismissal = LauncherDismissal::other);
    /// Asks for the same, and may outlive the panel.
    std::function<void()> dismissal();

private:
    bool keyPressed(const KeyEvent&);
    void pressed(Point globalTopLeft, PointerButton);
    bool isOutside(Point globalTopLeft) const;
    void popUp(Menu, const Rect& anchor);
    void menuClosed(MenuEnding);

    const Platform m_platform;
    Menus& m_menus;
    OnDismiss m_onDismissHandler;
    bool m_didRequestDismiss = false;
    int m_openMenus = 0; ///< one that replaces another is open before that one has told its end
    BarHostingView m_hostingView{BarHostingView::Keyboard::own};
    std::unique_ptr<PanelSurface> m_surface;
    SearchPanelContent* m_content = nullptr;
    Subscription m_localMouseEventMonitor;
    Subscription m_globalMouseEventMonitor;
    WeakOwner<SearchPanel> m_weak{*this};
};

}
