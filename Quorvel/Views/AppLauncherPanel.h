#pragma once

#include <functional>
#include <memory>

#include "Quorvel/Core/LauncherPanel.h"
#include "Quorvel/Platform/WeakOwner.h"
#include "Quorvel/Views/AppLauncherContent.h"
#include "Quorvel/Views/BarHostingView.h"

namespace quorvel {

class Menus;

/// The launcher on the screen: a floating panel with the keyboard, which wants to close as soon as
/// the user turns to something else. Main thread.
class AppLauncherPanel final : public LauncherPanel {
public:
    /// The platform, the menus and what the contents refer to outlive the panel.
    AppLauncherPanel(const Platform&, Menus&, const PanelOptions&, const LauncherContents&);
    ~AppLauncherPanel() override;

    // Keys that the panel uses itself.
    std::function<void()> onArrowUp;
    std::function<void()> onArrowDown;
    std::function<void()> onReturn;

    PanelSurface& surface() override { return *m_surface; }
    const PanelSurface& surface() const { return *m_surface; }
    void open(const Rect& frame) override;
    void close() override;

    AppLauncherContent& content() { return *m_content; }
    const AppLauncherContent& content() const { return *m_content; }
    bool didRequestDismiss() const { return m_didRequestDismiss; }
    /// Null while the keyboard is elsewhere.
    const View* keyFocusedView() const { return m_hostingView.keyFocusedView(); }

private:
    void connectContent();
    bool keyPressed(const KeyEvent&);
    void pressed(Point globalTopLeft, PointerButton);
    bool isOutside(Point globalTopLeft) const;
    void popUp(Menu, const Rect& anchor);
    void menuClosed(MenuEnding);
    void requestDismiss(LauncherDismissal = LauncherDismissal::other);

    const Platform m_platform;
    Menus& m_menus;
    std::function<void(LauncherDismissal)> m_onDismissHandler;
    bool m_didRequestDismiss = false;
    int m_openMenus = 0; ///< one that replaces another is open before that one has told its end
    BarHostingView m_hostingView{BarHostingView::Keyboard::own};
    std::unique_ptr<PanelSurface> m_surface;
    AppLauncherContent* m_content = nullptr;
    Subscription m_localMouseEventMonitor;
    Subscription m_globalMouseEventMonitor;
    WeakOwner<AppLauncherPanel> m_weak{*this};
};

}
