#include "Quorvel/Core/ThumbnailCaptures.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Core/OneShotContinuation.h"
#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Platform/Displays.h"

namespace quorvel {

namespace {

std::vector<WindowID> uniqued(const std::vector<WindowID>& ids)
{
    std::vector<WindowID> unique;
    for (auto id : ids) {
        if (std::ranges::find(unique, id) == unique.end())
            unique.push_back(id);
    }
    return unique;
}

/// Whole points, at least one: a frame may be as odd as its owner makes it.
double wholePoints(double length)
{
    return length >= 1 ? std::floor(length) : 1;
}

}

ThumbnailCaptures::ThumbnailCaptures(
    Dispatch& dispatch, ScreenCapture& screenCapture, const Displays& displays)
    : m_dispatch(dispatch)
    , m_screenCapture(screenCapture)
    , m_displays(displays)
{
}

// MARK: Pictures

void ThumbnailCaptures::thumbnail(WindowID id, std::function<bool()> isWanted, Result result)
{
    if (auto fresh = cachedThumbnailIfFresh(id))
        return result(std::move(fresh));
    captureWindow(id,
        [weak = weak_from_this(), id, isWanted = std::move(isWanted), result = std::move(result)](
            std::optional<WindowPicture> picture) {
            auto self = weak.lock();
            if (!self)
                return;
            if (!picture || !isWanted())
                return result(self->staleCachedImage(id));
            self->cacheImage(id, *picture);
            result(std::move(picture));
        });
}

std::optional<WindowPicture> ThumbnailCaptures::cachedThumbnailIfFresh(WindowID id) const
{
    const std::scoped_lock lock{m_stateLock};
    return m_cache.ifFresh(id, m_dispatch.now());
}

std::optional<WindowPicture> ThumbnailCaptures::staleCachedImage(WindowID id) const
{
    const std::scoped_lock lock{m_stateLock};
    return m_cache.ofAnyAge(id);
}

void ThumbnailCaptures::cacheImage(WindowID id, const WindowPicture& picture)
{
    const std::scoped_lock lock{m_stateLock};
    m_cache.store(id, picture, m_dispatch.now());
}

std::vector<WindowID> ThumbnailCaptures::withoutFreshPicture(const std::vector<WindowID>& ids) const
{
    auto wanted = uniqued(ids);
    const std::scoped_lock lock{m_stateLock};
    std::erase_if(
        wanted, [&](auto id) { return m_cache.ifFresh(id, m_dispatch.now()).has_value(); });
    return wanted;
}

void ThumbnailCaptures::prefetch(const std::vector<WindowID>& ids)
{
    auto wanted = withoutFreshPicture(ids);
    if (wanted.empty())
        return;
    fetchShareableContent([weak = weak_from_this(), wanted = std::move(wanted)](const Content&) {
        for (auto id : wanted) {
            if (auto self = weak.lock())
                self->thumbnail(
                    id, [] { return true; }, [](auto) {});
        }
    });
}

// MARK: The windows that can be captured

void ThumbnailCaptures::fetchShareableContent(ContentResult result)
{
    Content content;
    {
        const std::scoped_lock lock{m_stateLock};
        content = cachedShareableContentIfFresh();
        if (!content) {
            m_contentWaiters.push_back(std::move(result));
            if (std::exchange(m_isFetchingContent, true))
                return;
        }
    }
    if (content)
        result(content);
    else
        requestShareableContent();
}

ThumbnailCaptures::Content ThumbnailCaptures::cachedShareableContentIfFresh() const
{
    const bool isFresh = m_dispatch.now() - m_cachedContentTimestamp < kContentTTL;
    return isFresh ? m_cachedContent : nullptr;
}

void ThumbnailCaptures::requestShareableContent()
{
    auto once = std::make_shared<OneShotContinuation<Content>>(
        [weak = weak_from_this()](const Content& content) {
            if (auto self = weak.lock())
                self->contentArrived(content);
        });
    auto timeout = m_dispatch.main().after(kContentTimeout, [once] { once->resume(nullptr); });
    {
        const std::scoped_lock lock{m_stateLock};
        m_contentTimeout = std::move(timeout);
    }
    m_screenCapture.getShareableContent([once](Content content) { once->resume(content); });
}

void ThumbnailCaptures::contentArrived(const Content& content)
{
    std::vector<ContentResult> waiters;
    WorkItem timeout;
    {
        const std::scoped_lock lock{m_stateLock};
        if (content) {
            m_cachedContent = content;
            m_cachedContentTimestamp = m_dispatch.now();
        }
        m_isFetchingContent = false;
        waiters = std::exchange(m_contentWaiters, {});
        timeout = std::move(m_contentTimeout);
    }
    for (auto& waiter : waiters)
        waiter(content);
}

// MARK: Captures

void ThumbnailCaptures::captureWindow(WindowID id, Result result)
{
    fetchShareableContent(
        [weak = weak_from_this(), id, result = std::move(result)](const Content& content) {
            auto self = weak.lock();
            if (!self)
                return;
            if (!content)
                return result(std::nullopt);
            const auto window = std::ranges::find(content->windows, id, &ShareableWindow::windowID);
            if (window == content->windows.end())
                return result(std::nullopt);
            self->captureImage(*window, result);
        });
}

void ThumbnailCaptures::captureImage(const ShareableWindow& window, Result result)
{
    auto once
        = std::make_shared<OneShotContinuation<std::optional<WindowPicture>>>(std::move(result));
    m_screenCapture.captureImage(window, configurationFor(window.frame),
        [once](std::optional<WindowPicture> picture) { once->resume(std::move(picture)); });
}

/// A pixel for each point of the window, but no more than a popup shows.
CaptureConfiguration ThumbnailCaptures::configurationFor(const Rect& windowFrame) const
{
    double scale = 1;
    for (auto& screen : m_displays.screens())
        scale = std::max(scale, screen.scale);
    const double width = wholePoints(windowFrame.width);
    const double height = wholePoints(windowFrame.height);
    const double ratio = std::min({1.0, ThumbnailService::kPopupPictureSize.width * scale / width,
        ThumbnailService::kPopupPictureSize.height * scale / height});
    return {static_cast<int>(wholePoints(std::round(width * ratio))),
        static_cast<int>(wholePoints(std::round(height * ratio)))};
}

}
