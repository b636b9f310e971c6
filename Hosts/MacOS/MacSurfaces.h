#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Surfaces.h"

@class QVMenuTarget;

namespace quorvel {

class MacWindowServer;

class MacSurfaces final : public Surfaces {
public:
    MacSurfaces(const MacWindowServer&, Queue& mainQueue);
    ~MacSurfaces() override;
    MacSurfaces(const MacSurfaces&) = delete;
    MacSurfaces& operator=(const MacSurfaces&) = delete;

    std::unique_ptr<PanelSurface> createPanel(const PanelOptions&, SurfaceClient&) override;
    void popUpMenu(
        PanelSurface&, Menu, const Rect& anchor, std::function<void()> onClosed) override;
    void closeMenu() override;
    /// Menus are the system's.
    std::vector<MenuEntry> openMenuEntries() const override { return {}; }
    Subscription monitorPointer(PointerScope, std::function<void()>) override;

private:
    const MacWindowServer& m_windowServer;
    Queue& m_mainQueue;
    QVMenuTarget* m_menu = nil; ///< the menu that is open or about to open
};

}
