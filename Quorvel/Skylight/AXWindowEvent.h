#pragma once

#include <optional>
#include <string>

#include "Quorvel/Platform/Accessibility.h"

namespace quorvel {

/// One accessibility notification for the window store.
struct AXWindowEvent {
    std::string notification;
    ProcessID pid{};
    AXElement element;
    std::optional<WindowID> windowID;
};

}
