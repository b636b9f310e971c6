#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace quorvel::settings {

/// Cuts a stream into its lines.
class LineReader {
public:
    explicit LineReader(std::size_t longest) : m_longest(longest) { }

    /// Takes what has come and gives each line that is whole by now, without its end. False when a
    /// line is longer than allowed: what follows cannot be trusted.
    bool add(std::string_view bytes, const std::function<void(std::string_view line)>& onLine)
    {
        for (auto end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
            m_begun.append(bytes.substr(0, end));
            if (m_begun.size() > m_longest)
                return false;
            bytes.remove_prefix(end + 1);
            onLine(m_begun);
            m_begun.clear();
        }
        m_begun.append(bytes);
        return m_begun.size() <= m_longest;
    }

private:
    std::size_t m_longest;
    std::string m_begun;
};

}
