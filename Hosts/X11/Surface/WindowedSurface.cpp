#include "Hosts/X11/Surface/WindowedSurface.h"

#include <utility>

#include "Hosts/Linux/Accessible/AccessibleSurfaces.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/InputGrabs.h"
#include "Hosts/X11/Surface/PartPainter.h"

namespace quorvel::xdg::x11 {

WindowedSurface::WindowedSurface(const SurfaceContext& context, const PanelOptions& options,
    SurfaceClient& client, std::function<void()> onPointerMoved)
    : m_context(context)
    , m_options(options)
    , m_client(client)
    , m_paint([this] { return frameInterval(); }, [this] { paint(); })
    , m_onPointerMoved(std::move(onPointerMoved))
{
    auto& connection = m_context.connection;
    m_pointer.setClient(&m_client);
    m_subscriptions.push_back(connection.event.subscribe([this](auto* event) { handle(event); }));
    m_subscriptions.push_back(connection.turnEnded.subscribe([this] { endTurn(); }));
    m_subscriptions.push_back(m_context.grabs.pointerTaken.subscribe([this] { m_pointer.lose(); }));
    m_subscriptions.push_back(m_context.monitors.changed.subscribe([this] { scaleDidChange(); }));
    m_subscriptions.push_back(m_context.appearance.subscribe([this](auto&) { repaintAll(); }));
    m_subscriptions.push_back(m_context.repaint.subscribe([this] { repaintAll(); }));
}

WindowedSurface::~WindowedSurface() = default;

void WindowedSurface::invalidate(const Rect& points)
{
    if (!hasWindow())
        return; // it is painted whole when it comes up
    m_damage.add(points.scaled(scale()));
    m_paint.request();
}

Duration WindowedSurface::frameInterval() const
{
    return m_context.monitors.frameInterval(m_options.display);
}

void WindowedSurface::accessibleTreeDidChange()
{
    m_context.accessible.changed.emit();
}

void WindowedSurface::becomeAccessible()
{
    m_accessible = m_context.accessible.add(*this, m_client);
}

void WindowedSurface::repaintAll()
{
    if (!hasWindow())
        return;
    m_damage.add(Rect::from({}, framePixels().size()));
    m_paint.request();
}

void WindowedSurface::paintOn(cairo_surface_t* picture, const std::vector<Rect>& parts) const
{
    for (auto& part : parts)
        paintPart(m_context, m_client, picture, part);
}

void WindowedSurface::pointerEvent(const xcb_generic_event_t* event)
{
    m_pointer.setScale(scale());
    m_pointer.handle(event);
}

void WindowedSurface::windowDidGo()
{
    m_accessible = {};
    m_pointer.lose();
}

void WindowedSurface::endTurn()
{
    auto tell
        = m_onPointerMoved; // a client may do away with the surface when it hears of the motion
    if (m_pointer.endTurn() && tell)
        tell();
}

}
