#pragma once

#include <optional>

#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

/// The program that shows the load of the system.
class ActivityMonitor {
public:
    explicit ActivityMonitor(const Platform& platform) : m_platform(platform) { }

    bool isInstalled() const;
    void open() const;

private:
    std::optional<ApplicationURL> find() const;

    const Platform& m_platform;
};

}
