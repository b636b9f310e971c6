#include "Quorvel/Views/ActivityMonitor.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Platform/Files.h"

namespace quorvel {

namespace {

/// The first that is installed is it.
constexpr std::array kIdentifiers{"com.apple.ActivityMonitor", "org.gnome.SystemMonitor",
    "gnome-system-monitor", "org.kde.plasma-systemmonitor", "org.kde.ksysguard",
    "xfce4-taskmanager", "mate-system-monitor", "io.missioncenter.MissionCenter", "lxtask"};
constexpr const char* kPath = "/System/Applications/Utilities/Activity Monitor.app";

}

/// Null if there is none.
const char* ActivityMonitor::findIdentifier() const
{
    auto found = std::ranges::find_if(kIdentifiers, [this](auto* identifier) {
        return m_platform.workspace.applicationURL(identifier).has_value();
    });
    return found == kIdentifiers.end() ? nullptr : *found;
}

std::optional<std::string> ActivityMonitor::name(const BarViewModel& viewModel) const
{
    if (auto* identifier = findIdentifier())
        return viewModel.appName(identifier);
    if (m_platform.files.exists(kPath))
        return std::filesystem::path{kPath}.stem().string();
    return {};
}

void ActivityMonitor::open() const
{
    auto* identifier = findIdentifier();
    if (auto url = identifier ? m_platform.workspace.applicationURL(identifier) : std::nullopt)
        m_platform.workspace.openApplication(*url);
    else
        m_platform.workspace.openFile(kPath);
}

}
