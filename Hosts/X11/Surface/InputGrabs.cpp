#include "Hosts/X11/Surface/InputGrabs.h"

#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Keyboard.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Surface/PointerTracker.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr int kMostAttempts = 20;
constexpr auto kNextAttempt = seconds(0.02);
constexpr std::uint16_t kPointerMask
    = XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

}

// MARK: One surface's grab

bool InputGrabs::Grab::takeKeyboard()
{
    if (m_extent != Extent::none)
        return true;
    m_grabs.makeWindow();
    if (!m_grabs.grabKeyboard())
        return false;
    m_grabs.add(*this, Extent::keyboard);
    m_client.keyboardDidChange(true);
    return true;
}

void InputGrabs::Grab::takeAll()
{
    if (m_extent != Extent::all)
        m_grabs.add(*this, Extent::all);
}

void InputGrabs::Grab::release()
{
    bool hadKeyboardOnly = m_extent == Extent::keyboard;
    if (m_grabs.remove(*this) && hadKeyboardOnly)
        m_client.keyboardDidChange(false);
}

// MARK: All of them

InputGrabs::InputGrabs(Connection& connection, Dispatch& dispatch, Keyboard& keyboard)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_keyboard(keyboard)
    , m_presses(connection, XCB_INPUT_DEVICE_ALL, XCB_INPUT_RAW_BUTTON_PRESS)
{
}

void InputGrabs::add(Grab& grab, Extent extent)
{
    remove(grab);
    grab.m_extent = extent;
    m_grabs.push_back(&grab);
    makeWindow();
    m_keyboard.prepare();
    if (m_grabs.size() == 1) {
        m_presses.listen(true);
        m_events = m_connection.event.subscribe([this](auto* event) { handle(event); });
    }
    followTop();
}

bool InputGrabs::remove(Grab& grab)
{
    if (std::exchange(grab.m_extent, Extent::none) == Extent::none)
        return false;
    std::erase(m_grabs, &grab);
    followTop();
    return true;
}

void InputGrabs::followTop()
{
    auto* raw = m_connection.raw();
    m_nextAttempt.cancel();
    if (!holdsAll() && std::exchange(m_hasPointer, false))
        xcb_ungrab_pointer(raw, XCB_CURRENT_TIME);
    if (m_grabs.empty()) {
        if (std::exchange(m_hasKeyboard, false))
            xcb_ungrab_keyboard(raw, XCB_CURRENT_TIME);
        m_presses.listen(false);
        m_events = {};
    }
    xcb_flush(raw);
    if (!holdsAll())
        return;
    m_attempts = 0;
    pointerTaken.emit();
    tryToHold();
}

/// A window manager may still hold the pointer for the click that opened a menu, or the keyboard
/// for the shortcut: try again for a moment.
void InputGrabs::tryToHold()
{
    bool hasPointer = grabPointer();
    bool hasKeyboard = grabKeyboard();
    if (hasPointer && hasKeyboard)
        return;
    m_nextAttempt = m_dispatch.main().after(kNextAttempt, [this] {
        if (++m_attempts < kMostAttempts)
            return tryToHold();
        if (!m_hasPointer)
            m_grabs.back()->m_client.inputGrabDidEnd();
    });
}

bool InputGrabs::grabPointer()
{
    if (m_hasPointer)
        return true;
    auto* raw = m_connection.raw();
    auto reply = owned(xcb_grab_pointer_reply(raw,
        xcb_grab_pointer(raw, false, m_window, kPointerMask, XCB_GRAB_MODE_ASYNC,
            XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    m_hasPointer = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    return m_hasPointer;
}

bool InputGrabs::grabKeyboard()
{
    if (m_hasKeyboard)
        return true;
    auto* raw = m_connection.raw();
    auto reply = owned(xcb_grab_keyboard_reply(raw,
        xcb_grab_keyboard(
            raw, false, m_window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr));
    m_hasKeyboard = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    return m_hasKeyboard;
}

/// The windows of surfaces come and go; only a window that is mapped can have a grab.
void InputGrabs::makeWindow()
{
    if (m_window != XCB_WINDOW_NONE)
        return;
    auto* raw = m_connection.raw();
    m_window = xcb_generate_id(raw);
    std::uint32_t overrideRedirect = 1;
    xcb_create_window(raw, 0, m_window, m_connection.root(), -1, -1, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
        &overrideRedirect);
    xcb_map_window(raw, m_window);
}

// MARK: Events

void InputGrabs::handle(const xcb_generic_event_t* event)
{
    if (!holdsAll() && m_presses.areIn(event))
        return endKeyboards();
    if (m_grabs.empty() || eventWindow(event) != m_window)
        return;
    switch (event->response_type & 0x7f) {
    case XCB_KEY_PRESS:
        m_grabs.back()->m_client.keyPressed(m_keyboard.press(as<xcb_key_press_event_t>(event)));
        break;
    case XCB_KEY_RELEASE:
        m_keyboard.release(as<xcb_key_release_event_t>(event));
        break;
    default:
        if (holdsAll())
            handlePointer(event);
        break;
    }
}

/// All events have the grabs' own window: where on the screen is what tells.
void InputGrabs::handlePointer(const xcb_generic_event_t* event)
{
    auto& input = as<xcb_button_press_event_t>(event);
    auto& grab = *m_grabs.back();
    auto frame = grab.m_surface.framePixels();
    double scale = grab.m_surface.scale();
    Point at{(input.root_x - frame.x) / scale, (input.root_y - frame.y) / scale};
    switch (event->response_type & 0x7f) {
    case XCB_MOTION_NOTIFY:
        return grab.m_client.pointerEvent({PointerAction::moved, at});
    case XCB_BUTTON_PRESS:
        if (auto scroll = scrollEventOf(input.detail, at))
            return grab.m_client.scrollEvent(*scroll);
        if (auto button = pointerButtonOf(input.detail); button != PointerButton::none)
            grab.m_client.pointerEvent({PointerAction::pressed, at, button});
        break;
    case XCB_BUTTON_RELEASE:
        if (auto button = pointerButtonOf(input.detail); button != PointerButton::none)
            grab.m_client.pointerEvent({PointerAction::released, at, button});
        break;
    default:
        break;
    }
}

void InputGrabs::endKeyboards()
{
    while (!m_grabs.empty() && !holdsAll())
        m_grabs.back()->release();
}

}
