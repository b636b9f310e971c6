#include "Hosts/X11/Surface/X11Popup.h"

#include <utility>

#include "Hosts/Linux/Accessible/AccessibleSurfaces.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/ArrowCursor.h"
#include "Hosts/X11/Surface/Compositing.h"
#include "Hosts/X11/Surface/FrameIntervals.h"
#include "Hosts/X11/Surface/PartPainter.h"

namespace quorvel::xdg::x11 {

namespace {

/// The list of a launcher is clicked, and typing goes on.
KeyboardHold holdOf(PanelKind kind)
{
    return kind == PanelKind::launcher ? KeyboardHold::untilPressOutside : KeyboardHold::untilPress;
}

/// What compositors are told; for them a launcher is something like a large menu.
PopupWindow::Kind windowKindOf(PanelKind kind)
{
    return kind == PanelKind::popup ? PopupWindow::Kind::tooltip : PopupWindow::Kind::menu;
}

}

X11Popup::X11Popup(const SurfaceContext& context, const PanelOptions& options,
    SurfaceClient& client, std::function<void()> onPointerMoved)
    : m_context(context)
    , m_options(options)
    , m_client(client)
    , m_onPointerMoved(std::move(onPointerMoved))
    , m_paint([this] { paint(); })
    , m_grab(context.grabs, *this, client, holdOf(options.kind))
{
    auto& connection = m_context.connection;
    m_pointer.setClient(&m_client);
    m_subscriptions.push_back(connection.event.subscribe([this](auto* event) { handle(event); }));
    m_subscriptions.push_back(connection.turnEnded.subscribe([this] { endTurn(); }));
    m_subscriptions.push_back(m_context.grabs.pointerTaken.subscribe([this] { m_pointer.lose(); }));
    m_subscriptions.push_back(m_context.monitors.changed.subscribe([this] { repaintAll(); }));
    m_subscriptions.push_back(m_context.appearance.subscribe([this](auto&) { repaintAll(); }));
    m_subscriptions.push_back(m_context.compositing.isActive().subscribe([this](bool isComposited) {
        if (m_window && m_window->setComposited(isComposited))
            repaintAll();
    }));
}

X11Popup::~X11Popup() = default;

void X11Popup::setFrame(const Rect& frame)
{
    if (frame == m_frame)
        return;
    bool isResized = frame.size() != m_frame.size();
    m_frame = frame;
    m_paint.request();
    if (isResized)
        m_client.surfaceDidResize(frame.size());
}

void X11Popup::orderFront()
{
    m_isOrderedIn = true;
    if (m_window)
        return m_window->raise();
    m_context.compositing.refresh();
    m_window = std::make_unique<PopupWindow>(m_context.connection, m_options.title,
        windowKindOf(m_options.kind), m_context.compositing.isActive().value());
    m_window->setCursor(m_context.arrow.id());
    if (m_opacity < 1)
        m_window->setOpacity(m_opacity);
    m_accessible = m_context.accessible.add(*this, m_client);
    repaintAll();
}

/// What is typed from now on is meant for it, though it may not have been painted yet.
void X11Popup::makeKeyAndOrderFront()
{
    orderFront();
    if (m_options.kind == PanelKind::launcher)
        m_grab.takeKeyboard();
}

void X11Popup::orderOut()
{
    m_isOrderedIn = false;
    m_grab.release();
    m_accessible = {};
    m_window.reset();
    m_pointer.lose();
}

void X11Popup::setOpacity(double opacity)
{
    if (std::exchange(m_opacity, opacity) != opacity && m_window)
        m_window->setOpacity(opacity);
}

void X11Popup::invalidate(const Rect& points)
{
    if (!m_window)
        return; // it is painted whole when it comes up
    m_damage.add(points, scale());
    m_paint.request();
}

Duration X11Popup::frameInterval() const
{
    return m_context.frames.of(m_options.display);
}

bool X11Popup::takeKeyboard()
{
    return m_window && m_grab.takeKeyboard();
}

bool X11Popup::grabInput()
{
    if (!m_window)
        return false;
    m_grab.takeAll();
    return true;
}

void X11Popup::accessibleTreeDidChange()
{
    m_context.accessible.changed.emit();
}

void X11Popup::repaintAll()
{
    m_damage.add(Rect::from({}, framePixels().size()));
    m_paint.request();
}

void X11Popup::handle(const xcb_generic_event_t* event)
{
    if (!m_window || eventWindow(event) != m_window->id())
        return;
    if ((event->response_type & 0x7f) == XCB_EXPOSE)
        return m_window->expose(exposedPart(as<xcb_expose_event_t>(event)));
    m_pointer.setScale(scale());
    m_pointer.handle(event);
}

void X11Popup::endTurn()
{
    auto tell = m_onPointerMoved; // a client may do away with the popup when it hears of the motion
    if (m_pointer.endTurn() && tell)
        tell();
}

void X11Popup::paint()
{
    auto pixels = framePixels();
    auto bounds = Rect::from({}, pixels.size());
    auto parts = m_damage.take(bounds);
    if (!m_window || m_frame.isEmpty())
        return;
    if (m_window->setFrame(pixels))
        parts = {bounds};
    if (!m_window->picture())
        return;
    for (auto& part : parts)
        paintPart(m_context, m_client, m_window->picture(), part);
    m_window->present(parts);
}

}
