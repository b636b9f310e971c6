#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/Linux/Keys/ShortcutText.h"
#include "Hosts/X11/ModifierMap.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/HotkeyHandlers.h"

namespace quorvel::xdg::x11 {

class Connection;
class Keyboard;

/// Shortcuts as passive grabs on the root window: by the place of the key, so that they survive a
/// change of layout, and for every state of Caps, Num and Scroll Lock.
///
/// A grab that another program has is refused (one of XInput 2 would take the key from it), and the
/// server does not tell when it becomes free. It is asked for again when the window manager or the
/// keyboard's map changes, when a shortcut of our own goes, and, at most every few seconds, when
/// another window becomes the active one: programs that come and go, or lose a shortcut in their
/// settings, bring that about. While this program itself holds the keyboard no passive grab works;
/// its holder asks `takes` about each press. Main thread.
class HotKeys final : public Hotkeys {
public:
    HotKeys(Connection&, Dispatch&, Keyboard&);
    ~HotKeys() override;

    std::unique_ptr<HotkeyRegistration> registerHotkey(
        std::uint32_t keyCode, std::uint32_t modifiers, const HotkeyID&) override;
    Subscription installHandler(Handler) override;
    std::unique_ptr<HotkeyRegistration> registerHeld(const HotkeyID&) override;
    void askAgain() override { retryRefused(Duration::zero()); }
    std::uint32_t numberKeyModifiers() const override { return HotkeyModifier::command; }
    std::string shortcutText(std::uint32_t keyCode, std::uint32_t modifiers) const override
    {
        return xdg::shortcutText(keyCode, modifiers);
    }

    enum class Press {
        foreign, ///< not ours
        first, ///< it has been reported
        repeated, ///< the key is still down from the first press, whatever the modifiers are now
    };
    /// What a press is that arrived at a window of this program.
    Press takes(const xcb_key_press_event_t&);
    /// The same for a press that comes when nobody of this program has a use for it. If it has just
    /// let go of the keyboard, the release may go elsewhere.
    void takesLate(const xcb_key_press_event_t&);
    /// The key of a shortcut that was pressed is still down.
    bool isHeld() const { return m_held.any(); }
    /// Somebody else of this program holds the keyboard from now on; the keys that were down then.
    void handOver(const xcb_query_keymap_reply_t* down);
    /// And has let go of it.
    void takeBack() { m_isHandedOver = false; }
    /// The last of them has come up.
    Signal<> released;

private:
    class Registration;
    class Held;

    void begin();
    void grab(Registration&);
    bool isOurs(const Registration&) const;
    bool requestGrabs(xcb_keycode_t, std::uint16_t bits) const;
    void ungrab(Registration&) const;
    void grabRefusedAgain();
    bool isAllRight() const;
    void retryRefused(Duration after);
    void retryNowAndThen();
    void followModifiers();
    bool matches(const xcb_key_press_event_t&, xcb_keycode_t, std::uint16_t bits) const;
    std::optional<HotkeyID> find(const xcb_key_press_event_t&) const;

    void handle(const xcb_generic_event_t*);
    void release(const xcb_key_release_event_t&);
    void holdOn();
    void letGo();
    void retry(std::size_t attempt);

    Connection& m_connection;
    Dispatch& m_dispatch;
    Keyboard& m_keyboard;
    bool m_hasBegun = false;
    std::uint8_t m_selectionEvent = 0; ///< 0: the server does not report selections
    ModifierMap m_modifiers; ///< for which the grabs were asked
    bool m_isMapStale = false;
    std::vector<Registration*> m_registrations;
    std::vector<Held*> m_heldElsewhere; ///< other programs', without a grab
    HotkeyHandlers m_handlers;
    std::bitset<256> m_held; ///< keys whose first press was a shortcut
    bool m_holdsOn = false; ///< the keyboard, until they have come up
    bool m_isHandedOver = false;
    std::bitset<256> m_downAtHandOver;
    /// Without the server's extension a key that is held comes up for no time at each repeat.
    bool m_releasesAtRepeats = false;
    std::optional<xcb_key_release_event_t> m_lastRelease; ///< of such a key
    WorkItem m_retry;
    WorkItem m_retryOnce;
    Instant m_retryDue{};
    std::optional<Instant> m_lastRetry;
    std::vector<Subscription> m_subscriptions;
};

}
