#include "Hosts/X11/Surface/X11Window.h"

#include <algorithm>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Keyboard.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/ArrowCursor.h"

namespace quorvel::xdg::x11 {

X11Window::X11Window(const SurfaceContext& context, const PanelOptions& options,
    SurfaceClient& client, std::function<void()> onPointerMoved)
    : WindowedSurface(context, options, client, std::move(onPointerMoved))
    , m_input(context.connection, context.dispatch, context.keyboard)
    , m_time(context.connection)
{
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
        becomeAccessible();
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
    setHasKeyboard(false);
    m_window.reset();
    windowDidGo();
}

void X11Window::scaleDidChange()
{
    if (m_window)
        m_window->setFrame(m_context.toPixels(m_frame));
    repaintAll();
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
        pointerEvent(event);
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
    WindowedSurface::endTurn();
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
    paintOn(m_window->picture(), parts);
    m_window->present(parts);
}

}
