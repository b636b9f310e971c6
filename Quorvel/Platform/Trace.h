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

/// An identifier as the trace prints it; "nil" for none. Composed only if the line is printed.
template <typename Identifier> struct OrNil {
    std::optional<Identifier> identifier;
};

template <typename Identifier> OrNil<Identifier> orNil(const std::optional<Identifier>& identifier)
{
    return {identifier};
}

}

template <typename Identifier>
struct fmt::formatter<quorvel::OrNil<Identifier>> : fmt::formatter<std::string_view> {
    template <typename Context>
    auto format(const quorvel::OrNil<Identifier>& value, Context& context) const
    {
        if (!value.identifier)
            return fmt::format_to(context.out(), "nil");
        return fmt::format_to(context.out(), "{}", quorvel::raw(*value.identifier));
    }
};
