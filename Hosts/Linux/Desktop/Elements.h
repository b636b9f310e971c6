#pragma once

#include <optional>

#include "Quorvel/Platform/Accessibility.h"

namespace quorvel::xdg {

/// What an element stands for is encoded in its token: the kind in the high bits, the number in the
/// low ones.
enum class ElementKind : std::uint32_t { none = 0, application = 1, window = 2, closeButton = 3 };

inline AXElement makeElement(ElementKind kind, std::uint32_t number)
{
    return {std::uint64_t{static_cast<std::uint32_t>(kind)} << 32 | number, nullptr};
}
inline AXElement elementOf(ProcessID pid)
{
    return makeElement(ElementKind::application, static_cast<std::uint32_t>(raw(pid)));
}
inline AXElement elementOf(WindowID window)
{
    return makeElement(ElementKind::window, raw(window));
}
inline AXElement closeButtonOf(WindowID window)
{
    return makeElement(ElementKind::closeButton, raw(window));
}

inline bool isKind(const AXElement& element, ElementKind kind)
{
    return element.token >> 32 == static_cast<std::uint32_t>(kind);
}
inline std::optional<ProcessID> applicationIn(const AXElement& element)
{
    if (!isKind(element, ElementKind::application))
        return std::nullopt;
    return ProcessID{static_cast<std::int32_t>(static_cast<std::uint32_t>(element.token))};
}
inline std::optional<WindowID> windowIn(const AXElement& element, ElementKind kind)
{
    if (!isKind(element, kind))
        return std::nullopt;
    return WindowID{static_cast<std::uint32_t>(element.token)};
}

}
