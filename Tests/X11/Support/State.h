#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/X11/Support/Desktop.h"

namespace quorvel::x11tests {

/// What the bar says of itself.
struct State {
    struct Window {
        std::uint32_t id = 0;
        std::optional<xcb_window_t> xid;
        std::int64_t pid = 0;
        std::string app;
        std::string bundle;
        std::string title;
        Frame frame;
        bool isMinimized = false;
        std::vector<std::uint64_t> spaces;
        friend std::ostream& operator<<(std::ostream& out, const Window& window)
        {
            return out << window.id << ' ' << window.title
                       << (window.isMinimized ? " minimised" : "") << " on "
                       << testing::PrintToString(window.spaces);
        }
    };
    struct Item {
        std::string id;
        std::string title;
        std::vector<std::uint32_t> windows;
        bool isFocused = false;
        bool isMinimized = false;
    };
    struct Space {
        std::uint64_t id = 0;
        std::vector<Item> items;
    };
    struct Chip {
        std::string id; ///< of a pin: the bundle identifier
        Frame frame;
        friend bool operator==(const Chip&, const Chip&) = default;
        friend std::ostream& operator<<(std::ostream& out, const Chip& chip)
        {
            return out << chip.id << " at " << chip.frame.x << ',' << chip.frame.y;
        }
    };
    struct Cell {
        std::uint64_t space = 0;
        Frame frame;
    };
    /// A window's picture in a popup.
    struct Card {
        std::uint32_t window = 0;
        Frame frame;
        Frame closeButton;
    };
    struct Popup {
        Frame frame;
        std::vector<Card> cards;
    };
    struct Panel {
        std::uint64_t space = 0;
        bool isVisible = false;
        Frame frame;
        Frame showDesktop;
        std::vector<Chip> pins;
        std::vector<Chip> chips;
        std::vector<Cell> cells; ///< of the space switcher
        std::optional<Popup> popup;
        std::optional<std::string> keyFocus; ///< what a screen reader calls it
    };
    struct MenuEntry {
        std::string title;
        bool isEnabled = false;
        Frame frame;
    };

    /// The list of all applications.
    struct Launcher {
        struct Row {
            std::string id;
            std::string section; ///< "pinned" or "main"
            bool isSelected = false;
            Frame frame;
        };
        Frame frame;
        std::string query;
        Frame field; ///< of its search
        std::optional<std::string> keyFocus; ///< what a screen reader calls it
        std::vector<Row> rows; ///< with applications, in sight
    };

    /// The list of open windows.
    struct Finder {
        struct Row {
            std::uint32_t window = 0;
            bool isSelected = false;
            Frame frame;
        };
        Frame frame;
        std::string query;
        std::vector<Row> rows; ///< in sight
    };

    /// Empty, with a failure, unless the text is JSON that says all of this.
    static State parse(const std::string& json);

    const Window* windowOf(xcb_window_t) const;
    /// The chip of a window on the visible panel; null when there is none.
    const Chip* chipOf(xcb_window_t) const;
    /// Of its chip; empty when there is none.
    Frame chipFrame(xcb_window_t) const;
    /// The window's item on the active space; null when there is none.
    const Item* itemOf(xcb_window_t) const;
    std::vector<Panel> visiblePanels() const;
    /// The first that is visible; an invisible one when there is none.
    Panel panel() const;
    /// Of the popup of the visible panel; none when none is open.
    std::vector<Card> cards() const;
    /// The first of that title in the open menu; null when there is none.
    const MenuEntry* entryTitled(const std::string&) const;

    std::optional<std::uint64_t> activeSpace;
    std::optional<std::uint32_t> focusedWindow;
    std::vector<Window> windows;
    std::vector<Space> spaces;
    std::vector<Panel> panels;
    std::vector<MenuEntry> menu; ///< of the open menu and its submenus
    std::optional<Launcher> launcher; ///< none while it is closed
    std::optional<Finder> finder; ///< none while it is closed
    std::optional<std::string> hotkey; ///< what became of the global shortcut; none without one
    std::optional<std::string> findHotkey; ///< the same of the one that opens the finder
    std::optional<std::string> numberKeys; ///< the same for the number keys
};

/// Whether the bar shows just what the server and the window manager say of the clients: which
/// there are, whose they are, their titles, places, desktops and minimised state, the current
/// desktop and the active window.
testing::AssertionResult agrees(const State&, Desktop&);

}
