#pragma once

#include <string>
#include <string_view>

#include "Quorvel/Platform/Canvas.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// Hears of what the user does in a text field of the system. Main thread.
class NativeTextFieldClient {
public:
    virtual ~NativeTextFieldClient() = default;

    /// By the user; not called for `setText`.
    virtual void fieldTextDidChange(const std::string& utf8) = 0;
    /// It got the keyboard within its panel, or lost it.
    virtual void fieldFocusDidChange(bool hasFocus) = 0;
};

/// A text field of the system, without border or background, on one line. Keys come to the panel's
/// client first, unless they belong to a composition. Main thread; destroying it removes it.
class NativeTextField {
public:
    virtual ~NativeTextField() = default;

    /// In the surface (points, top-left origin); an empty one hides it.
    virtual void setFrame(const Rect&) = 0;
    virtual void setStyle(const TextStyle&) = 0;
    virtual void setPlaceholder(std::string_view utf8) = 0;
    /// Ends a composition; the caret goes to the end.
    virtual void setText(std::string_view utf8) = 0;
    /// Gives it the keyboard within its panel, or returns the keyboard to the panel's client.
    virtual void setFocused(bool) = 0;
};

}
