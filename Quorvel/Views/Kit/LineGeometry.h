#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "Quorvel/Platform/LineLayout.h"
#include "Quorvel/Views/Kit/TextEditing.h"

namespace quorvel {

/// Places in a line and offsets in its text; x in points from the left end of the line. Where two
/// directions meet, the caret stands before the character that follows it in the text.
class LineGeometry {
public:
    explicit LineGeometry(LineLayout layout) : m_layout(std::move(layout)) { }

    double width() const { return m_layout.width; }
    bool isRightToLeft() const { return m_layout.isRightToLeft; }
    /// Of the caret before the character at the offset, or behind the last one.
    double caretX(std::size_t offset) const;
    /// Of the caret nearest to the place.
    std::size_t offsetAt(double x) const;
    /// Of the nearest caret on that side; the same offset if there is none.
    enum class Side { left, right };
    std::size_t neighbour(std::size_t offset, Side) const;

    struct Span {
        double left = 0;
        double right = 0;

        friend bool operator==(const Span&, const Span&) = default;
    };
    /// What this part of the text covers, from left to right; those that touch are one.
    std::vector<Span> spans(TextRange) const;

private:
    std::size_t end() const;

    LineLayout m_layout;
};

}
