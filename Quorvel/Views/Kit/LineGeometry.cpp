#include "Quorvel/Views/Kit/LineGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorvel {

namespace {

/// Less than anybody sees, more than sums of widths differ by.
constexpr double kSamePlace = 0.01;

double leadingEdge(const CharacterBox& box)
{
    return box.isRightToLeft ? box.right : box.left;
}

double trailingEdge(const CharacterBox& box)
{
    return box.isRightToLeft ? box.left : box.right;
}

}

std::size_t LineGeometry::end() const
{
    return m_layout.characters.empty() ? 0 : m_layout.characters.back().end;
}

double LineGeometry::caretX(std::size_t offset) const
{
    auto& boxes = m_layout.characters;
    if (boxes.empty())
        return 0;
    auto found = std::ranges::lower_bound(boxes, offset, {}, &CharacterBox::start);
    return found == boxes.end() ? trailingEdge(boxes.back()) : leadingEdge(*found);
}

std::size_t LineGeometry::offsetAt(double x) const
{
    double least = std::numeric_limits<double>::max();
    std::size_t nearest = 0;
    for (auto& box : m_layout.characters) {
        // The halves of a character belong to the carets beside it.
        double distance = std::max({box.left - x, x - box.right, 0.0});
        if (distance >= least)
            continue;
        least = distance;
        bool isLeftHalf = x < (box.left + box.right) / 2;
        nearest = isLeftHalf != box.isRightToLeft ? box.start : box.end;
    }
    return nearest;
}

std::size_t LineGeometry::neighbour(std::size_t offset, Side side) const
{
    double sign = side == Side::right ? 1 : -1;
    double from = caretX(offset);
    double least = std::numeric_limits<double>::max();
    auto nearest = offset;
    auto consider = [&](std::size_t candidate) {
        double distance = (caretX(candidate) - from) * sign;
        if (distance < kSamePlace || distance > least - kSamePlace)
            return;
        least = distance;
        nearest = candidate;
    };
    for (auto& box : m_layout.characters)
        consider(box.start);
    consider(end());
    return nearest;
}

std::vector<LineGeometry::Span> LineGeometry::spans(TextRange range) const
{
    std::vector<Span> parts;
    for (auto& box : m_layout.characters) {
        if (box.start < range.end && box.end > range.start)
            parts.push_back({box.left, box.right});
    }
    std::ranges::sort(parts, {}, &Span::left);
    std::vector<Span> spans;
    for (auto& part : parts) {
        if (!spans.empty() && part.left <= spans.back().right + kSamePlace)
            spans.back().right = std::max(spans.back().right, part.right);
        else
            spans.push_back(part);
    }
    return spans;
}

}
