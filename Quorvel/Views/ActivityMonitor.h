#pragma once

#include <optional>
#include <string>

#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

class BarViewModel;

/// The program that shows the system's load.
class ActivityMonitor {
public:
    explicit ActivityMonitor(const Platform& platform) : m_platform(platform) { }

    /// The name the user knows it by; absent if there is none.
    std::optional<std::string> name(const BarViewModel&) const;
    void open() const;

private:
    const char* findIdentifier() const;

    const Platform& m_platform;
};

}
