#include "Quorvel/Core/ApplicationIcons.h"

#include "Quorvel/Skylight/TrackedWindow.h"

namespace quorvel {

ApplicationIcons::ApplicationIcons(Workspace& workspace) : m_workspace(workspace)
{
    m_changes = workspace.iconDidChange.subscribe([this](const std::string& bundleIdentifier) {
        m_iconCache.erase(bundleIdentifier);
        didChange.emit();
    });
}

Image ApplicationIcons::icon(const TrackedWindow& window)
{
    Image found;
    if (!window.bundleIdentifier) {
        found = findIcon(window);
    } else if (auto known = m_iconCache.find(*window.bundleIdentifier);
               known != m_iconCache.end()) {
        found = known->second;
    } else {
        // "None" is remembered too: to look for an icon may mean to ask the window.
        found = m_iconCache[*window.bundleIdentifier] = findIcon(window);
    }
    if (found)
        return found;
    // One handle for all, so that a chip with it does not look changed.
    if (!m_generic)
        m_generic = m_workspace.genericApplicationIcon();
    return m_generic;
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
