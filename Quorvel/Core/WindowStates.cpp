#include "Quorvel/Core/WindowStates.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

constexpr std::array<std::pair<WindowState, std::string_view>, 4> kAttributes{{
    {WindowState::maximized, ax::maximized},
    {WindowState::fullScreen, ax::fullScreen},
    {WindowState::keptAbove, ax::keptAbove},
    {WindowState::onEverySpace, ax::onEverySpace},
}};

}

WindowStates::WindowStates(const WindowStore& windowStore, Accessibility& accessibility)
    : m_windowStore(windowStore)
    , m_calls(accessibility)
{
}

WindowStates::Offers WindowStates::offers(WindowID id)
{
    AXCalls::Scan hungOnlyOnce(m_calls);
    Offers offers;
    auto found = find(id);
    if (!found)
        return offers;
    auto& [pid, window] = *found;
    for (auto& [state, attribute] : kAttributes) {
        if (!m_calls.isSettable(pid, window, attribute))
            continue;
        if (auto isOn = m_calls.read<bool>(pid, window, attribute))
            offers.push_back({state, isOn});
    }
    bool canMaximize = !offers.empty() && offers.front().state == WindowState::maximized;
    if (!canMaximize && zoomButton(*found))
        offers.insert(offers.begin(), {WindowState::zoomed, {}});
    return offers;
}

void WindowStates::set(WindowID id, WindowState state, bool isOn)
{
    AXCalls::Scan hungOnlyOnce(m_calls);
    auto found = find(id);
    if (!found)
        return;
    if (state == WindowState::zoomed)
        return pressZoomButton(*found);
    auto attribute = std::ranges::find(kAttributes, state, [](auto& entry) { return entry.first; });
    m_calls.setAttribute(found->pid, found->window, attribute->second, isOn);
}

std::optional<WindowStates::Found> WindowStates::find(WindowID id)
{
    auto* tracked = m_windowStore.window(id);
    if (!tracked)
        return {};
    auto pid = tracked->pid;
    auto window = m_calls.window(pid, m_calls.application(pid), id);
    return window ? std::optional{Found{pid, *window}} : std::nullopt;
}

std::optional<AXElement> WindowStates::zoomButton(const Found& found)
{
    auto button = m_calls.read<AXElement>(found.pid, found.window, ax::zoomButton);
    if (!button)
        return {};
    m_calls.setMessagingTimeout(*button);
    bool isEnabled = m_calls.read<bool>(found.pid, *button, ax::enabled).value_or(false);
    return isEnabled ? button : std::nullopt;
}

void WindowStates::pressZoomButton(const Found& found)
{
    auto button = zoomButton(found);
    if (!button)
        return;
    bool entersFullScreen = m_calls.read<std::string>(found.pid, *button, ax::subrole)
        == std::string{ax::fullScreenButtonSubrole};
    m_calls.performAction(
        found.pid, *button, entersFullScreen ? ax::zoomWindowAction : ax::pressAction);
}

}
