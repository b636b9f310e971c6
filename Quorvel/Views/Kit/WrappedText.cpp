#include "Quorvel/Views/Kit/WrappedText.h"

#include <algorithm>

#include "Quorvel/Views/Kit/PlainLine.h"

namespace quorvel {

namespace {

class LineBreaker {
public:
    LineBreaker(const Text& text, const TextStyle& style, double width)
        : m_text(text)
        , m_style(style)
        , m_width(width)
    {
    }

    /// Bytes of the next line; the spaces behind it are not counted.
    std::size_t next(std::string_view rest) const
    {
        if (fits(rest))
            return rest.size();
        std::size_t end = 0;
        for (auto space = rest.find(' '); space != rest.npos; space = rest.find(' ', space + 1)) {
            if (!fits(rest.substr(0, space)))
                break;
            end = space;
        }
        return end > 0 ? end : withinWord(rest);
    }

private:
    bool fits(std::string_view line) const
    {
        return m_text.measure(line, m_style).width <= m_width;
    }

    /// At least one character, or there would be no end.
    std::size_t withinWord(std::string_view rest) const
    {
        auto ends = m_text.characterEnds(rest);
        auto past = std::partition_point(
            ends.begin() + 1, ends.end(), [&](auto end) { return fits(rest.substr(0, end)); });
        return *(past - 1);
    }

    const Text& m_text;
    const TextStyle& m_style;
    const double m_width;
};

std::string_view withoutSpaces(std::string_view text)
{
    auto first = text.find_first_not_of(' ');
    return first == text.npos ? std::string_view{} : text.substr(first);
}

}

std::vector<std::string> wrappedLines(const Text& text, std::string_view utf8,
    const TextStyle& style, double width, std::size_t mostLines)
{
    LineBreaker breaker{text, style, width};
    auto line = plainLine(utf8);
    auto rest = withoutSpaces(line);
    std::vector<std::string> lines;
    while (!rest.empty() && lines.size() < mostLines) {
        bool isLast = lines.size() + 1 == mostLines;
        auto size = isLast ? rest.size() : breaker.next(rest);
        lines.emplace_back(rest.substr(0, size));
        rest = withoutSpaces(rest.substr(size));
    }
    return lines;
}

}
