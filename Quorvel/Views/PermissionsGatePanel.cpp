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

/// In the middle, on whole points; where that is too small, its upper end can be seen.
Rect placeIn(const Rect& room, Size size)
{
    auto middle = room.centred(size);
    double y = std::min(middle.y, room.maxY() - size.height);
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
        platform.text, platform.application.bundleIdentifier().value_or(""));
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
    auto screen = screenToUse(m_platform.displays);
    auto room = screen.visibleFrame.isEmpty() ? screen.frame : screen.visibleFrame;
    m_surface->setFrame(placeIn(room, m_content->idealSize()));
    m_isShown = true;
    m_surface->makeKeyAndOrderFront();
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
    auto size = m_content->idealSize();
    if (m_isShown && frame.size() != size)
        m_surface->setFrame({frame.x, frame.maxY() - size.height, size.width, size.height});
}

}
