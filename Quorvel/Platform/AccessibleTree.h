#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

enum class AccessibleRole {
    panel,
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
    virtual bool performAccessibleAction(std::size_t) = 0;
    /// Gives it the keyboard, as if the user had moved there. False where it cannot have it.
    virtual bool takeAccessibleFocus() { return false; }
};

}
