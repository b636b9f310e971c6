#include "Tests/Support/FakeText.h"

#include <algorithm>
#include <tuple>

#include "Quorvel/Core/CodePoints.h"

namespace quorvel::test {

namespace {

/// The one that says what the character is.
char32_t firstCodePoint(std::string_view character)
{
    return takeCodePoint(character);
}

bool isRightToLeft(std::string_view character)
{
    auto point = firstCodePoint(character);
    return point >= 0x590 && point < 0x900;
}

/// Runs of one direction stand in the direction of the line; the boxes have their widths.
void place(LineLayout& line)
{
    auto& boxes = line.characters;
    double x = line.isRightToLeft ? line.width : 0;
    for (auto from = boxes.begin(); from != boxes.end();) {
        auto to = std::find_if(
            from, boxes.end(), [&](auto& box) { return box.isRightToLeft != from->isRightToLeft; });
        double width = 0;
        std::for_each(from, to, [&](auto& box) { width += box.right; });
        x -= line.isRightToLeft ? width : 0;
        double edge = from->isRightToLeft ? x + width : x;
        for (; from != to; ++from) {
            double next = edge + (from->isRightToLeft ? -from->right : from->right);
            std::tie(from->left, from->right) = std::minmax({edge, next});
            edge = next;
        }
        x += line.isRightToLeft ? 0 : width;
    }
}

}

Size FakeText::measure(std::string_view utf8, const TextStyle& style) const
{
    auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; };
    auto characters = std::ranges::count_if(utf8, isFirstByte);
    return {static_cast<double>(characters) * style.size / 2, style.size * 1.25};
}

LineLayout FakeText::lineLayout(std::string_view utf8, const TextStyle& style) const
{
    LineLayout line;
    std::size_t start = 0;
    for (auto end : characterEnds(utf8)) {
        auto character = utf8.substr(start, end - start);
        bool goesOn = !line.characters.empty() && line.characters.back().isRightToLeft
            && classOf(firstCodePoint(character)) == CharacterClass::other;
        line.characters.push_back(
            {start, end, 0, measure(character, style).width, goesOn || isRightToLeft(character)});
        line.width += line.characters.back().right;
        start = end;
    }
    line.isRightToLeft = !line.characters.empty() && line.characters[0].isRightToLeft;
    place(line);
    return line;
}

}
