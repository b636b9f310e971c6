#pragma once

#include <string>

#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

class Text;

/// A button with a title, of a window. Main thread.
class PushButton final : public ButtonView {
public:
    enum class Kind {
        standard,
        prominent, ///< what Return presses: in the accent colour while it is enabled
    };
    /// The distance of its ring from the button.
    static constexpr double kRing = 3;

    /// Text and palette outlive it.
    PushButton(const Text&, const Palette&, Kind, std::string id);

    void setTitle(const std::string&);
    const std::string& title() const { return m_title; }
    void setEnabled(bool);
    bool isEnabled() const { return m_isEnabled; }
    /// For its title, in points.
    double idealWidth() const;

    void pointerPressed(const PointerPress&) override;
    bool performAccessibleAction(std::size_t) override;
    bool takesKeyboard() const override { return m_isEnabled; }
    void setKeyFocused(bool) override;
    std::string accessibleID() const override { return m_id; }
    AccessibleState accessibleState() const override;

private:
    void paint(Canvas&) const override;
    Rect paintFrame() const override { return frame().inset(-kRing, -kRing); }
    Color face() const;

    const Text& m_measure;
    const Kind m_kind;
    const std::string m_id;
    std::string m_title;
    bool m_isEnabled = true;
};

}
