#include "Hosts/X11/Surface/X11Surfaces.h"

#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/X11Edge.h"
#include "Hosts/X11/Surface/X11Panel.h"
#include "Hosts/X11/Surface/X11Popup.h"
#include "Hosts/X11/Surface/X11Window.h"

namespace quorvel::xdg::x11 {

X11Surfaces::X11Surfaces(Connection& connection, Dispatch& dispatch, const Monitors& monitors,
    const PanelEnvironment& environment, const Published<Appearance>& appearance)
    : m_presses(connection)
    , m_keyboard(connection)
    , m_hotKeys(connection, dispatch, m_keyboard)
    , m_grabs(connection, dispatch, m_keyboard, m_presses, m_hotKeys)
    , m_compositing(connection)
    , m_arrow(connection)
    , m_context{connection, dispatch, monitors, environment, appearance, m_tools, m_accessible,
          m_compositing, m_grabs, m_keyboard, m_arrow, m_repaint}
    , m_text(m_tools.shaper, monitors.coordinates().scale)
    , m_appearance(appearance.subscribe([this](auto& now) {
        m_tools.shaper.setFont(now.font); // before any view measures with it
        for (auto& [display, window] : m_windows)
            window->repaintAll();
    }))
    , m_blurChanged(
          m_compositing.canBlur().subscribe([this](bool canBlur) { setCanBlur(canBlur); }))
{
    m_tools.shaper.setFont(appearance.value().font);
}

X11Surfaces::~X11Surfaces() = default;

void X11Surfaces::repaintAll()
{
    for (auto& [display, window] : m_windows)
        window->repaintAll();
    m_repaint.emit();
}

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
    if (options.kind == PanelKind::popup || options.kind == PanelKind::menu
        || options.kind == PanelKind::launcher) {
        return std::make_unique<X11Popup>(
            m_context, options, client, [this] { m_pointerMoved.emit(); });
    }
    if (options.kind == PanelKind::edge)
        return std::make_unique<X11Edge>(m_context, options.display, client);
    if (options.kind == PanelKind::window) {
        return std::make_unique<X11Window>(
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

Subscription X11Surfaces::monitorPresses(PointerScope scope, PressHandler handler)
{
    struct Both {
        Subscription presses;
        Subscription listening;
    };
    Both both{m_pressed[scope].subscribe(std::move(handler)), {}};
    if (scope == PointerScope::otherPrograms)
        both.listening = m_presses.listenEverywhere();
    return Subscription{std::make_shared<Both>(std::move(both))};
}

std::vector<Subscription> X11Surfaces::followPresses()
{
    std::vector<Subscription> both;
    both.push_back(m_presses.onOwnWindow.subscribe(
        [this](auto& press) { tell(PointerScope::ownWindows, press); }));
    both.push_back(m_presses.elsewhere.subscribe(
        [this](auto& press) { tell(PointerScope::otherPrograms, press); }));
    return both;
}

void X11Surfaces::tell(PointerScope scope, const ButtonPress& press)
{
    const auto& coordinates = m_context.monitors.coordinates();
    const auto place = coordinates.toPoints({press.place.x, press.place.y, 0, 0});
    m_pressed[scope].emit(place.origin(), press.button);
}

Clipboard* X11Surfaces::clipboard()
{
    if (!m_clipboard)
        m_clipboard.emplace(m_context.connection, m_context.dispatch);
    return &*m_clipboard;
}

}
