#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

enum class AccessibleRole {
    panel,
    window, ///< with a title and a close button
    group,
    button,
    toggleButton,
    menuButton,
    popup,
    menu,
    menuItem,
    checkMenuItem,
    radioMenuItem,
    separator,
    heading,
    label, ///< text that can only be read
    textField,
    list,
    listItem,
};

/// A text that can be edited. Offsets are bytes of it and lie between characters.
struct AccessibleText {
    std::string text;
    std::string placeholder; ///< shown while the text is empty
    std::size_t caret = 0;
    std::size_t selectionStart = 0; ///< the same as the end: nothing is selected
    std::size_t selectionEnd = 0;

    friend bool operator==(const AccessibleText&, const AccessibleText&) = default;
};

/// Where an element stands in a list, of which perhaps only a part has views.
struct AccessiblePosition {
    std::size_t index = 0; ///< from 0
    std::size_t count = 0;

    friend bool operator==(const AccessiblePosition&, const AccessiblePosition&) = default;
};

/// What one element of a surface reports about itself.
struct AccessibleState {
    AccessibleRole role = AccessibleRole::group;
    std::string name; ///< as it is read aloud: "Mail, 3 unread, 2 windows"
    std::optional<double> progress; ///< from 0 to 1
    bool isSelected = false; ///< the window with the focus, or the current space
    bool hasKeyFocus = false;
    /// In the user's words: "Activate", "Close". The first one is what a click does.
    std::vector<std::string> actions;
    /// The index of the action that opens the element's menu.
    std::optional<std::size_t> menuAction{};
    bool isEnabled = true;
    bool isChecked = false; ///< of an entry with a mark
    bool opensMenu = false; ///< of an entry of a menu
    std::optional<AccessibleText> text{}; ///< of a text field
    std::optional<AccessiblePosition> position{}; ///< of an element of a list

    friend bool operator==(const AccessibleState&, const AccessibleState&) = default;
};

/// A view as assistive programs see it: plain values, read on demand. Main thread. Pointers stay
/// valid until `PanelSurface::accessibleTreeDidChange`; an element is recognised by its identifier.
class AccessibleElement {
public:
    virtual ~AccessibleElement() = default;

    /// Stable for the same thing, unique among its siblings.
    virtual std::string accessibleID() const = 0;
    virtual AccessibleState accessibleState() const = 0;
    /// In the surface (points, top-left origin).
    virtual Rect accessibleFrame() const = 0;
    virtual std::vector<AccessibleElement*> accessibleChildren() = 0;
    /// By index into the list of actions. False if there is no such action.
    virtual bool performAccessibleAction(std::size_t) { return false; }
    /// Gives it the keyboard, as if the user had moved there. False where it cannot have it.
    virtual bool takeAccessibleFocus() { return false; }

    // Of a text field. Offsets are those of `AccessibleText`, the nearest valid
    // ones if they are wrong.
    /// Replaces the whole text, as if it had been typed.
    virtual bool setAccessibleText(std::string_view /*utf8*/) { return false; }
    /// Moves the caret to `end`; nothing is selected if it equals `start`.
    virtual bool setAccessibleSelection(std::size_t /*start*/, std::size_t /*end*/)
    {
        return false;
    }
    /// What this part of the text covers (points, top-left origin of the surface).
    virtual Rect accessibleTextFrame(std::size_t /*start*/, std::size_t /*end*/) const
    {
        return {};
    }
    /// The offset nearest to a place in the surface.
    virtual std::size_t accessibleOffsetAt(Point) const { return 0; }
};

}
