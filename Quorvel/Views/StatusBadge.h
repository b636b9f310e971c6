#pragma once

#include <string>

#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

class Text;
struct Palette;

/// Whether something is granted, or still wanted.
class StatusBadge final : public View {
public:
    static constexpr double kHeight = 22;

    /// Both outlive it.
    StatusBadge(const Text& text, const Palette& palette) : m_measure(text), m_palette(palette) { }

    void setGranted(bool);
    void setRightToLeft(bool);
    std::string text() const;
    /// In points.
    double idealWidth() const;

    bool isAccessible() const override { return true; }
    bool takesKeyboard() const override { return false; }
    std::string accessibleID() const override { return "status"; }
    AccessibleState accessibleState() const override;

private:
    void paint(Canvas&) const override;

    const Text& m_measure;
    const Palette& m_palette;
    bool m_isGranted = false;
    bool m_isRightToLeft = false;
};

}
