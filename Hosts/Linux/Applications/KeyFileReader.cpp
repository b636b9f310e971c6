#include "Hosts/Linux/Applications/KeyFileReader.h"

namespace quorvel::xdg {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\v\f";

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

char resolvedEscape(char letter)
{
    switch (letter) {
    case 's':
        return ' ';
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'r':
        return '\r';
    case '\\':
        return '\\';
    default:
        return '\0';
    }
}

}

KeyFileReader::KeyFileReader(std::string_view bytes) : m_rest(bytes)
{
    if (m_rest.starts_with(kByteOrderMark))
        m_rest.remove_prefix(kByteOrderMark.size());
}

bool KeyFileReader::next()
{
    while (!m_rest.empty()) {
        const auto line = trimmed(takeLine());
        if (line.empty() || line.front() == '#')
            continue;
        if (line.front() == '[') {
            m_group = line.back() == ']' ? line.substr(1, line.size() - 2) : std::string_view{};
            continue;
        }
        const auto equals = line.find('=');
        if (equals == std::string_view::npos || equals == 0)
            continue;
        m_key = trimmed(line.substr(0, equals));
        m_value = trimmed(line.substr(equals + 1));
        return true;
    }
    return false;
}

std::string_view KeyFileReader::takeLine()
{
    const auto end = m_rest.find('\n');
    const auto line = m_rest.substr(0, end);
    m_rest.remove_prefix(end == std::string_view::npos ? m_rest.size() : end + 1);
    return line;
}

std::string unescaped(std::string_view value)
{
    std::string text;
    text.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char resolved
            = value[i] == '\\' && i + 1 < value.size() ? resolvedEscape(value[i + 1]) : '\0';
        text += resolved ? resolved : value[i];
        if (resolved)
            ++i;
    }
    return text;
}

}
