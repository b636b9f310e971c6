#pragma once

#include "Quorvel/Core/Bar.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/AppLauncherPanel.h"
#include "Quorvel/Views/BarPanel.h"
#include "Quorvel/Views/Menu/Menus.h"
#include "Quorvel/Views/WindowFinderPanel.h"

namespace quorvel {

/// Makes bars and the launcher as panels of the platform, and has the one menu that they share.
/// Main thread.
class BarViews final : public BarFactory {
public:
    explicit BarViews(const Platform& platform) : m_platform(platform), m_menus(platform) { }

    std::unique_ptr<Bar> makeBar(const PanelOptions& options, std::size_t screenIndex) override
    {
        return std::make_unique<BarPanel>(m_platform, m_menus, options, screenIndex);
    }
    std::unique_ptr<LauncherPanel> makeLauncher(
        const PanelOptions& options, const LauncherContents& contents) override
    {
        return std::make_unique<AppLauncherPanel>(m_platform, m_menus, options, contents);
    }
    std::unique_ptr<LauncherPanel> makeWindowFinder(
        const PanelOptions& options, const WindowFinderContents& contents) override
    {
        return std::make_unique<WindowFinderPanel>(m_platform, m_menus, options, contents);
    }
    /// The panel behind a bar that was made here.
    static BarPanel& panel(Bar& bar) { return static_cast<BarPanel&>(bar); }
    static const BarPanel& panel(const Bar& bar) { return static_cast<const BarPanel&>(bar); }
    static const AppLauncherPanel& panel(const LauncherPanel& launcher)
    {
        return static_cast<const AppLauncherPanel&>(launcher);
    }
    static const WindowFinderPanel& finderPanel(const LauncherPanel& finder)
    {
        return static_cast<const WindowFinderPanel&>(finder);
    }
    const Menus& menus() const { return m_menus; }

private:
    const Platform m_platform;
    Menus m_menus;
};

}
