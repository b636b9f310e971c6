#include "Quorvel/Views/ThumbnailPresenter.h"

#include <algorithm>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/PeekFading.h"
#include "Quorvel/Views/ThumbnailPopup.h"

namespace quorvel {

ThumbnailPresenter::ThumbnailPresenter(
    const Platform& platform, ThumbnailService& thumbnailService, DisplayNumber display)
    : m_platform(platform)
    , m_thumbnailService(thumbnailService)
    , m_display(display)
    , m_peeking(platform.peeking ? std::make_unique<PeekFading>(platform) : nullptr)
{
}

ThumbnailPresenter::~ThumbnailPresenter() = default;

bool ThumbnailPresenter::show(const std::vector<ChipData>& windows, const Rect& chip)
{
    auto screens = m_platform.displays.screens();
    auto screen = std::ranges::find(screens, m_display, &Screen::number);
    if (screen == screens.end() || windows.empty())
        return false;
    if (onWillShow)
        onWillShow();
    bool isNew = !m_activeThumbnailPanel;
    if (isNew)
        makePopup();
    m_activeThumbnailPanel->show(
        windows, chip, screen->frame, isNew ? std::nullopt : m_lastPopupFrame);
    m_lastPopupFrame = m_activeThumbnailPanel->frame();
    return true;
}

void ThumbnailPresenter::makePopup()
{
    m_activeThumbnailPanel = std::make_unique<ThumbnailPopup>(
        ThumbnailPopup::Inputs{m_platform.surfaces, m_platform.dispatch, m_platform.text,
            m_thumbnailService, m_platform.application.appearance(), m_peeking.get(), m_display});
    m_activeThumbnailPanel->onHoverChanged = onHoverChanged;
    m_activeThumbnailPanel->onWindowChosen = onWindowChosen;
    m_activeThumbnailPanel->onWindowClosed = onWindowClosed;
    m_activeThumbnailPanel->onMenuRequested = onMenuRequested;
}

bool ThumbnailPresenter::update(const std::vector<ChipData>& windows, const Rect& chip)
{
    return m_activeThumbnailPanel && m_activeThumbnailPanel->update(windows, chip);
}

void ThumbnailPresenter::hide()
{
    if (!m_activeThumbnailPanel)
        return;
    m_closedThumbnailPanel = std::move(m_activeThumbnailPanel);
    m_closedThumbnailPanel->hide();
    m_afterClosing = m_platform.dispatch.main().after(
        Duration::zero(), [this] { m_closedThumbnailPanel.reset(); });
}

}
