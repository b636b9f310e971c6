#include "Quorvel/Views/ThumbnailHover.h"

#include <utility>

namespace quorvel {

ThumbnailHover::ThumbnailHover(Dispatch& dispatch, Surfaces& surfaces)
    : m_dispatch(dispatch)
    , m_surfaces(surfaces)
{
}

void ThumbnailHover::handleChipHover(bool isHovering, const HoverTarget& target)
{
    if (m_isHeldByKeyboard)
        return;
    if (!isHovering) {
        m_suppressThumbnailForCurrentHover.reset();
        m_pendingHoverTarget.reset();
        m_mouseMovementMonitor = {};
        return startDismissTimer();
    }
    if (m_suppressThumbnailForCurrentHover == target.chipID || m_openMenu != OpenMenu::none)
        return;
    m_suppressThumbnailForCurrentHover.reset();
    if (onPrefetch)
        onPrefetch(target);
    if (m_thumbnailTargetID == target.chipID) {
        m_dismissTimer = {};
        return;
    }
    m_pendingHoverTarget = target;
    if (m_thumbnailTargetID)
        return show();
    restartShowTimer();
    startMouseStabilityMonitoring();
}

void ThumbnailHover::restartShowTimer()
{
    m_dismissTimer = {};
    m_showTimer = m_dispatch.main().after(kShowDelay, [this] { show(); });
}

/// A pointer on its way somewhere else is not resting.
void ThumbnailHover::startMouseStabilityMonitoring()
{
    m_mouseMovementMonitor = m_surfaces.monitorPointer(PointerScope::ownWindows, [this] {
        if (m_showTimer.isPending())
            restartShowTimer();
    });
}

void ThumbnailHover::show()
{
    m_showTimer = {};
    m_dismissTimer = {};
    m_mouseMovementMonitor = {};
    auto target = std::exchange(m_pendingHoverTarget, std::nullopt);
    if (!target)
        return;
    m_thumbnailTargetID = target->chipID;
    m_isThumbnailPopupHovered = false;
    if (onShow)
        onShow(*target);
}

void ThumbnailHover::startDismissTimer()
{
    m_showTimer = {};
    if (!m_thumbnailTargetID || m_openMenu != OpenMenu::none || m_isHeldByKeyboard)
        return;
    m_dismissTimer = m_dispatch.main().after(kDismissDelay, [this] {
        if (!m_isThumbnailPopupHovered)
            dismissThumbnailPopupImmediate();
    });
}

void ThumbnailHover::setPopupHovered(bool isHovered)
{
    m_isThumbnailPopupHovered = isHovered;
    if (!isHovered)
        startDismissTimer();
}

void ThumbnailHover::dismissThumbnailPopupImmediate()
{
    m_showTimer = {};
    m_dismissTimer = {};
    m_mouseMovementMonitor = {};
    m_pendingHoverTarget.reset();
    targetDidVanish();
}

void ThumbnailHover::targetDidVanish()
{
    m_dismissTimer = {};
    m_isThumbnailPopupHovered = false;
    m_isHeldByKeyboard = false;
    if (std::exchange(m_thumbnailTargetID, std::nullopt) && onDismiss)
        onDismiss();
}

void ThumbnailHover::setMenuOpen(OpenMenu menu)
{
    m_openMenu = menu;
    m_dismissTimer = {};
    if (menu == OpenMenu::elsewhere)
        dismissThumbnailPopupImmediate();
    else if (menu == OpenMenu::none && !m_isThumbnailPopupHovered)
        startDismissTimer();
}

void ThumbnailHover::openForKeyboard(const HoverTarget& target)
{
    if (onPrefetch)
        onPrefetch(target);
    m_pendingHoverTarget = target;
    m_isHeldByKeyboard = true;
    show();
}

}
