#pragma once

#include <functional>
#include <utility>

#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

struct Palette;

/// Something to click on. What it looks like is its own; how it takes the pointer and the keyboard
/// is the same for all.
class ButtonView : public View {
public:
    /// The palette outlives it; whoever changes it has all of it painted anew.
    explicit ButtonView(const Palette& palette) : m_palette(palette) { }

    std::function<void()> onTapped;
    std::function<void()> onSecondaryTapped;
    std::function<void()> onMiddleTapped; ///< empty: that button means nothing to it

    bool takesPointer() const override { return true; }
    void pointerEntered() override { set(m_isHovered, true); }
    void pointerExited() override { set(m_isHovered, false); }
    void pointerPressed(const PointerPress& press) override
    {
        set(m_isPressed, press.button == PointerButton::primary || onMiddleTapped != nullptr);
    }
    void pressCancelled() override { set(m_isPressed, false); }
    void released(PointerButton, bool isInside) override;

    bool isAccessible() const override { return true; }
    bool performAccessibleAction(std::size_t) override;
    void setKeyFocused(bool isFocused) override { set(m_hasKeyFocus, isFocused); }
    /// While something that it opened is on the screen, its face is that of a pressed one.
    void setOpen(bool isOpen) { set(m_isOpen, isOpen); }
    void showContextMenu() override
    {
        if (onSecondaryTapped)
            onSecondaryTapped();
    }

protected:
    const Palette& palette() const { return m_palette; }
    bool isHovered() const { return m_isHovered; }
    /// Under the pointer, or open.
    bool isLit() const { return m_isHovered || m_isOpen; }
    bool isPressed() const { return m_isPressed; }
    bool hasKeyFocus() const { return m_hasKeyFocus; }
    /// The accessible state of a button with this name and one action.
    AccessibleState buttonState(std::string name, std::string action) const;
    /// The same for a button that opens a menu.
    AccessibleState menuButtonState(std::string name) const;
    /// The usual background: nothing at rest, more under the pointer, most while pressed or open.
    void paintFace(Canvas&, const Rect& face, double radius) const;
    template <typename Value> void set(Value& member, const Value& value)
    {
        if (std::exchange(member, value) != value)
            invalidate();
    }

private:
    const Palette& m_palette;
    bool m_isHovered = false;
    bool m_isOpen = false;
    bool m_isPressed = false;
    bool m_hasKeyFocus = false;
};

/// The ring around what has the keyboard.
void paintKeyFocus(Canvas&, const Rect& face, double radius, const Palette&);

}
