#include "Quorvel/Views/ActivityMonitor.h"

#include <array>

#include "Quorvel/Platform/Files.h"

namespace quorvel {

namespace {

/// The first that is installed is it.
constexpr std::array kIdentifiers{"com.apple.ActivityMonitor", "org.gnome.SystemMonitor",
    "gnome-system-monitor", "org.kde.plasma-systemmonitor", "org.kde.ksysguard",
    "xfce4-taskmanager", "mate-system-monitor", "io.missioncenter.MissionCenter", "lxtask"};
constexpr const char* kPath = "/System/Applications/Utilities/Activity Monitor.app";

}

std::optional<ApplicationURL> ActivityMonitor::find() const
{
    for (auto* identifier : kIdentifiers) {
        if (auto url = m_platform.workspace.applicationURL(identifier))
            return url;
    }
    return {};
}

bool ActivityMonitor::isInstalled() const
{
    return find() || m_platform.files.exists(kPath);
}

void ActivityMonitor::open() const
{
    if (auto url = find())
        m_platform.workspace.openApplication(*url);
    else
        m_platform.workspace.openFile(kPath);
}

}
