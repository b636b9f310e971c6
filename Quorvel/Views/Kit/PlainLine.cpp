#include "Quorvel/Views/Kit/PlainLine.h"

#include "Quorvel/Core/CodePoints.h"

namespace quorvel {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr char32_t kReplacementValue = 0xFFFD;
constexpr char32_t kNextLine = 0x85;
constexpr char32_t kLineSeparator = 0x2028;
constexpr char32_t kParagraphSeparator = 0x2029;

bool isBreak(char32_t value)
{
    return (value >= '\t' && value <= '\r') || value == kNextLine || value == kLineSeparator
        || value == kParagraphSeparator;
}

bool isControl(char32_t value)
{
    return value < 0x20 || (value >= 0x7F && value < 0xA0);
}

}

std::string plainLine(std::string_view utf8)
{
    std::string line;
    line.reserve(utf8.size());
    bool wasReturn = false;
    while (!utf8.empty()) {
        auto rest = utf8;
        auto value = takeCodePoint(rest);
        if (value == kReplacementValue)
            line += kReplacement;
        else if (isBreak(value))
            line.append(wasReturn && value == '\n' ? 0 : 1, ' ');
        else if (!isControl(value))
            line += utf8.substr(0, utf8.size() - rest.size());
        wasReturn = value == '\r';
        utf8 = rest;
    }
    return line;
}

char32_t firstCodePoint(std::string_view utf8)
{
    return utf8.empty() ? 0 : takeCodePoint(utf8);
}

}
