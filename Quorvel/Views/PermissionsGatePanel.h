#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "Quorvel/Core/LaunchPermissionsState.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/BarHostingView.h"

namespace quorvel {

class PermissionsGateContent;
class PermissionsGateModel;

/// The window that asks for the permissions, on the display with the pointer. Main thread.
class PermissionsGatePanel {
public:
    /// The platform's services and the model outlive it.
    PermissionsGatePanel(const Platform&, PermissionsGateModel&);
    ~PermissionsGatePanel();
    PermissionsGatePanel(const PermissionsGatePanel&) = delete;
    PermissionsGatePanel& operator=(const PermissionsGatePanel&) = delete;

    std::function<void()> onContinue;
    std::function<void()> onQuit;
    /// It has gone off the screen, by the user's will or by `close`.
    std::function<void()> onClosed;

    /// In the middle of its display, with the keyboard.
    void show();
    void close();

private:
    void connect(PermissionsGateModel&);
    void stateDidChange(const LaunchPermissionsState&);
    void appearanceDidChange();

    const Platform m_platform;
    BarHostingView m_hostingView{BarHostingView::Keyboard::own};
    std::unique_ptr<PanelSurface> m_surface;
    PermissionsGateContent* m_content = nullptr;
    Rect m_room; ///< for windows on its display, when it was shown
    bool m_isShown = false; ///< perhaps on another space
    std::vector<Subscription> m_subscriptions;
};

}
