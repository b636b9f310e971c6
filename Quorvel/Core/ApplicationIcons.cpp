#include "Quorvel/Core/ApplicationIcons.h"

#include <utility>

#include "Quorvel/Skylight/TrackedWindow.h"

namespace quorvel {

ApplicationIcons::ApplicationIcons(Workspace& workspace) : m_workspace(workspace)
{
    m_changes = workspace.iconDidChange.subscribe([this](const std::string& bundleIdentifier) {
        if (bundleIdentifier.empty()) {
            m_iconCache.clear();
            m_iconsByPID.clear();
            m_generic.reset();
        } else {
            m_iconCache.erase(bundleIdentifier);
        }
        didChange.emit();
    });
    m_ends = workspace.didTerminate.subscribe(
        [this](const RunningApplication& application) { m_iconsByPID.erase(application.pid); });
}

Image ApplicationIcons::icon(const TrackedWindow& window)
{
    auto& [icon, lookedUpFor] = known(window);
    // An application may get its icon late, but to look for it may mean to ask its windows: so
    // only a new window, which has a higher number, is reason enough.
    if (!icon && lookedUpFor < window.windowID) {
        bool hasWindowsWithout = std::exchange(lookedUpFor, window.windowID) != WindowID{};
        icon = findIcon(window);
        if (icon && hasWindowsWithout)
            didChange.emit();
    }
    if (icon)
        return icon;
    // One handle for all, so that a chip with it does not look changed.
    if (!m_generic)
        m_generic = m_workspace.genericApplicationIcon();
    return m_generic;
}

ApplicationIcons::Known& ApplicationIcons::known(const TrackedWindow& window)
{
    return window.bundleIdentifier ? m_iconCache[*window.bundleIdentifier]
                                   : m_iconsByPID[window.pid];
}

Image ApplicationIcons::icon(const std::string& bundleIdentifier) const
{
    auto url = m_workspace.applicationURL(bundleIdentifier);
    return url ? m_workspace.icon(*url) : nullptr;
}

Image ApplicationIcons::findIcon(const TrackedWindow& window) const
{
    auto stored = window.bundleIdentifier ? icon(*window.bundleIdentifier) : nullptr;
    return stored ? stored : m_workspace.runningApplicationIcon(window.pid);
}

}
