#include "Quorvel/Skylight/Minimal.h"

#include <algorithm>

#include <fmt/format.h>

#include "Quorvel/Platform/Accessibility.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

bool isSystemBundleIdentifier(std::string_view identifier)
{
    return std::find(kSystemBundleIdentifiers.begin(), kSystemBundleIdentifiers.end(), identifier)
        != kSystemBundleIdentifiers.end();
}

std::set<ProcessID> dockEligibleOwnerPIDs(const Workspace& workspace, Duration)
{
    std::set<ProcessID> pids;
    workspace.enumerateRunningApplications([&](const RunningApplication& application) {
        if (application.isTerminated || application.activationPolicy != ActivationPolicy::regular)
            return;
        if (application.bundleIdentifier
            && !isSystemBundleIdentifier(*application.bundleIdentifier))
            pids.insert(application.pid);
    });
    return pids;
}

bool isLargeEnough(const Rect& frame)
{
    return frame.width >= kMinimumWindowExtent && frame.height >= kMinimumWindowExtent;
}

WindowFilter windowFilter(const CGWindowInfo& window)
{
    if (window.layer != 0)
        return WindowFilter::layerNotZero;
    if (!window.bounds || !isLargeEnough(*window.bounds))
        return WindowFilter::boundsTooSmall;
    if (window.alpha && !(*window.alpha > 0))
        return WindowFilter::fullyTransparent;
    return WindowFilter::passed;
}

std::string rejectionReason(WindowFilter filter, const CGWindowInfo& window)
{
    switch (filter) {
    case WindowFilter::passed:
        return {};
    case WindowFilter::layerNotZero:
        return window.layer ? fmt::format("layer-not-zero layer={}", *window.layer)
                            : "layer-not-zero layer=nil";
    case WindowFilter::boundsTooSmall:
        return window.bounds ? fmt::format("bounds-too-small size={:.3f}x{:.3f}",
                                   window.bounds->width, window.bounds->height)
                             : "bounds-too-small size=nil";
    case WindowFilter::fullyTransparent:
        return fmt::format("fully-transparent alpha={:.3f}", window.alpha.value_or(0));
    }
    return {};
}

bool isDockEligibleAXWindow(const AXWindowMetadata& window)
{
    if (window.role != ax::windowRole)
        return false;
    if (window.isModal.value_or(false))
        return false;
    // A minimised window is kept whatever its subrole.
    if (window.isMinimized.value_or(false))
        return true;
    return !window.subrole || *window.subrole == ax::standardWindowSubrole;
}

std::string axIneligibilityReason(const AXWindowMetadata& window)
{
    if (window.role != ax::windowRole)
        return "ax-role-not-window role=" + window.role.value_or("nil");
    if (window.isModal.value_or(false))
        return "ax-modal-window";
    if (window.isMinimized.value_or(false))
        return "ax-minimized-window";
    if (!window.subrole || *window.subrole == ax::standardWindowSubrole)
        return "ax-not-dock-eligible";
    return "ax-subrole-not-standard subrole=" + *window.subrole;
}

WindowAdmission cgWindowAXAdmission(
    WindowID window, const AXWindowMetadataByID& metadataByID, bool hasAXWindowList)
{
    if (!hasAXWindowList)
        return {};
    auto found = metadataByID.find(window);
    if (found == metadataByID.end())
        return {.rejectionReason = "missing-from-ax-window-list", .isSoft = true};
    if (isDockEligibleAXWindow(found->second))
        return {.isConfirmed = true};
    return {.rejectionReason = axIneligibilityReason(found->second)};
}

std::string sanitizeLogField(const std::optional<std::string>& text)
{
    if (!text || text->empty())
        return "<empty>";
    std::string clean = *text;
    for (char& character : clean) {
        if (character == '\n' || character == '\r' || character == '\t')
            character = ' ';
    }
    return clean;
}

}
