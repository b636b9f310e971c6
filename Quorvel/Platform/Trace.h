#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// The diagnostic log: flat lines of key=value fields. Composes nothing while it is off. Main
/// thread.
class Trace {
public:
    using Sink = std::function<void(std::string_view line)>;

    /// An empty sink switches the trace off.
    void setSink(Sink sink) { m_sink = std::move(sink); }
    bool isOn() const { return static_cast<bool>(m_sink); }

    template <typename... Arguments>
    void line(fmt::format_string<Arguments...> format, Arguments&&... arguments) const
    {
        if (isOn())
            m_sink(fmt::format(format, std::forward<Arguments>(arguments)...));
    }

private:
    Sink m_sink;
};

/// An absent value as the trace prints it.
template <typename Identifier> std::string orNil(const std::optional<Identifier>& identifier)
{
    return identifier ? fmt::format("{}", raw(*identifier)) : std::string{"nil"};
}

}
