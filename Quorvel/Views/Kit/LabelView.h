#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Text.h"
#include "Quorvel/Views/Kit/MeasuredView.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

/// Text to be read, over several lines if it needs them and may have them.
class LabelView final : public MeasuredView {
public:
    struct Look {
        double size = 12;
        FontWeight weight = FontWeight::regular;
        TextAlignment alignment = TextAlignment::leading;
        Color Palette::* color = &Palette::text;
        std::size_t mostLines = 1;
        AccessibleRole role = AccessibleRole::label;
        /// For assistive programs, which then hear when the text changes; if empty, a changed text
        /// is another element.
        std::string_view id{};
    };

    /// Text and palette outlive it.
    LabelView(const Text& text, const Palette& palette, Look look)
        : m_measure(text)
        , m_palette(palette)
        , m_look(look)
    {
    }

    void setText(std::string utf8);
    const std::string& text() const { return m_text; }
    /// Of as many lines as it takes at this width, in points.
    double heightFor(double width) const override;
    /// The font changed.
    void measureAgain() { layout(); }

    bool isAccessible() const override { return true; }
    bool takesKeyboard() const override { return false; }
    std::string accessibleID() const override
    {
        return m_look.id.empty() ? m_text : std::string{m_look.id};
    }
    AccessibleState accessibleState() const override;

private:
    void paint(Canvas&) const override;
    void layout() override;
    TextStyle style() const;
    std::vector<std::string> linesAt(double width) const;

    const Text& m_measure;
    const Palette& m_palette;
    const Look m_look;
    std::string m_text;
    std::vector<std::string> m_lines;
    double m_lineHeight = 0;
};

}
