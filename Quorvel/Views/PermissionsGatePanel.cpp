#include "Quorvel/Views/PermissionsGatePanel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Core/LaunchPermissionCenter.h"
#include "Quorvel/Core/PermissionsGateModel.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/PermissionRequirementRow.h"
#include "Quorvel/Views/PermissionsGateContent.h"

namespace quorvel {

namespace {

/// The screen with the pointer, else the first one.
Screen screenToUse(const Displays& displays)
{
    auto screens = displays.screens();
    auto number = displays.displayAt(displays.pointerLocation());
    for (auto& screen : screens) {
        if (number && screen.number == number)
            return screen;
    }
    return screens.empty() ? Screen{} : screens.front();
}

constexpr double kTitleBar = 40; ///< no system's is higher; points

/// Where windows can be on the screen.
Rect roomOn(const Screen& screen)
{
    return screen.visibleFrame.isEmpty() ? screen.frame : screen.visibleFrame;
}

/// With its title bar.
Size fitted(Size size, const Rect& room)
{
    return {size.width, std::min(size.height, std::floor(room.height - kTitleBar))};
}

/// In the middle, on whole points, with its title bar in sight.
Rect placeIn(const Rect& room, Size size)
{
    auto middle = room.centred(size);
    double y = std::min(middle.y, room.maxY() - kTitleBar - size.height);
    return {std::round(middle.x), std::round(y), size.width, size.height};
}

}

PermissionsGatePanel::PermissionsGatePanel(const Platform& platform, PermissionsGateModel& model)
    : m_platform(platform)
    , m_surface(platform.surfaces.createPanel(
          {.display = screenToUse(platform.displays).number.value_or(DisplayNumber{}),
              .title = tr("Quorvel Setup"),
              .kind = PanelKind::window},
          m_hostingView))
{
    auto content = std::make_unique<PermissionsGateContent>(
        platform.text, platform.application.bundleIdentifier().value_or(""), platform.dispatch);
    m_content = content.get();
    m_hostingView.attach(*m_surface);
    m_hostingView.isRightToLeft
        = [this] { return m_platform.application.appearance().value().isRightToLeft; };
    m_hostingView.onCloseRequested = [this] { close(); };
    m_hostingView.setContent(std::move(content));
    connect(model);
}

PermissionsGatePanel::~PermissionsGatePanel()
{
    m_hostingView.setContent(nullptr);
}

void PermissionsGatePanel::connect(PermissionsGateModel& model)
{
    m_content->onContinue = [this] {
        if (onContinue)
            onContinue();
    };
    m_content->onQuit = [this] {
        if (onQuit)
            onQuit();
    };
    auto& accessibility = m_content->accessibilityRow();
    accessibility.requestAction = [&model] { model.requestAccessibility(); };
    accessibility.openSettingsAction = [&model] {
        model.center().openSettings(LaunchPermissionCenter::accessibilitySettings());
    };
    auto& screenRecording = m_content->screenRecordingRow();
    screenRecording.requestAction = [&model] { model.requestScreenRecording(); };
    screenRecording.openSettingsAction = [&model] {
        model.center().openSettings(LaunchPermissionCenter::screenRecordingSettings());
    };
    m_subscriptions.push_back(
        model.state().subscribe([this](auto& state) { stateDidChange(state); }));
    m_subscriptions.push_back(
        m_platform.application.appearance().subscribe([this](auto&) { appearanceDidChange(); }));
    stateDidChange(model.state().value());
    appearanceDidChange();
}

void PermissionsGatePanel::show()
{
    m_room = roomOn(screenToUse(m_platform.displays));
    m_surface->setFrame(placeIn(m_room, fitted(m_content->idealSize(), m_room)));
    m_isShown = true;
    m_surface->makeKeyAndOrderFront();
    m_content->flashScroller();
}

void PermissionsGatePanel::close()
{
    if (!std::exchange(m_isShown, false))
        return;
    m_surface->orderOut();
    if (auto tell = onClosed)
        tell();
}

/// The keyboard does not stay on what can no longer be pressed.
void PermissionsGatePanel::stateDidChange(const LaunchPermissionsState& state)
{
    m_content->setState(state);
    auto* focused = m_hostingView.keyFocusedView();
    if (focused && !focused->takesKeyboard())
        m_hostingView.setKeyFocused(m_content->preferredKeyView());
    m_surface->accessibleTreeDidChange();
}

/// Texts of another font need another room; the title bar stays where the user put it.
void PermissionsGatePanel::appearanceDidChange()
{
    m_content->setAppearance(m_platform.application.appearance().value());
    auto frame = m_surface->frame();
    auto size = fitted(m_content->idealSize(), m_room);
    if (m_isShown && frame.size() != size)
        m_surface->setFrame({frame.x, frame.maxY() - size.height, size.width, size.height});
}

}
