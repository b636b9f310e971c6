#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quorvel {

// What a settings window shows, as values: hosts render them with the controls that their users
// know. Texts are in the user's language; an absent text is empty.

struct SettingsToggle {
    bool value = false;

    friend bool operator==(const SettingsToggle&, const SettingsToggle&) = default;
};

/// One of several values.
struct SettingsChoice {
    struct Option {
        std::string value;
        std::string title;

        friend bool operator==(const Option&, const Option&) = default;
    };

    std::string value;
    std::vector<Option> options;

    friend bool operator==(const SettingsChoice&, const SettingsChoice&) = default;
};

/// A combination of keys, which the window records.
struct SettingsShortcut {
    struct Keys {
        std::uint32_t keyCode = 0; ///< the Mac's virtual key code, on every host
        /// Carbon's mask: command 0x100, shift 0x200, option 0x800, control 0x1000.
        std::uint32_t modifiers = 0;

        friend bool operator==(const Keys&, const Keys&) = default;
    };

    std::optional<Keys> value;
    std::string text; ///< the value in the Mac's symbols
    std::string status; ///< why it does not work, if it does not
    std::string recordHelp; ///< while it is recorded

    friend bool operator==(const SettingsShortcut&, const SettingsShortcut&) = default;
};

struct SettingsButton {
    std::string label;

    friend bool operator==(const SettingsButton&, const SettingsButton&) = default;
};

/// A fact, which the user may want to copy.
struct SettingsText {
    std::string value;

    friend bool operator==(const SettingsText&, const SettingsText&) = default;
};

struct SettingsLink {
    std::string label;
    std::string url;

    friend bool operator==(const SettingsLink&, const SettingsLink&) = default;
};

/// Things in an order that the user chooses.
struct SettingsList {
    struct Item {
        std::string id;
        std::string title;
        /// The stored application whose icon it bears: a bundle or a desktop file.
        std::string icon;

        friend bool operator==(const Item&, const Item&) = default;
    };

    std::vector<Item> items;
    bool isMovable = false;
    bool isRemovable = false;

    friend bool operator==(const SettingsList&, const SettingsList&) = default;
};

using SettingsControl = std::variant<SettingsToggle, SettingsChoice, SettingsShortcut,
    SettingsButton, SettingsText, SettingsLink, SettingsList>;

struct SettingsRow {
    std::string id; ///< the field's name if it is one of the stored settings
    std::string title;
    std::string help;
    bool isEnabled = true;
    SettingsControl control;

    friend bool operator==(const SettingsRow&, const SettingsRow&) = default;
};

struct SettingsGroup {
    std::string id;
    std::string title;
    std::string help;
    std::vector<SettingsRow> rows;

    friend bool operator==(const SettingsGroup&, const SettingsGroup&) = default;
};

struct SettingsPage {
    std::string id;
    std::string title;
    std::string icon; ///< a name of the freedesktop icon naming specification
    std::vector<SettingsGroup> groups;

    friend bool operator==(const SettingsPage&, const SettingsPage&) = default;
};

/// The whole window. Only rows that the platform offers are in it; each has an `id` of its own.
struct SettingsDescription {
    std::string version; ///< of the program
    std::vector<SettingsPage> pages;

    /// Null if there is no such row.
    const SettingsRow* row(const std::string& id) const
    {
        for (auto& page : pages) {
            for (auto& group : page.groups) {
                for (auto& candidate : group.rows) {
                    if (candidate.id == id)
                        return &candidate;
                }
            }
        }
        return nullptr;
    }

    friend bool operator==(const SettingsDescription&, const SettingsDescription&) = default;
};

/// What the user does in the window.
struct SettingsChange {
    /// The value of a toggle or of a choice; `monostate` fits no row.
    using Value = std::variant<std::monostate, bool, std::string>;

    struct Set {
        std::string row;
        Value value;

        friend bool operator==(const Set&, const Set&) = default;
    };
    struct Press {
        std::string row;

        friend bool operator==(const Press&, const Press&) = default;
    };
    struct Move {
        std::string row;
        std::string item;
        std::size_t to = 0; ///< its place in the list afterwards; beyond the end: the last

        friend bool operator==(const Move&, const Move&) = default;
    };
    struct Remove {
        std::string row;
        std::string item;

        friend bool operator==(const Remove&, const Remove&) = default;
    };
    /// A combination of keys was recorded; absent: the shortcut is removed.
    struct Record {
        std::optional<SettingsShortcut::Keys> keys;
        std::string row = "hotkey";

        friend bool operator==(const Record&, const Record&) = default;
    };

    std::variant<Set, Press, Move, Remove, Record> what;

    friend bool operator==(const SettingsChange&, const SettingsChange&) = default;
};

/// Why a change was refused, or will not last, in words for the user.
struct SettingsRefusal {
    std::string row;
    std::string reason;

    friend bool operator==(const SettingsRefusal&, const SettingsRefusal&) = default;
};

}
