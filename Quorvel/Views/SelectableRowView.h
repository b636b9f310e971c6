#pragma once

#include "Quorvel/Views/Kit/ListRows.h"

namespace quorvel {

struct Palette;

/// The background of a row that can be clicked: it shows what is selected, and what the pointer is
/// on. Main thread.
class SelectableRowView : public ListRowView {
public:
    void pointerEntered() override;
    void pointerExited() override;
    void pointerPressed(const PointerPress&) override;
    void pressCancelled() override { setPressed(false); }
    void rowWillChange() override { pressCancelled(); }
    bool takesKeyboard() const override { return false; } // the list is walked from its field

protected:
    /// The palette outlives it.
    explicit SelectableRowView(const Palette& palette) : m_palette(palette) { }

    const Palette& palette() const { return m_palette; }
    bool isPressed() const { return m_isPressed; }
    void setPressed(bool);
    virtual bool looksSelected() const { return isSelected(); }
    void paint(Canvas&) const override;

private:
    double paintOpacity() const override;

    const Palette& m_palette;
    bool m_isHovered = false;
    bool m_isPressed = false;
};

}
