#include "Hosts/X11/Surface/X11Window.h"

#include <algorithm>
#include <utility>

#include "Hosts/Linux/Accessible/AccessibleSurfaces.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Keyboard.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/ArrowCursor.h"
#include "Hosts/X11/Surface/FrameIntervals.h"
#include "Hosts/X11/Surface/InputGrabs.h"
#include "Hosts/X11/Surface/PartPainter.h"

namespace quorvel::xdg::x11 {

X11Window::X11Window(const SurfaceContext& context, const PanelOptions& options,
    SurfaceClient& client, std::function<void()> onPointerMoved)
    : m_context(context)
    , m_options(options)
    , m_client(client)
    , m_onPointerMoved(std::move(onPointerMoved))
    , m_paint([this] { paint(); })
    , m_input(context.connection, context.dispatch, context.keyboard)
    , m_time(context.connection)
{
    auto& connection = m_context.connection;
    m_pointer.setClient(&m_client);
    m_subscriptions.push_back(connection.event.subscribe([this](auto* event) { handle(event); }));
    m_subscriptions.push_back(connection.turnEnded.subscribe([this] { endTurn(); }));
    m_subscriptions.push_back(m_context.grabs.pointerTaken.subscribe([this] { m_pointer.lose(); }));
    m_subscriptions.push_back(m_context.monitors.changed.subscribe([this] { scaleDidChange(); }));
    m_subscriptions.push_back(m_context.appearance.subscribe([this](auto&) { repaintAll(); }));
}

X11Window::~X11Window() = default;

void X11Window::setFrame(const Rect& frame)
{
    if (frame == m_frame)
        return;
    bool isResized = frame.size() != m_frame.size();
    m_frame = frame;
    if (m_window)
        m_window->setFrame(m_context.toPixels(frame));
    if (!isResized)
        return;
    m_client.surfaceDidResize(frame.size());
    repaintAll();
}

Rect X11Window::framePixels() const
{
    return m_window ? m_window->frame() : m_context.toPixels(m_frame);
}

void X11Window::show(Wish wish)
{
    bool isNew = !m_window;
    if (isNew) {
        m_context.keyboard.prepare();
        m_window = std::make_unique<TitledWindow>(
            m_context.connection, m_options.title, m_context.toPixels(m_frame));
        m_window->setCursor(m_context.arrow.id());
        m_window->onCloseWanted = [this] { m_client.closeRequested(); };
        m_accessible = m_context.accessible.add(*this, m_client);
        repaintAll();
    }
    m_time.ask([this, isNew, wish](xcb_timestamp_t now) {
        if (m_window && isNew) {
            paint(); // it comes up with its picture
            m_window->map(now);
        } else if (m_window && wish == Wish::active) {
            m_window->activate(now);
        }
    });
}

void X11Window::orderOut()
{
    if (!m_window)
        return;
    m_accessible = {};
    setHasKeyboard(false);
    m_window.reset();
    m_pointer.lose();
}

void X11Window::invalidate(const Rect& points)
{
    if (!m_window)
        return; // it is painted whole when it comes up
    m_damage.add(points, scale());
    m_paint.request();
}

Duration X11Window::frameInterval() const
{
    return m_context.frames.of(m_options.display);
}

void X11Window::accessibleTreeDidChange()
{
    m_context.accessible.changed.emit();
}

void X11Window::scaleDidChange()
{
    if (m_window)
        m_window->setFrame(m_context.toPixels(m_frame));
    repaintAll();
}

void X11Window::repaintAll()
{
    if (!m_window)
        return;
    m_damage.add(Rect::from({}, m_window->frame().size()));
    m_paint.request();
}

// MARK: Events

void X11Window::handle(const xcb_generic_event_t* event)
{
    // It names no window, and follows right after what does.
    if ((event->response_type & 0x7f) == XCB_KEYMAP_NOTIFY)
        return keysAreDown(as<xcb_keymap_notify_event_t>(event));
    if (!m_window || eventWindow(event) != m_window->id())
        return;
    switch (event->response_type & 0x7f) {
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
        return focusDidChange(as<xcb_focus_in_event_t>(event));
    case XCB_KEY_PRESS:
        if (m_hasKeyboard)
            m_input.press(as<xcb_key_press_event_t>(event));
        return;
    case XCB_KEY_RELEASE:
        if (m_hasKeyboard)
            m_input.release(as<xcb_key_release_event_t>(event));
        return;
    default:
        // The window's own first: what the pointer does may end it.
        m_window->handle(event);
        m_pointer.setScale(scale());
        m_pointer.handle(event);
    }
}

/// Grabs take the keys for a moment, and the focus stays. Without a window manager the focus may be
/// wherever the pointer is, which is no focus of ours.
void X11Window::focusDidChange(const xcb_focus_in_event_t& event)
{
    bool isGrab = event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB;
    bool isPointer = event.detail == XCB_NOTIFY_DETAIL_POINTER
        || event.detail == XCB_NOTIFY_DETAIL_POINTER_ROOT;
    if (isGrab || isPointer)
        return;
    bool hasFocus = (event.response_type & 0x7f) == XCB_FOCUS_IN;
    m_awaitsKeys = hasFocus;
    setHasKeyboard(hasFocus);
}

void X11Window::setHasKeyboard(bool hasKeyboard)
{
    if (std::exchange(m_hasKeyboard, hasKeyboard) == hasKeyboard)
        return;
    if (hasKeyboard)
        m_input.setReceiver({&m_client, this}, m_window->id());
    else
        m_input.setReceiver({}, XCB_WINDOW_NONE);
    m_client.keyboardDidChange(hasKeyboard);
}

void X11Window::keysAreDown(const xcb_keymap_notify_event_t& event)
{
    if (!std::exchange(m_awaitsKeys, false))
        return;
    xcb_query_keymap_reply_t down{}; // the event leaves out the first eight, which no key has
    std::ranges::copy(event.keys, down.keys + 1);
    m_context.keyboard.begin(&down);
}

void X11Window::endTurn()
{
    if (m_window && m_window->endTurn())
        followPlace();
    auto tell
        = m_onPointerMoved; // a client may do away with the window when it hears of the motion
    if (m_pointer.endTurn() && tell)
        tell();
}

void X11Window::followPlace()
{
    auto& coordinates = m_context.monitors.coordinates();
    auto size = m_frame.size();
    m_frame = coordinates.toPoints(m_window->frame()).flipped(coordinates.primaryHeight());
    if (m_frame.size() != size) {
        m_client.surfaceDidResize(m_frame.size());
        repaintAll();
    }
    accessibleTreeDidChange();
}

void X11Window::paint()
{
    if (!m_window)
        return;
    auto parts = m_damage.take(Rect::from({}, m_window->frame().size()));
    if (!m_window->picture())
        return;
    for (auto& part : parts)
        paintPart(m_context, m_client, m_window->picture(), part);
    m_window->present(parts);
}

}
