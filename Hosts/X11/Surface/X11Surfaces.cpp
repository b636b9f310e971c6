#include "Hosts/X11/Surface/X11Surfaces.h"

#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/X11Panel.h"
#include "Hosts/X11/Surface/X11Popup.h"

namespace quorvel::xdg::x11 {

X11Surfaces::X11Surfaces(Connection& connection, Dispatch& dispatch, const Monitors& monitors,
    const PanelEnvironment& environment, const Published<Appearance>& appearance)
    : m_frames(connection, monitors)
    , m_keyboard(connection)
    , m_compositing(connection)
    , m_context{connection, dispatch, monitors, environment, appearance, m_shaper, m_frames,
          m_accessible, m_keyboard, m_compositing}
    , m_text(m_shaper, monitors.coordinates().scale)
    , m_appearance(appearance.subscribe([this](auto& now) {
        m_shaper.setFont(now.font); // before any view measures with it
        for (auto& [display, window] : m_windows)
            window->repaintAll();
    }))
    , m_blurChanged(
          m_compositing.canBlur().subscribe([this](bool canBlur) { setCanBlur(canBlur); }))
{
    m_shaper.setFont(appearance.value().font);
}

X11Surfaces::~X11Surfaces() = default;

/// A window that is transparent without need would cost the compositor time.
void X11Surfaces::setCanBlur(bool canBlur)
{
    for (auto& [display, window] : m_windows)
        window->setCanBlur(canBlur);
    blurDidChange.emit();
}

std::unique_ptr<PanelSurface> X11Surfaces::createPanel(
    const PanelOptions& options, SurfaceClient& client)
{
    if (options.kind == PanelKind::popup) {
        return std::make_unique<X11Popup>(
            m_context, options, client, [this] { m_pointerMoved.emit(); });
    }
    return std::make_unique<X11Panel>(windowOf(options.display), options, client);
}

DisplayWindow& X11Surfaces::windowOf(DisplayNumber display)
{
    // Displays that have gone do not come back under their number.
    std::erase_if(m_windows, [](auto& entry) { return !entry.second->hasPanels(); });
    auto& window = m_windows[display];
    if (!window) {
        window
            = std::make_unique<DisplayWindow>(m_context, display, m_compositing.canBlur().value());
        window->onPointerMoved = [this] { m_pointerMoved.emit(); };
    }
    return *window;
}

/// What happens over other programs' windows is theirs.
Subscription X11Surfaces::monitorPointer(PointerScope scope, std::function<void()> handler)
{
    return scope == PointerScope::ownWindows ? m_pointerMoved.subscribe(std::move(handler))
                                             : Subscription{};
}

void X11Surfaces::popUpMenu(
    PanelSurface& panel, Menu menu, const Rect& anchor, std::function<void()> onClosed)
{
    closeMenu();
    auto* surface = dynamic_cast<X11Surface*>(&panel);
    if (!surface || menu.empty() || !surface->isVisible()) {
        if (onClosed)
            m_context.dispatch.main().async(std::move(onClosed));
        return;
    }
    surface->losePointer();
    auto frame = surface->framePixels();
    double scale = m_context.scale();
    Rect pixels{frame.x + anchor.x * scale, frame.y + anchor.y * scale, anchor.width * scale,
        anchor.height * scale};
    m_onMenuClosed = std::move(onClosed);
    m_menu = std::make_unique<MenuSession>(m_context, std::move(menu), pixels,
        [this](std::function<void()> action) { tellClosed(std::move(m_menu), std::move(action)); });
}

void X11Surfaces::closeMenu()
{
    if (!m_menu)
        return;
    m_menu.reset();
    tellClosed({}, {});
}

/// The menu is still on the stack, so it goes in a turn of its own, and the action after it.
void X11Surfaces::tellClosed(std::shared_ptr<MenuSession> menu, std::function<void()> action)
{
    m_context.dispatch.main().async([menu = std::move(menu), action = std::move(action),
                                        onClosed = std::exchange(m_onMenuClosed, {})]() mutable {
        menu.reset();
        if (onClosed)
            onClosed();
        if (action)
            action();
    });
}

std::vector<MenuEntry> X11Surfaces::openMenuEntries() const
{
    return m_menu ? m_menu->entries() : std::vector<MenuEntry>{};
}

}
