#include "Hosts/X11/Input/HotKeys.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/KeyCodes.h"
#include "Hosts/X11/Keyboard.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/SelectionEvents.h"

namespace quorvel::xdg::x11 {

namespace {

/// Of a key event's state; above them are buttons and the group of the layout.
constexpr unsigned kModifierBits = 0xFF;
/// After a window manager has come or gone. A manager that replaces another grabs its keys a moment
/// after it has announced itself, and the other one gives them back late.
constexpr std::array kRetries{Duration::zero(), seconds(0.5), seconds(1.5), seconds(4)};
/// The least from one attempt to the next when other windows become active.
constexpr Duration kNowAndThen = seconds(3);

bool isDown(const xcb_query_keymap_reply_t& keys, std::size_t key)
{
    return keys.keys[key / 8] >> key % 8 & 1;
}

/// Of the keys that are down, the one that is no modifier; absent if there are more, or none.
std::optional<xcb_keycode_t> onlyKey(
    const xcb_query_keymap_reply_t& down, const xcb_get_modifier_mapping_reply_t& mapping)
{
    const std::span modifiers{xcb_get_modifier_mapping_keycodes(&mapping),
        static_cast<std::size_t>(xcb_get_modifier_mapping_keycodes_length(&mapping))};
    std::optional<xcb_keycode_t> found;
    for (unsigned key = 1; key < 256; ++key) {
        const auto code = static_cast<xcb_keycode_t>(key);
        if (!isDown(down, key) || std::ranges::find(modifiers, code) != modifiers.end())
            continue;
        if (found)
            return std::nullopt;
        found = code;
    }
    return found;
}

}

// MARK: One shortcut

class HotKeys::Registration final : public HotkeyRegistration {
public:
    Registration(HotKeys& owner, std::uint32_t ofKey, std::uint32_t withModifiers, HotkeyID name)
        : keyCode(ofKey)
        , modifiers(withModifiers)
        , id(name)
        , m_owner(owner)
    {
        m_owner.m_registrations.push_back(this);
    }
    ~Registration() override
    {
        std::erase(m_owner.m_registrations, this);
        m_owner.ungrab(*this);
        m_owner.retryRefused(Duration::zero());
    }
    HotkeyOutcome outcome() const override { return state; }

    const std::uint32_t keyCode;
    const std::uint32_t modifiers;
    const HotkeyID id;
    HotkeyOutcome state = HotkeyOutcome::failed;
    xcb_keycode_t key = 0;
    std::uint16_t bits = 0; ///< of the X server

private:
    HotKeys& m_owner;
};

/// What another program has a grab for.
class HotKeys::Held final : public HotkeyRegistration {
public:
    Held(HotKeys& owner, xcb_keycode_t ofKey, std::uint16_t withBits, HotkeyID name)
        : key(ofKey)
        , bits(withBits)
        , id(name)
        , m_owner(owner)
    {
        m_owner.m_heldElsewhere.push_back(this);
    }
    ~Held() override { std::erase(m_owner.m_heldElsewhere, this); }
    HotkeyOutcome outcome() const override { return HotkeyOutcome::taken; }

    const xcb_keycode_t key;
    const std::uint16_t bits; ///< of the X server
    const HotkeyID id;

private:
    HotKeys& m_owner;
};

HotKeys::HotKeys(Connection& connection, Dispatch& dispatch, Keyboard& keyboard)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_keyboard(keyboard)
{
}

HotKeys::~HotKeys() = default;

std::unique_ptr<HotkeyRegistration> HotKeys::registerHotkey(
    std::uint32_t keyCode, std::uint32_t modifiers, const HotkeyID& id)
{
    begin();
    auto registration = std::make_unique<Registration>(*this, keyCode, modifiers, id);
    grab(*registration);
    return registration;
}

Subscription HotKeys::installHandler(Handler handler)
{
    return m_handlers.install(std::move(handler));
}

std::unique_ptr<HotkeyRegistration> HotKeys::registerHeld(const HotkeyID& id)
{
    begin();
    auto* raw = m_connection.raw();
    const auto keys = xcb_query_keymap(raw);
    const auto state = xcb_query_pointer(raw, m_connection.root()); // and the modifiers
    const auto mapping = xcb_get_modifier_mapping(raw);
    const auto down = owned(xcb_query_keymap_reply(raw, keys, nullptr));
    const auto pointer = owned(xcb_query_pointer_reply(raw, state, nullptr));
    const auto modifiers = owned(xcb_get_modifier_mapping_reply(raw, mapping, nullptr));
    const auto key = down && modifiers ? onlyKey(*down, *modifiers) : std::nullopt;
    if (!key || !pointer)
        return nullptr;
    unsigned locks = 0;
    for (auto lock : m_modifiers.lockStates(0))
        locks |= lock;
    const unsigned bits = pointer->mask & kModifierBits & ~locks;
    // Without a modifier, Return that ends a command line passes for a shortcut; what no other
    // keyboard has, as a key with a magnifier on it, is pressed for nothing else.
    const bool isTyped = !(bits & ~unsigned{XCB_MOD_MASK_SHIFT});
    if (isTyped && keyCodeOf(*key, XCB_NO_SYMBOL) != KeyCode::unknown)
        return nullptr;
    return std::make_unique<Held>(*this, *key, static_cast<std::uint16_t>(bits), id);
}

/// Most sessions have no shortcut, and none of this costs them anything.
void HotKeys::begin()
{
    if (std::exchange(m_hasBegun, true))
        return;
    m_releasesAtRepeats = !m_keyboard.prepare();
    m_modifiers = m_keyboard.modifiers();
    m_selectionEvent = selectSelectionEvents(m_connection, m_connection.atoms().wmS0);
    m_connection.addEventMask(m_connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    m_subscriptions.push_back(m_connection.event.subscribe([this](auto* event) { handle(event); }));
    m_subscriptions.push_back(m_connection.turnEnded.subscribe([this] { followModifiers(); }));
    m_subscriptions.push_back(m_keyboard.changed.subscribe([this] { m_isMapStale = true; }));
}

// MARK: Grabs

void HotKeys::grab(Registration& registration)
{
    const auto key = xKeyCodeOf(registration.keyCode);
    const auto bits = m_modifiers.bitsOf(registration.modifiers);
    const auto& setup = *xcb_get_setup(m_connection.raw());
    registration.state = HotkeyOutcome::failed;
    if (!key || *key < setup.min_keycode || *key > setup.max_keycode || !bits)
        return;
    registration.key = *key;
    registration.bits = *bits;
    // The server lets a program replace its own grab.
    const bool isFree = !isOurs(registration) && requestGrabs(*key, *bits);
    registration.state = isFree ? HotkeyOutcome::registered : HotkeyOutcome::taken;
}

bool HotKeys::isOurs(const Registration& wanted) const
{
    return std::ranges::any_of(m_registrations, [&](auto* other) {
        return other != &wanted && other->state == HotkeyOutcome::registered
            && other->key == wanted.key && other->bits == wanted.bits;
    });
}

/// All of them or none.
bool HotKeys::requestGrabs(xcb_keycode_t key, std::uint16_t bits) const
{
    auto* raw = m_connection.raw();
    std::vector<xcb_void_cookie_t> cookies;
    for (auto locks : m_modifiers.lockStates(bits)) {
        cookies.push_back(xcb_grab_key_checked(raw, false, m_connection.root(),
            static_cast<std::uint16_t>(bits | locks), key, XCB_GRAB_MODE_ASYNC,
            XCB_GRAB_MODE_ASYNC));
    }
    bool isGranted = true;
    for (auto cookie : cookies)
        isGranted = !owned(xcb_request_check(raw, cookie)) && isGranted;
    if (!isGranted) {
        for (auto locks : m_modifiers.lockStates(bits))
            xcb_ungrab_key(raw, key, m_connection.root(), static_cast<std::uint16_t>(bits | locks));
    }
    return isGranted;
}

void HotKeys::ungrab(Registration& registration) const
{
    if (std::exchange(registration.state, HotkeyOutcome::failed) != HotkeyOutcome::registered)
        return;
    for (auto locks : m_modifiers.lockStates(registration.bits)) {
        xcb_ungrab_key(m_connection.raw(), registration.key, m_connection.root(),
            static_cast<std::uint16_t>(registration.bits | locks));
    }
    xcb_flush(m_connection.raw());
}

void HotKeys::grabRefusedAgain()
{
    m_retryOnce = {};
    m_lastRetry = m_dispatch.now();
    bool hasChanged = false;
    for (auto* registration : m_registrations) {
        if (registration->state == HotkeyOutcome::registered)
            continue;
        const auto before = registration->state;
        grab(*registration);
        hasChanged |= registration->state != before;
    }
    if (hasChanged)
        outcomesDidChange.emit();
}

bool HotKeys::isAllRight() const
{
    return std::ranges::all_of(m_registrations,
        [](auto* registration) { return registration->state == HotkeyOutcome::registered; });
}

/// Shortcuts often go by the dozen, and each question is a round trip to the server.
void HotKeys::retryRefused(Duration after)
{
    const auto due = m_dispatch.now() + after;
    if (isAllRight() || (m_retryOnce.isPending() && m_retryDue <= due))
        return;
    m_retryDue = due;
    m_retryOnce = m_dispatch.main().after(after, [this] { grabRefusedAgain(); });
}

void HotKeys::retryNowAndThen()
{
    const auto since = m_lastRetry ? m_dispatch.now() - *m_lastRetry : kNowAndThen;
    retryRefused(std::max(Duration::zero(), kNowAndThen - since));
}

/// A key press may wait for a second look at the keyboard, so this comes when all events of a
/// change have arrived.
void HotKeys::followModifiers()
{
    if (!std::exchange(m_isMapStale, false))
        return;
    const auto now = m_keyboard.modifiers();
    if (now == m_modifiers)
        return retryRefused(Duration::zero()); // others may have moved their keys with the map
    std::vector<HotkeyOutcome> before;
    for (auto* registration : m_registrations) {
        before.push_back(registration->state);
        ungrab(*registration);
    }
    m_modifiers = now;
    bool hasChanged = false;
    for (std::size_t i = 0; i < m_registrations.size(); ++i) {
        grab(*m_registrations[i]);
        hasChanged |= m_registrations[i]->state != before[i];
    }
    if (hasChanged)
        outcomesDidChange.emit();
}

// MARK: Presses

bool HotKeys::matches(
    const xcb_key_press_event_t& event, xcb_keycode_t key, std::uint16_t bits) const
{
    unsigned locks = 0;
    for (auto state : m_modifiers.lockStates(0))
        locks |= state;
    const unsigned held = event.state & kModifierBits;
    return event.detail == key && (held & ~(locks & ~bits)) == bits;
}

std::optional<HotkeyID> HotKeys::find(const xcb_key_press_event_t& event) const
{
    for (auto* candidate : m_registrations) {
        if (candidate->state == HotkeyOutcome::registered
            && matches(event, candidate->key, candidate->bits))
            return candidate->id;
    }
    for (auto* held : m_heldElsewhere) {
        if (m_isHandedOver && matches(event, held->key, held->bits))
            return held->id;
    }
    return std::nullopt;
}

HotKeys::Press HotKeys::takes(const xcb_key_press_event_t& event)
{
    if (m_held[event.detail])
        return Press::repeated;
    const auto id = find(event);
    if (!id)
        return Press::foreign;
    const bool isRepeat = m_releasesAtRepeats && m_lastRelease
        && m_lastRelease->detail == event.detail && m_lastRelease->time == event.time;
    m_held.set(event.detail);
    if (isRepeat)
        return Press::repeated;
    m_handlers.offer(*id);
    return Press::first;
}

void HotKeys::takesLate(const xcb_key_press_event_t& event)
{
    if (takes(event) == Press::foreign || m_isHandedOver)
        return;
    holdOn();
    letGo();
}

void HotKeys::release(const xcb_key_release_event_t& event)
{
    if (!m_held[event.detail])
        return;
    m_held.reset(event.detail);
    m_lastRelease = event;
    if (m_held.any() && event.event == m_connection.root()) {
        // The grab ended with this key. Those that came up before somebody else of this program had
        // the keyboard have been released elsewhere.
        if (m_isHandedOver)
            m_held &= m_downAtHandOver;
        else
            holdOn();
    }
    letGo();
}

void HotKeys::handOver(const xcb_query_keymap_reply_t* down)
{
    m_holdsOn = false;
    m_isHandedOver = true;
    m_downAtHandOver.reset();
    for (std::size_t key = 0; down && key < m_downAtHandOver.size(); ++key)
        m_downAtHandOver[key] = isDown(*down, key);
    for (auto* held : m_heldElsewhere) {
        if (m_downAtHandOver[held->key])
            m_held.set(held->key); // what comes of it now are repeats, and its release
    }
}

/// Unless another key is still down.
void HotKeys::letGo()
{
    if (m_held.any())
        return;
    if (std::exchange(m_holdsOn, false))
        xcb_ungrab_keyboard(m_connection.raw(), XCB_CURRENT_TIME);
    released.emit();
}

/// A passive grab ends with its key, but another shortcut's is down still: somebody else would
/// receive its release, and its repeats would pass for presses.
void HotKeys::holdOn()
{
    auto* raw = m_connection.raw();
    const auto grab = xcb_grab_keyboard(raw, false, m_connection.root(), XCB_CURRENT_TIME,
        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const auto keys = xcb_query_keymap(raw); // sent together, so that no release comes between
    const auto reply = owned(xcb_grab_keyboard_reply(raw, grab, nullptr));
    const auto down = owned(xcb_query_keymap_reply(raw, keys, nullptr));
    m_holdsOn = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    for (std::size_t key = 0; key < m_held.size(); ++key) {
        if (!m_holdsOn || !down || !isDown(*down, key))
            m_held.reset(key);
    }
}

void HotKeys::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_KEY_PRESS:
        if (eventWindow(event) == m_connection.root())
            takes(as<xcb_key_press_event_t>(event));
        return;
    case XCB_KEY_RELEASE:
        return release(as<xcb_key_release_event_t>(event));
    case XCB_MAPPING_NOTIFY:
        m_isMapStale = true;
        return;
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = as<xcb_property_notify_event_t>(event);
        if (change.window != m_connection.root())
            return;
        if (change.atom == m_connection.atoms().netSupportingWmCheck)
            retry(0);
        else if (change.atom == m_connection.atoms().netActiveWindow)
            retryNowAndThen();
        return;
    }
    default:
        if (selectionOf(event, m_selectionEvent) == m_connection.atoms().wmS0)
            retry(0);
        return;
    }
}

// MARK: The window manager

void HotKeys::retry(std::size_t attempt)
{
    if (attempt == kRetries.size() || isAllRight())
        return;
    m_retry = m_dispatch.main().after(kRetries[attempt], [this, attempt] {
        grabRefusedAgain();
        retry(attempt + 1);
    });
}

}
