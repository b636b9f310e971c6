#include "Quorvel/Core/LaunchPermissionCenter.h"

#include <array>
#include <string>

#include "Quorvel/Platform/Accessibility.h"
#include "Quorvel/Platform/ScreenCapture.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

namespace {

constexpr std::string_view kPrivacy
    = "x-apple.systempreferences:com.apple.preference.security?Privacy";
constexpr std::string_view kSecurity = "x-apple.systempreferences:com.apple.preference.security";

constexpr std::array kAccessibilityPages{
    std::string_view{
        "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"},
    kPrivacy, kSecurity};
constexpr std::array kScreenRecordingPages{
    std::string_view{
        "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"},
    kPrivacy, kSecurity};

}

LaunchPermissionCenter::LaunchPermissionCenter(
    Accessibility& accessibility, ScreenCapture& screenCapture, Workspace& workspace)
    : m_accessibility(accessibility)
    , m_screenCapture(screenCapture)
    , m_workspace(workspace)
{
}

LaunchPermissionsState LaunchPermissionCenter::currentState() const
{
    return {m_accessibility.isTrusted(), m_screenCapture.preflightAccess()};
}

void LaunchPermissionCenter::requestAccessibility()
{
    if (!m_accessibility.isTrusted())
        m_accessibility.promptForTrust();
}

void LaunchPermissionCenter::requestScreenRecording()
{
    m_screenCapture.requestAccess();
}

LaunchPermissionCenter::SettingsPages LaunchPermissionCenter::accessibilitySettings()
{
    return kAccessibilityPages;
}

LaunchPermissionCenter::SettingsPages LaunchPermissionCenter::screenRecordingSettings()
{
    return kScreenRecordingPages;
}

void LaunchPermissionCenter::openSettings(SettingsPages pages)
{
    for (auto page : pages) {
        if (m_workspace.openURL(std::string{page}))
            return;
    }
}

}
