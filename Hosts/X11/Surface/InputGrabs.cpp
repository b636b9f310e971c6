#include "Hosts/X11/Surface/InputGrabs.h"

#include <algorithm>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Input/HotKeys.h"
#include "Hosts/X11/Keyboard.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/Surface/PointerTracker.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr auto kNextAttempt = seconds(0.02);
/// For the click that opened a menu.
constexpr int kMostAttempts = 20;
/// A window manager holds the keyboard until the keys of its shortcut are released.
constexpr int kMostAttemptsAtKeyboard = 100;
constexpr std::uint16_t kPointerMask
    = XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

}

// MARK: One surface's grab

bool InputGrabs::Grab::takeKeyboard()
{
    if (m_extent != Extent::none)
        return true;
    m_grabs.makeWindow();
    if (!m_grabs.grabKeyboard() && m_hold == KeyboardHold::untilPress)
        return false;
    m_grabs.add(*this, Extent::keyboard);
    m_grabs.tellHolders();
    return true;
}

void InputGrabs::Grab::takeAll()
{
    if (m_extent != Extent::all)
        m_grabs.add(*this, Extent::all);
}

void InputGrabs::Grab::release()
{
    m_grabs.remove(*this);
    if (std::exchange(m_hasKeyboard, false))
        m_client.keyboardDidChange(false);
}

bool InputGrabs::Grab::isWaiting() const
{
    return m_extent == Extent::keyboard && !m_grabs.m_hasKeyboard;
}

void InputGrabs::Grab::tell()
{
    m_hasKeyboard = true;
    m_client.keyboardDidChange(true);
}

void InputGrabs::Grab::refuse()
{
    m_grabs.remove(*this);
    m_client.keyboardDidChange(false);
}

// MARK: All of them

InputGrabs::InputGrabs(Connection& connection, Dispatch& dispatch, Keyboard& keyboard,
    PressWatch& presses, HotKeys& hotKeys)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_keyboard(keyboard)
    , m_presses(presses)
    , m_hotKeys(hotKeys)
    , m_input(connection, dispatch, keyboard)
{
    auto endOutside = [this](auto& press) { endKeyboardsOutside(press.place); };
    m_pressed.push_back(presses.began.subscribe([this] { endKeyboards(); }));
    m_pressed.push_back(presses.onOwnWindow.subscribe(endOutside));
    m_pressed.push_back(presses.elsewhere.subscribe(endOutside));
    m_hotKeyReleased = hotKeys.released.subscribe([this] {
        if (m_grabs.empty())
            letGoOfKeyboard();
    });
}

void InputGrabs::add(Grab& grab, Extent extent)
{
    remove(grab);
    grab.m_extent = extent;
    grab.m_hasKeyboard = false;
    m_grabs.push_back(&grab);
    makeWindow();
    if (m_grabs.size() == 1) {
        if (m_hasKeyboard) // since the last one, for the key of a shortcut
            m_keyboard.begin(nullptr);
        m_listening = m_presses.listenEverywhere();
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
    m_presses.setSuspended(holdsAll());
    if (!holdsAll() && std::exchange(m_hasPointer, false))
        xcb_ungrab_pointer(raw, XCB_CURRENT_TIME);
    if (m_grabs.empty()) {
        // What the key of a shortcut does until it comes up is for nobody else.
        if (!m_hotKeys.isHeld())
            letGoOfKeyboard();
        m_listening = {};
        m_input.setReceiver({}, m_window);
    } else {
        m_input.setReceiver({&m_grabs.back()->m_client, &m_grabs.back()->m_surface}, m_window);
    }
    xcb_flush(raw);
    if (holdsAll())
        pointerTaken.emit();
    m_attempts = 0;
    if (holdsAll() || isAwaitingKeyboard())
        tryToHold();
}

bool InputGrabs::isAwaitingKeyboard() const
{
    return std::ranges::any_of(m_grabs, [](auto* grab) { return grab->isWaiting(); });
}

/// A window manager may still hold the pointer for the click that opened a menu, or the keyboard
/// for the shortcut: try again for a moment.
void InputGrabs::tryToHold()
{
    const bool hasPointer = !holdsAll() || grabPointer();
    if (grabKeyboard()) {
        tellHolders();
        if (hasPointer)
            return;
    }
    m_nextAttempt = m_dispatch.main().after(kNextAttempt, [this] {
        const int most = isAwaitingKeyboard() ? kMostAttemptsAtKeyboard : kMostAttempts;
        if (++m_attempts < most)
            return tryToHold();
        giveUp();
    });
}

void InputGrabs::giveUp()
{
    if (holdsAll() && !m_hasPointer)
        return m_grabs.back()->m_client.inputGrabDidEnd();
    forThose([](const Grab& grab) { return grab.isWaiting(); }, &Grab::refuse);
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
    m_keyboard.prepare();
    auto* raw = m_connection.raw();
    auto grab = xcb_grab_keyboard(
        raw, false, m_window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    auto keys = xcb_query_keymap(raw); // sent together, so that no press comes between
    auto reply = owned(xcb_grab_keyboard_reply(raw, grab, nullptr));
    auto down = owned(xcb_query_keymap_reply(raw, keys, nullptr));
    m_hasKeyboard = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    if (m_hasKeyboard) {
        m_keyboard.begin(down.get());
        m_hotKeys.handOver(down.get());
    }
    return m_hasKeyboard;
}

void InputGrabs::letGoOfKeyboard()
{
    if (!std::exchange(m_hasKeyboard, false))
        return;
    m_hotKeys.takeBack();
    xcb_ungrab_keyboard(m_connection.raw(), XCB_CURRENT_TIME);
    xcb_flush(m_connection.raw());
}

/// Those that hold nothing but the keyboard hear when it comes.
void InputGrabs::tellHolders()
{
    if (!m_hasKeyboard)
        return;
    forThose(
        [](const Grab& grab) { return grab.m_extent == Extent::keyboard && !grab.m_hasKeyboard; },
        &Grab::tell);
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
    m_events = m_connection.event.subscribe([this](auto* event) { handle(event); });
}

// MARK: Events

void InputGrabs::handle(const xcb_generic_event_t* event)
{
    if (eventWindow(event) != m_window)
        return;
    if (m_grabs.empty()) { // on its way when the last one ended, or a shortcut's key is down still
        if ((event->response_type & 0x7f) == XCB_KEY_PRESS)
            m_hotKeys.takesLate(as<xcb_key_press_event_t>(event));
        return;
    }
    switch (event->response_type & 0x7f) {
    case XCB_KEY_PRESS:
        handlePress(as<xcb_key_press_event_t>(event));
        break;
    case XCB_KEY_RELEASE:
        m_input.release(as<xcb_key_release_event_t>(event));
        break;
    default:
        if (holdsAll())
            handlePointer(event);
        break;
    }
}

/// A shortcut is no key for any surface, and ends a menu, which would lie over what it opens.
void InputGrabs::handlePress(const xcb_key_press_event_t& event)
{
    const auto press = m_hotKeys.takes(event);
    if (press == HotKeys::Press::foreign)
        m_input.press(event);
    else if (press == HotKeys::Press::first && holdsAll())
        m_grabs.back()->m_client.inputGrabDidEnd();
}

/// All events have the grabs' own window: where on the screen is what tells.
void InputGrabs::handlePointer(const xcb_generic_event_t* event)
{
    auto& input = as<xcb_button_press_event_t>(event);
    auto& grab = *m_grabs.back();
    auto frame = grab.m_surface.framePixels();
    double scale = grab.m_surface.scale();
    Point at{(input.root_x - frame.x) / scale, (input.root_y - frame.y) / scale};
    auto tell = [&](PointerAction action, PointerButton button) {
        grab.m_client.pointerEvent({action, at, button, heldButtonsOf(input.state),
            m_keyboard.modifiers().modifiersIn(input.state)});
    };
    switch (event->response_type & 0x7f) {
    case XCB_MOTION_NOTIFY:
        return tell(PointerAction::moved, PointerButton::none);
    case XCB_BUTTON_PRESS:
        if (auto scroll = scrollEventOf(input.detail, at))
            return grab.m_client.scrollEvent(*scroll);
        if (auto button = pointerButtonOf(input.detail); button != PointerButton::none)
            tell(PointerAction::pressed, button);
        break;
    case XCB_BUTTON_RELEASE:
        if (auto button = pointerButtonOf(input.detail); button != PointerButton::none)
            tell(PointerAction::released, button);
        break;
    default:
        break;
    }
}

void InputGrabs::endKeyboards()
{
    forThose(
        [](const Grab& grab) {
            return grab.m_extent == Extent::keyboard && grab.m_hold == KeyboardHold::untilPress;
        },
        &Grab::release);
}

void InputGrabs::endKeyboardsOutside(Point pixels)
{
    forThose(
        [pixels](const Grab& grab) {
            return grab.m_extent == Extent::keyboard
                && grab.m_hold == KeyboardHold::untilPressOutside
                && !grab.m_surface.framePixels().contains(pixels);
        },
        &Grab::release);
}

/// A client that hears of it may end other grabs, or its own.
template <typename Condition> void InputGrabs::forThose(Condition condition, void (Grab::*action)())
{
    for (auto* grab : std::vector{m_grabs}) {
        if (std::ranges::find(m_grabs, grab) != m_grabs.end() && condition(*grab))
            (grab->*action)();
    }
}

}
