#include "Hosts/X11/Input/InputMethod.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/Linux/Text.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Input/InputMethodLibrary.h"

namespace quorvel::xdg::x11 {

/// The library's callbacks; what concerns a context that is not in use is not meant.
struct InputMethod::Callbacks {
    static InputMethod& of(void* data) { return *static_cast<InputMethod*>(data); }
    static InputMethod* meant(void* data, xcb_xic_t context)
    {
        auto& method = of(data);
        return method.m_isFocused && context == method.m_context ? &method : nullptr;
    }

    static void opened(xcb_xim_t*, void* data) { of(data).opened(); }
    static void disconnected(xcb_xim_t*, void* data) { of(data).m_isLost = true; }
    static void stylesKnown(xcb_xim_t*, xcb_im_get_im_values_reply_fr_t* reply, void* data)
    {
        of(data).chooseStyle(reply);
        of(data).answered();
    }
    static void keysHandled(xcb_xim_t*, xcb_im_get_im_values_reply_fr_t*, void* data)
    {
        of(data).m_sent.clear();
        of(data).answered();
    }
    static void contextMade(xcb_xim_t*, xcb_xic_t context, void* data)
    {
        of(data).contextMade(context);
        of(data).answered();
    }
    static void contextAnswered(xcb_xim_t*, xcb_xic_t, void* data) { of(data).answered(); }
    static void eventMaskSet(
        xcb_xim_t*, xcb_xic_t context, std::uint32_t wanted, std::uint32_t, void* data)
    {
        if (context == 0 || context == of(data).m_context)
            of(data).m_wantedEvents = wanted;
    }
    static void keyReturned(xcb_xim_t*, xcb_xic_t context, xcb_key_press_event_t* event, void* data)
    {
        if (auto* method = meant(data, context))
            method->returned(*event);
    }
    static void committed(xcb_xim_t*, xcb_xic_t context, std::uint32_t, char* text,
        std::uint32_t length, std::uint32_t*, std::size_t, void* data)
    {
        if (auto* method = meant(data, context))
            method->m_client.inputMethodCommits(method->decode(text, length));
    }
    static void compositionDrawn(
        xcb_xim_t*, xcb_xic_t context, xcb_im_preedit_draw_fr_t* change, void* data)
    {
        if (auto* method = meant(data, context))
            method->drawComposition(*change);
    }
    static void caretMoved(
        xcb_xim_t*, xcb_xic_t context, xcb_im_preedit_caret_fr_t* caret, void* data)
    {
        if (auto* method = meant(data, context))
            method->moveCaret(caret->position);
    }
    static void compositionEnded(xcb_xim_t*, xcb_xic_t context, void* data)
    {
        if (auto* method = meant(data, context))
            method->endComposition();
    }

    static xcb_xim_im_callback all()
    {
        xcb_xim_im_callback all{};
        all.set_event_mask = eventMaskSet;
        all.forward_event = keyReturned;
        all.commit_string = committed;
        all.preedit_draw = compositionDrawn;
        all.preedit_caret = caretMoved;
        all.preedit_done = compositionEnded;
        all.disconnected = disconnected;
        return all;
    }
};

namespace {

constexpr auto kInputPatience = seconds(0.5);
/// Beyond it, something is wrong with what is being composed.
constexpr std::size_t kLongestComposition = 4096;

using CText = std::unique_ptr<char, FreeWith<std::free>>;

/// Of the form "@im=name", perhaps among others.
bool isInputMethodNamed()
{
    const char* modifiers = std::getenv("XMODIFIERS");
    const std::string_view text{modifiers ? modifiers : ""};
    constexpr std::string_view key = "@im=";
    if (!text.starts_with(key))
        return false;
    const auto name = text.substr(key.size());
    return !name.empty() && name != "none" && name != "local";
}

std::u32string charactersOf(const std::string& utf8)
{
    glong count = 0;
    std::unique_ptr<gunichar, FreeWith<g_free>> wide{
        g_utf8_to_ucs4_fast(utf8.data(), static_cast<glong>(utf8.size()), &count)};
    return {wide.get(), wide.get() + count};
}

std::string utf8Of(std::u32string_view characters)
{
    const std::vector<gunichar> wide{characters.begin(), characters.end()};
    const GText text{
        g_ucs4_to_utf8(wide.data(), static_cast<glong>(wide.size()), nullptr, nullptr, nullptr)};
    return text ? std::string{text.get()} : std::string{};
}

/// The attribute's value: how many there are, padding, the styles.
std::vector<std::uint32_t> stylesIn(const xcb_im_get_im_values_reply_fr_t& reply)
{
    constexpr std::size_t headerSize = 4;
    std::vector<std::uint32_t> styles;
    if (reply.im_attribute_returned.size == 0)
        return styles;
    const auto& value = reply.im_attribute_returned.items[0];
    if (value.value_length <= headerSize)
        return styles;
    styles.resize((value.value_length - headerSize) / sizeof(std::uint32_t));
    std::memcpy(styles.data(), value.value + headerSize, styles.size() * sizeof(std::uint32_t));
    return styles;
}

}

InputMethod::InputMethod(Connection& connection, Dispatch& dispatch, InputMethodClient& client)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_client(client)
{
}

InputMethod::~InputMethod()
{
    end();
}

// MARK: What the keyboard's holder says

void InputMethod::focus(xcb_window_t window)
{
    m_isFocused = true;
    m_window = window;
    if (!m_session)
        begin();
    proceed();
}

void InputMethod::unfocus()
{
    if (!std::exchange(m_isFocused, false))
        return;
    m_unsent.clear();
    m_sent.clear();
    m_composition.clear();
    if (std::exchange(m_hasFocus, false) && m_context)
        m_library->unfocus(m_session, m_context);
}

void InputMethod::setSpot(Point spot)
{
    const xcb_point_t pixels{static_cast<std::int16_t>(std::lround(spot.x)),
        static_cast<std::int16_t>(std::lround(spot.y))};
    if (pixels.x == m_spot.x && pixels.y == m_spot.y)
        return;
    m_spot = pixels;
    m_isSpotNew = true;
    proceed();
}

/// The protocol's own word for it leaves open what the answer refers to; what is heard of a context
/// that is no longer in use is clear.
void InputMethod::forget()
{
    if (m_composition.empty() || !m_context)
        return;
    m_composition.clear();
    m_hasFocus = false;
    m_oldContext = std::exchange(m_context, 0);
    proceed();
}

bool InputMethod::take(const KeyPress& press)
{
    if (!m_isFocused || !m_isOpen)
        return false;
    const bool wantsKeys = !m_context || (m_wantedEvents & XCB_EVENT_MASK_KEY_PRESS) != 0;
    if (!wantsKeys && m_unsent.empty() && m_sent.empty())
        return false;
    m_unsent.push_back(press);
    proceed();
    return true;
}

// MARK: The connection to it

void InputMethod::begin()
{
    if (!isInputMethodNamed())
        return;
    m_library = InputMethodLibrary::load();
    if (!m_library)
        return;
    m_session = m_library->create(m_connection.raw(), m_connection.screenNumber(), nullptr);
    if (!m_session)
        return;
    const auto callbacks = Callbacks::all();
    m_library->setCallbacks(m_session, &callbacks, this);
    m_library->offerUtf8(m_session, true);
    m_events = m_connection.event.subscribe([this](auto* event) { handle(event); });
    m_isLost = false;
    wait();
    constexpr bool waitsForServer = false; // whoever types next tries again
    if (!m_library->open(m_session, &Callbacks::opened, waitsForServer, this))
        end();
}

void InputMethod::end()
{
    if (!m_session)
        return;
    m_events = {};
    m_library->close(m_session);
    m_library->destroy(std::exchange(m_session, nullptr));
    keepNothing();
}

/// The session cannot end while it handles an event.
void InputMethod::handle(const xcb_generic_event_t* event)
{
    m_library->filter(m_session, const_cast<xcb_generic_event_t*>(event));
    if (m_isLost)
        end();
}

void InputMethod::opened()
{
    m_isOpen = true;
    answered();
}

/// Nothing of what was agreed, and nobody's keys.
void InputMethod::keepNothing()
{
    m_patience.cancel();
    m_isOpen = m_isWaiting = m_hasFocus = false;
    m_style = m_wantedEvents = 0;
    m_context = m_oldContext = 0;
    auto keys = std::exchange(m_sent, {});
    keys.insert(keys.end(), m_unsent.begin(), m_unsent.end());
    m_unsent.clear();
    if (!m_composition.empty())
        endComposition();
    for (const auto& key : keys)
        m_client.inputMethodReturns(key);
}

void InputMethod::wait()
{
    m_isWaiting = true;
    m_patience = m_dispatch.main().after(kInputPatience, [this] { end(); });
}

void InputMethod::answered()
{
    m_patience.cancel();
    m_isWaiting = false;
    proceed();
}

// MARK: What it is told

void InputMethod::proceed()
{
    if (!m_isOpen || m_isLost || m_isWaiting || !m_isFocused)
        return;
    if (m_context && !std::exchange(m_hasFocus, true))
        m_library->focus(m_session, m_context);
    wait(); // before the question: if it cannot be sent, the answer may come at once
    if (ask())
        return;
    m_patience.cancel();
    m_isWaiting = false;
}

bool InputMethod::ask()
{
    if (m_style == 0 && askForStyles())
        return true;
    if (m_oldContext)
        return removeContext();
    if (!m_context)
        return makeContext();
    return (m_isSpotNew && sendSpot()) || sendKeys();
}

bool InputMethod::askForStyles()
{
    const bool asks = m_library->getValues(
        m_session, &Callbacks::stylesKnown, this, XCB_XIM_XNQueryInputStyle, nullptr);
    if (!asks)
        chooseStyle(nullptr);
    return asks;
}

bool InputMethod::makeContext()
{
    const auto place = m_library->nest(m_session, XCB_XIM_XNSpotLocation, &m_spot, nullptr);
    const std::unique_ptr<std::uint8_t, FreeWith<std::free>> owner{place.data};
    const char* preedit = place.data ? XCB_XIM_XNPreeditAttributes : nullptr;
    m_isSpotNew = false;
    return m_library->createContext(m_session, &Callbacks::contextMade, this, XCB_XIM_XNInputStyle,
        &m_style, XCB_XIM_XNClientWindow, &m_window, XCB_XIM_XNFocusWindow, &m_window, preedit,
        &place, nullptr);
}

bool InputMethod::removeContext()
{
    return m_library->destroyContext(
        m_session, std::exchange(m_oldContext, 0), &Callbacks::contextAnswered, this);
}

bool InputMethod::sendSpot()
{
    m_isSpotNew = false;
    const auto place = m_library->nest(m_session, XCB_XIM_XNSpotLocation, &m_spot, nullptr);
    const std::unique_ptr<std::uint8_t, FreeWith<std::free>> owner{place.data};
    return place.data
        && m_library->setContextValues(m_session, m_context, &Callbacks::contextAnswered, this,
            XCB_XIM_XNPreeditAttributes, &place, nullptr);
}

/// Keys that are of use to it have no answer, so that a question follows them. The answer tells
/// that it is alive.
bool InputMethod::sendKeys()
{
    if (m_unsent.empty())
        return false;
    for (auto& key : m_unsent)
        m_library->forward(m_session, m_context, &key.event);
    m_sent.insert(m_sent.end(), m_unsent.begin(), m_unsent.end());
    m_unsent.clear();
    const bool asks = m_library->getValues(
        m_session, &Callbacks::keysHandled, this, XCB_XIM_XNQueryInputStyle, nullptr);
    if (!asks)
        m_sent.clear();
    return asks;
}

// MARK: What it says

/// It draws nothing if it can have us draw; else it draws what it likes, where it likes.
void InputMethod::chooseStyle(const xcb_im_get_im_values_reply_fr_t* reply)
{
    constexpr std::uint32_t ours = XCB_IM_PreeditCallbacks | XCB_IM_StatusNothing;
    constexpr std::uint32_t its = XCB_IM_PreeditNothing | XCB_IM_StatusNothing;
    const auto styles = reply ? stylesIn(*reply) : std::vector<std::uint32_t>{};
    m_style = std::ranges::find(styles, ours) == styles.end() ? its : ours;
}

void InputMethod::contextMade(std::uint16_t context)
{
    m_context = context;
    m_isLost |= context == 0;
}

void InputMethod::returned(const xcb_key_press_event_t& event)
{
    if ((event.response_type & 0x7f) != XCB_KEY_PRESS)
        return;
    const auto found = std::ranges::find_if(m_sent, [&](const auto& key) {
        return key.event.time == event.time && key.event.detail == event.detail;
    });
    KeyPress key{event, false};
    if (found != m_sent.end()) {
        key = *found;
        m_sent.erase(m_sent.begin(), found + 1); // what was sent before has been of use
    }
    m_client.inputMethodReturns(key);
}

void InputMethod::drawComposition(const xcb_im_preedit_draw_fr_t& change)
{
    constexpr std::uint32_t hasNoText = 1;
    const auto first = std::min<std::size_t>(change.chg_first, m_composition.size());
    std::u32string text;
    if (!(change.status & hasNoText))
        text = charactersOf(decode(
            reinterpret_cast<const char*>(change.preedit_string), change.length_of_preedit_string));
    m_composition.replace(first, change.chg_length, text);
    if (m_composition.size() > kLongestComposition)
        m_composition.clear();
    moveCaret(change.caret);
}

void InputMethod::moveCaret(std::size_t characters)
{
    const std::u32string_view composition{m_composition};
    const auto before = utf8Of(composition.substr(0, characters));
    m_client.inputMethodComposes(utf8Of(m_composition), before.size());
}

void InputMethod::endComposition()
{
    m_composition.clear();
    moveCaret(0);
}

std::string InputMethod::decode(const char* text, std::size_t length) const
{
    if (!text || length == 0)
        return {};
    if (m_library->encoding(m_session) == XCB_XIM_UTF8_STRING)
        return validUtf8({text, length});
    std::size_t size = 0;
    const CText utf8{m_library->compoundTextToUtf8(text, length, &size)};
    return utf8 ? validUtf8({utf8.get(), size}) : std::string{};
}

}
