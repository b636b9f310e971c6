#include "Hosts/X11/Surface/X11Popup.h"

#include <utility>

#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Surface/ArrowCursor.h"
#include "Hosts/X11/Surface/Compositing.h"

namespace quorvel::xdg::x11 {

namespace {

/// Until colours beside a window are followed: windows move, and films play.
constexpr Duration kBackdropPause = seconds(0.25);

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
    : WindowedSurface(context, options, client, std::move(onPointerMoved))
    , m_grab(context.grabs, *this, client, holdOf(options.kind))
{
    m_compositingChange = m_context.compositing.isActive().subscribe([this](bool isComposited) {
        if (m_window && m_window->setComposited(isComposited))
            repaintAll();
    });
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
    becomeAccessible();
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
    m_backdropTimer = {};
    m_window.reset();
    windowDidGo();
}

void X11Popup::setOpacity(double opacity)
{
    if (std::exchange(m_opacity, opacity) != opacity && m_window)
        m_window->setOpacity(opacity);
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

void X11Popup::handle(const xcb_generic_event_t* event)
{
    if (!m_window || eventWindow(event) != m_window->id())
        return;
    if ((event->response_type & 0x7f) == XCB_EXPOSE)
        return m_window->expose(exposedPart(as<xcb_expose_event_t>(event)));
    pointerEvent(event);
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
    paintOn(m_window->picture(), parts);
    m_window->present(parts);
    if (!m_backdropTimer.isPending())
        followBackdrop();
}

void X11Popup::followBackdrop()
{
    m_backdropTimer = m_context.dispatch.main().after(kBackdropPause, [this] {
        m_backdropTimer = {};
        if (m_window && m_window->followBackdrop())
            followBackdrop();
    });
}

}
