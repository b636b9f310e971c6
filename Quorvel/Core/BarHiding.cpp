#include "Quorvel/Core/BarHiding.h"

#include <algorithm>

#include "Quorvel/Core/BarPanels.h"
#include "Quorvel/Core/LauncherPresenter.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

BarHiding::BarHiding(const Platform& platform, const WindowStore& windowStore,
    const UserSettings& settings, BarViewModel& viewModel, const BarPanels& panels,
    const LauncherPresenter& launcher)
    : m_platform(platform)
    , m_windowStore(windowStore)
    , m_settings(settings)
    , m_viewModel(viewModel)
    , m_panels(panels)
    , m_launcher(launcher)
    , m_itemsChange(viewModel.displayItemsBySpace.subscribe([this](auto&) { followAttention(); }))
    , m_showingDesktopChange(
          platform.windowServer.isShowingDesktop.subscribe([this](bool) { update(); }))
    , m_hide(platform.workspace.didHide.subscribe([this](auto&) { update(); }))
    , m_unhide(platform.workspace.didUnhide.subscribe([this](auto&) { update(); }))
{
}

bool BarHiding::isOn() const
{
    return m_settings.hidesBar();
}

Bar* BarHiding::bar(const Key& key) const
{
    auto bars = m_panels.bars();
    auto found = std::ranges::find(bars, key, [](auto* bar) { return keyOf(*bar); });
    return found == bars.end() ? nullptr : *found;
}

BarHiding::Hiding& BarHiding::hidingOf(const Bar& bar)
{
    auto key = keyOf(bar);
    auto follow = [this, key] {
        if (auto* changed = this->bar(key))
            apply(*changed);
    };
    return m_bars.try_emplace(key, m_platform.dispatch.main(), follow).first->second;
}

void BarHiding::update()
{
    if (!isOn() && m_bars.empty())
        return; // called for every change of a window
    auto bars = m_panels.bars();
    if (!isOn()) {
        m_bars.clear();
        m_asking.clear();
        for (auto* bar : bars) {
            bar->onUseChanged = nullptr;
            bar->setOut(false);
        }
        return;
    }
    std::erase_if(m_bars, [&](auto& entry) { return !bar(entry.first); });
    for (auto* bar : bars)
        follow(*bar);
    followAttention();
}

void BarHiding::follow(Bar& bar)
{
    auto& autoHide = hidingOf(bar).autoHide;
    bar.onUseChanged = [this, &bar] { follow(bar); };
    autoHide.setInUse(bar.isInUse() || m_launcher.isOpenFrom(bar));
    autoHide.setOverlapped(isOverlapped(bar));
    autoHide.setShowingDesktop(m_platform.windowServer.isShowingDesktop.value());
    apply(bar);
}

void BarHiding::apply(Bar& bar)
{
    auto& hiding = hidingOf(bar);
    bar.setOut(hiding.autoHide.isOut());
    watchEdge(bar, hiding);
}

// MARK: Windows and edges

bool BarHiding::isOverlapped(const Bar& bar) const
{
    auto screens = m_platform.displays.screens();
    if (screens.empty() || m_platform.windowServer.isShowingDesktop.value())
        return false;
    auto place = bar.surface().frame().flipped(screens.front().frame.height);
    return std::ranges::any_of(m_windowStore.windows(), [&](auto& entry) {
        auto& window = entry.second;
        return !window.isMinimized && window.frame.intersects(place)
            && window.spaceIDs.contains(bar.spaceID()) && !isHidden(window.pid);
    });
}

/// The window server goes on listing the windows of such an application as if they were there.
bool BarHiding::isHidden(ProcessID pid) const
{
    auto application = m_platform.workspace.runningApplication(pid);
    return application && application->isHidden;
}

Rect BarHiding::stripOf(const Bar& bar) const
{
    auto strip = bar.surface().frame();
    auto below = Rect{strip.x, strip.y - 1, strip.width, 1};
    auto screens = m_platform.displays.screens();
    bool isAboveDisplay = std::ranges::any_of(
        screens, [&](auto& screen) { return screen.frame.intersects(below); });
    strip.height = isAboveDisplay ? kStripAboveDisplay : kStrip;
    return strip;
}

/// Of the bars of a display only the one that would be seen is called.
void BarHiding::watchEdge(const Bar& bar, Hiding& hiding)
{
    if (!hiding.autoHide.isOut() || !bar.surface().isVisible()) {
        hiding.edge = nullptr;
        return;
    }
    if (!hiding.edge) {
        hiding.edge = std::make_unique<EdgeStrip>(m_platform.surfaces, bar.display(),
            [&autoHide = hiding.autoHide](EdgeContact contact) { autoHide.edgeTouched(contact); });
    }
    hiding.edge->setFrame(stripOf(bar));
}

// MARK: Attention

BarHiding::Asking BarHiding::askingOn(DisplayNumber display) const
{
    Asking asking;
    for (auto* bar : m_panels.bars()) {
        if (bar->display() != display)
            continue;
        auto screen = m_panels.isPerScreen() ? std::optional{bar->screenIndex()} : std::nullopt;
        for (auto& item : m_viewModel.displayItems(bar->spaceID(), screen)) {
            if (wantsAttention(item))
                asking.insert(displayItemID(item));
        }
    }
    return asking;
}

void BarHiding::followAttention()
{
    if (!isOn())
        return;
    std::map<DisplayNumber, Asking> all;
    bool doesAnybodyAsk = std::ranges::any_of(m_viewModel.displayItemsBySpace.value(),
        [](auto& items) { return std::ranges::any_of(items.second, wantsAttention); });
    for (auto* bar : m_panels.bars()) {
        if (doesAnybodyAsk && !all.contains(bar->display()))
            all[bar->display()] = askingOn(bar->display());
    }
    auto before = std::exchange(m_asking, std::move(all));
    if (before == m_asking)
        return;
    for (auto* bar : m_panels.bars()) {
        if (!bar->surface().isVisible())
            continue;
        auto& now = m_asking[bar->display()];
        auto& earlier = before[bar->display()];
        if (!std::ranges::includes(earlier, now))
            hidingOf(*bar).autoHide.attentionBegan();
        else if (now.empty() && !earlier.empty())
            hidingOf(*bar).autoHide.attentionEnded();
    }
}

// MARK: What the user asks for

bool BarHiding::toggle(Bar& bar)
{
    if (!isOn())
        return false;
    follow(bar);
    hidingOf(bar).autoHide.toggle();
    return true;
}

void BarHiding::callIn(const Bar& bar)
{
    if (isOn())
        hidingOf(bar).autoHide.callIn();
}

}
