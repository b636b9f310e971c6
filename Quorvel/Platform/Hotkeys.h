#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Quorvel/Platform/Published.h"

namespace quorvel {

/// Modifier bits of a shortcut, with the values of Carbon's masks on every host.
struct HotkeyModifier {
    static constexpr std::uint32_t command = 0x100; ///< Super, the Windows key
    static constexpr std::uint32_t shift = 0x200;
    static constexpr std::uint32_t option = 0x800; ///< Alt
    static constexpr std::uint32_t control = 0x1000;
    static constexpr std::uint32_t all = command | shift | option | control;
};

/// The name of a shortcut among those that are registered.
struct HotkeyID {
    std::uint32_t signature = 0; ///< four characters, of the program
    std::uint32_t id = 0;

    friend bool operator==(const HotkeyID&, const HotkeyID&) = default;
};

/// The outcome of a registration.
enum class HotkeyOutcome {
    registered,
    taken, ///< somebody else has the shortcut; it may become free
    failed, ///< the system refuses it: the keyboard has no such key, for example
};

/// A handler's answer to a press, with the Mac's status codes.
enum class HotkeyStatus : std::int32_t { handled = 0, notHandled = -9874 };

/// Dropping it ends the registration. It must not outlive the host's services.
class HotkeyRegistration {
public:
    virtual ~HotkeyRegistration() = default;
    virtual HotkeyOutcome outcome() const = 0;
};

/// Shortcuts that work in every program. Main thread.
class Hotkeys {
public:
    using Handler = std::function<HotkeyStatus(const HotkeyID&)>;

    virtual ~Hotkeys() = default;

    /// A key by its virtual key code of the Mac, with exactly these modifiers of `HotkeyModifier`;
    /// Caps Lock and the like do not count. Never null. One press is reported once, however long
    /// the key is held, and never to whoever has the keyboard. Where the host can tell, a shortcut
    /// that is taken is registered as soon as it is free.
    [[nodiscard]] virtual std::unique_ptr<HotkeyRegistration> registerHotkey(
        std::uint32_t keyCode, std::uint32_t modifiers, const HotkeyID&)
        = 0;
    /// Called for each press of a registered shortcut; the newest handler first, until one has
    /// handled it.
    [[nodiscard]] virtual Subscription installHandler(Handler) = 0;
    /// What the user is holding down just now: a shortcut of another program, a window manager for
    /// example, which has asked for something on it. While this program has the keyboard, the other
    /// one cannot receive it, and its next press is reported like one of ours. Null if it is not
    /// one key with its modifiers, or if that is what one types or walks a list with; and where the
    /// host cannot tell, or other programs receive their shortcuts all the same.
    [[nodiscard]] virtual std::unique_ptr<HotkeyRegistration> registerHeld(const HotkeyID&)
    {
        return nullptr;
    }
    /// Now is a good time to ask once more for shortcuts that are taken, where the system does not
    /// tell when they become free; `outcomesDidChange` reports what came of it.
    virtual void askAgain() { }
    /// With the keys 1 to 9 these make shortcuts that the system leaves free.
    virtual std::uint32_t numberKeyModifiers() const = 0;
    /// How programs of this system write a shortcut; empty: in the Mac's symbols.
    virtual std::string shortcutText(std::uint32_t /*keyCode*/, std::uint32_t /*modifiers*/) const
    {
        return {};
    }

    /// The outcome of some registration has changed.
    Signal<> outcomesDidChange;
};

}
