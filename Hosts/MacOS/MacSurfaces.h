#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/Rules/MenuSession.h"
#include "Hosts/MacOS/SurfaceContext.h"
#include "Quorvel/Platform/Surfaces.h"

@class QVMenuTarget;

namespace quorvel {

class MacSurfaces final : public Surfaces, public NativeMenus {
public:
    explicit MacSurfaces(const SurfaceContext&);

    std::unique_ptr<PanelSurface> createPanel(const PanelOptions&, SurfaceClient&) override;
    NativeMenus* nativeMenus() override { return this; }
    void popUpMenu(
        PanelSurface&, Menu, const Rect& anchor, std::function<void(MenuEnding)> onClosed) override;
    void closeMenu() override { m_menu.close(); }
    Subscription monitorPointer(PointerScope, std::function<void()>) override;
    Subscription monitorPresses(PointerScope, PressHandler) override;
    std::unique_ptr<NativeTextField> createTextField(
        PanelSurface&, NativeTextFieldClient&) override;

private:
    SurfaceContext m_context;
    OpenMenu m_menu;
    QVMenuTarget* m_menuTarget = nil; ///< of the last menu; menu items do not retain it
};

}
