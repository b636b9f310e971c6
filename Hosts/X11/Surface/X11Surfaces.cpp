#include "Hosts/X11/Surface/X11Surfaces.h"

#include <algorithm>
#include <cstdlib>
#include <span>

#include <fmt/format.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/X11Panel.h"

namespace quorvel::x11 {

namespace {

constexpr std::uint32_t kMostSupportedAtoms = 4096;

bool isCompositing(Connection& connection)
{
    auto* raw = connection.raw();
    auto name = fmt::format("_NET_WM_CM_S{}", connection.screenNumber());
    auto* atom = xcb_intern_atom_reply(raw,
        xcb_intern_atom(raw, 1, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
    xcb_atom_t selection = atom ? atom->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(atom);
    if (selection == XCB_ATOM_NONE)
        return false;
    auto* owner
        = xcb_get_selection_owner_reply(raw, xcb_get_selection_owner(raw, selection), nullptr);
    bool isOwned = owner && owner->owner != XCB_WINDOW_NONE;
    std::free(owner);
    return isOwned;
}

bool supports(Connection& connection, xcb_atom_t feature)
{
    auto* raw = connection.raw();
    auto* reply = xcb_get_property_reply(raw,
        xcb_get_property(raw, 0, connection.root(), connection.atoms().netSupported, XCB_ATOM_ATOM,
            0, kMostSupportedAtoms),
        nullptr);
    bool isListed = false;
    if (reply && reply->format == 32) {
        std::span atoms{static_cast<const xcb_atom_t*>(xcb_get_property_value(reply)),
            static_cast<std::size_t>(reply->value_len)};
        isListed = std::ranges::find(atoms, feature) != atoms.end();
    }
    std::free(reply);
    return isListed;
}

}

X11Surfaces::X11Surfaces(Connection& connection, Dispatch& dispatch, const Monitors& monitors,
    const PanelEnvironment& environment, const Published<Appearance>& appearance)
    : m_context{connection, dispatch, monitors, environment, appearance, m_shaper}
    , m_text(m_shaper, monitors.coordinates().scale)
    , m_appearance(appearance.subscribe([this](auto&) {
        for (auto& [display, window] : m_windows)
            window->repaintAll();
    }))
{
}

X11Surfaces::~X11Surfaces() = default;

/// Only some window managers blur, and those that do say so; a window that is transparent without
/// need would cost the compositor time.
bool X11Surfaces::canBlur()
{
    if (!m_canBlur)
        m_canBlur = isCompositing(m_context.connection)
            && supports(m_context.connection, m_context.connection.atoms().kdeBlurBehind);
    return *m_canBlur;
}

std::unique_ptr<PanelSurface> X11Surfaces::createPanel(
    const PanelOptions& options, SurfaceClient& client)
{
    return std::make_unique<X11Panel>(windowOf(options.display), options, client);
}

DisplayWindow& X11Surfaces::windowOf(DisplayNumber display)
{
    // Displays that have gone do not come back under their number.
    std::erase_if(m_windows, [](auto& entry) { return !entry.second->hasPanels(); });
    auto& window = m_windows[display];
    if (!window) {
        window = std::make_unique<DisplayWindow>(m_context, display, canBlur());
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

void X11Surfaces::popUpMenu(PanelSurface& surface, Menu menu, const Rect& anchor)
{
    auto* panel = dynamic_cast<X11Panel*>(&surface);
    m_menu.reset();
    if (!panel || menu.empty() || !panel->isVisible())
        return;
    panel->window().cancelPointer();
    auto frame = panel->framePixels();
    double scale = m_context.monitors.coordinates().scale;
    Rect pixels{frame.x + anchor.x * scale, frame.y + anchor.y * scale, anchor.width * scale,
        anchor.height * scale};
    m_menu = std::make_unique<MenuWindow>(m_context, std::move(menu), pixels,
        [this](std::function<void()> action) { closeMenu(std::move(action)); });
}

/// The menu is still on the stack, so it goes in a turn of its own, and the action after it.
void X11Surfaces::closeMenu(std::function<void()> action)
{
    std::shared_ptr<MenuWindow> menu = std::move(m_menu);
    m_menuEnd = m_context.dispatch.main().after(
        {}, [menu = std::move(menu), action = std::move(action)]() mutable {
            menu.reset();
            if (action)
                action();
        });
}

}
