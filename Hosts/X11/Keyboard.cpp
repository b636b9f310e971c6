#include "Hosts/X11/Keyboard.h"

#include <array>
#include <string>
#include <utility>

#include "Hosts/X11/ComposeSequence.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/KeyCodes.h"
#include "Hosts/X11/XkbLibrary.h"

namespace quorvel::xdg::x11 {

namespace {

/// Of an event's state: where the group of the layout stands in it, by the protocol.
constexpr unsigned kGroupShift = 13;
constexpr std::uint16_t kModifiers = 0xFF;

}

struct Keyboard::Layout {
    const XkbLibrary& xkb;
    xkb_context* context = nullptr;
    xkb_keymap* keymap = nullptr;
    xkb_state* state = nullptr;

    explicit Layout(const XkbLibrary& library) : xkb(library) { }
    ~Layout()
    {
        xkb.unrefState(state);
        xkb.unrefKeymap(keymap);
        xkb.unrefContext(context);
    }
    Layout(const Layout&) = delete;
    Layout& operator=(const Layout&) = delete;

    void setState(std::uint32_t modifiers, std::uint16_t eventState) const
    {
        xkb.updateMask(state, modifiers, 0, 0, 0, 0, eventState >> kGroupShift & 3);
    }
    std::string typed(xcb_keycode_t key) const
    {
        std::array<char, 64> text{};
        auto length = xkb.text(state, key, text.data(), text.size());
        return length > 0 ? std::string{text.data()} : std::string{};
    }
};

Keyboard::Keyboard(Connection& connection)
    : m_connection(connection)
    , m_events(connection.event.subscribe([this](auto* event) { handle(event); }))
{
}

Keyboard::~Keyboard() = default;

bool Keyboard::prepare()
{
    if (std::exchange(m_isPrepared, true))
        return m_hasExtension;
    auto* raw = m_connection.raw();
    auto* xkb = XkbLibrary::load();
    m_hasExtension = xkb
        && xkb->setUpExtension(raw, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &m_firstEvent, nullptr);
    if (!m_hasExtension)
        return false;
    m_device = xkb->coreKeyboard(raw);
    constexpr std::uint16_t changes
        = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t parts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS
        | XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS;
    xkb->selectEvents(raw, XCB_XKB_ID_USE_CORE_KBD, changes, 0, changes, parts, parts, nullptr);
    // Else a key that is held down is released and pressed again and again.
    constexpr std::uint32_t repeats = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    auto cookie = xkb->perClientFlags(raw, XCB_XKB_ID_USE_CORE_KBD, repeats, repeats, 0, 0, 0);
    xcb_discard_reply(raw, cookie.sequence);
    m_modifiers.reset(); // a client of the extension may not have been told of a change until now
    return true;
}

const ModifierMap& Keyboard::modifiers()
{
    if (!m_modifiers)
        m_modifiers = ModifierMap::read(m_connection);
    return *m_modifiers;
}

void Keyboard::begin(const xcb_query_keymap_reply_t* down)
{
    m_lastPressed.reset();
    m_foreign.reset();
    for (std::size_t key = 0; down && key < m_foreign.size(); ++key)
        m_foreign[key] = down->keys[key / 8] >> key % 8 & 1;
    dropSequence();
}

void Keyboard::handle(const xcb_generic_event_t* event)
{
    const auto type = event->response_type & 0x7f;
    if (type == XCB_MAPPING_NOTIFY)
        m_modifiers.reset();
    if (!m_hasExtension || type != m_firstEvent)
        return;
    m_layout.reset(); // only changes of the layout were asked for
    m_modifiers.reset();
    changed.emit();
}

bool Keyboard::read()
{
    auto layout = std::make_unique<Layout>(*XkbLibrary::load());
    layout->context = layout->xkb.newContext(XKB_CONTEXT_NO_FLAGS);
    if (!layout->context)
        return false;
    layout->keymap = layout->xkb.newKeymap(
        layout->context, m_connection.raw(), m_device, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (!layout->keymap)
        return false;
    layout->state = layout->xkb.newState(layout->keymap);
    if (!layout->state)
        return false;
    m_layout = std::move(layout);
    return true;
}

std::optional<KeyPress> Keyboard::arrive(const xcb_key_press_event_t& event)
{
    if (m_foreign[event.detail])
        return std::nullopt;
    return KeyPress{event, std::exchange(m_lastPressed, event.detail) == event.detail};
}

std::optional<TypedKey> Keyboard::translate(const KeyPress& press)
{
    TypedKey key;
    key.event.keyCode = keyCodeOf(press.event.detail, XKB_KEY_NoSymbol);
    key.event.isRepeat = press.isRepeat;
    if (!isReady())
        return key;
    describe(key.event, press.event);
    const auto symbol = m_layout->xkb.symbol(m_layout->state, press.event.detail);
    return compose(key, symbol) ? std::optional{key} : std::nullopt;
}

/// By itself, without regard to what was pressed before.
void Keyboard::describe(KeyEvent& key, const xcb_key_press_event_t& event)
{
    const auto& layout = *m_layout;
    layout.setState(event.state & XCB_MOD_MASK_SHIFT, event.state);
    key.charactersIgnoringModifiers = layout.typed(event.detail);
    layout.setState(event.state & kModifiers, event.state);
    key.characters = layout.typed(event.detail);
    key.modifiers = modifiers().modifiersIn(event.state);
    key.keyCode = keyCodeOf(event.detail, layout.xkb.symbol(layout.state, event.detail));
}

/// False where the press means nothing by itself. A key that is held down takes no part: it would
/// complete its own accent. A command ends what is open, and so does a key that does not continue
/// it and then does its own work; but those that are pressed to be rid of the accent do no more.
bool Keyboard::compose(TypedKey& key, std::uint32_t symbol)
{
    auto& event = key.event;
    constexpr auto commands = KeyModifier::control | KeyModifier::option | KeyModifier::command;
    if (!m_compose)
        m_compose = std::make_unique<ComposeSequence>(m_layout->xkb);
    if (event.isRepeat && m_compose->isOpen())
        return false;
    if (event.has(commands)) {
        m_compose->reset();
        return true;
    }
    switch (m_compose->feed(symbol)) {
    case ComposeSequence::Step::pending:
        return false;
    case ComposeSequence::Step::broken:
        return event.keyCode != KeyCode::escape && event.keyCode != KeyCode::backspace;
    case ComposeSequence::Step::done:
        event.characters = m_compose->text();
        event.keyCode = KeyCode::unknown; // the space after an accent is no space
        key.isComposed = true;
        break;
    case ComposeSequence::Step::none:
        break;
    }
    return true;
}

std::string Keyboard::sequence() const
{
    return m_compose ? m_compose->preview() : std::string{};
}

void Keyboard::dropSequence()
{
    if (m_compose)
        m_compose->reset();
}

void Keyboard::release(const xcb_key_release_event_t& event)
{
    m_foreign.reset(event.detail);
    if (m_lastPressed == event.detail)
        m_lastPressed.reset();
}

}
