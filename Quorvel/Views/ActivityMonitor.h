#pragma once

#include <optional>
#include <string>

#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

class BarViewModel;

/// The program that shows the load of the system.
class ActivityMonitor {
public:
    explicit ActivityMonitor(const Platform& platform) : m_platform(platform) { }

    /// As the user knows it; absent if there is none.
    std::optional<std::string> name(const BarViewModel&) const;
    void open() const;

private:
    const char* findIdentifier() const;

    const Platform& m_platform;
};

}
