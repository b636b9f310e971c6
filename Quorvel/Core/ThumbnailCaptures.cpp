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

std::optional<ShareableWindow> windowIn(const ShareableContent& content, WindowID id)
{
    const auto window = std::ranges::find(content.windows, id, &ShareableWindow::windowID);
    return window == content.windows.end() ? std::nullopt : std::optional{*window};
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
    captureWindow(id, PictureSize::popup,
        [weak = weak_from_this(), id, isWanted = std::move(isWanted), result = std::move(result)](
            std::optional<WindowPicture> picture, const Rect&) {
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

void ThumbnailCaptures::keepIf(const std::function<bool(WindowID)>& isThere)
{
    auto gone = [this] {
        const std::scoped_lock lock{m_stateLock};
        return m_cache.windows();
    }();
    std::erase_if(gone, isThere);
    const std::scoped_lock lock{m_stateLock};
    for (auto id : gone)
        m_cache.forget(id);
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
                self->thumbnail(id, [] { return true; }, [](const auto&) {});
        }
    });
}

// MARK: The windows that can be captured

void ThumbnailCaptures::fetchShareableContent(const ContentResult& result)
{
    Content content;
    {
        const std::scoped_lock lock{m_stateLock};
        content = cachedShareableContent();
        if (!content) {
            m_contentWaiters.push_back(result);
            if (std::exchange(m_isFetchingContent, true))
                return;
        }
    }
    if (content)
        result(content);
    else
        requestShareableContent();
}

ThumbnailCaptures::Content ThumbnailCaptures::cachedShareableContent(Duration youngerThan) const
{
    const bool isFresh = m_dispatch.now() - m_cachedContentTimestamp < youngerThan;
    return isFresh ? m_cachedContent : nullptr;
}

std::optional<ShareableWindow> ThumbnailCaptures::knownWindow(WindowID id) const
{
    const std::scoped_lock lock{m_stateLock};
    const auto content = cachedShareableContent(kKnownWindowTTL);
    return content ? windowIn(*content, id) : std::nullopt;
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
    m_screenCapture.getShareableContent([once](const Content& content) { once->resume(content); });
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

void ThumbnailCaptures::captureAnew(WindowID id, PictureSize size, AnewResult result)
{
    auto store = [weak = weak_from_this(), id, size, result = std::move(result)](
                     std::optional<WindowPicture> picture, const Rect& frame) {
        auto self = weak.lock();
        if (self && picture && size == PictureSize::popup)
            self->cacheImage(id, *picture);
        result(std::move(picture), frame);
    };
    // A picture that lies in its window's place has to know where that is now.
    const auto window = size == PictureSize::popup ? knownWindow(id) : std::nullopt;
    if (window)
        captureImage(*window, size, store);
    else
        captureWindow(id, size, std::move(store));
}

void ThumbnailCaptures::captureWindow(WindowID id, PictureSize size, AnewResult result)
{
    fetchShareableContent(
        [weak = weak_from_this(), id, size, result = std::move(result)](const Content& content) {
            auto self = weak.lock();
            if (!self)
                return;
            const auto window = content ? windowIn(*content, id) : std::nullopt;
            if (!window)
                return result(std::nullopt, {});
            self->captureImage(*window, size, result);
        });
}

void ThumbnailCaptures::captureImage(
    const ShareableWindow& window, PictureSize size, const AnewResult& result)
{
    auto once = std::make_shared<OneShotContinuation<std::optional<WindowPicture>>>(
        [result, frame = window.frame](
            std::optional<WindowPicture> picture) { result(std::move(picture), frame); });
    m_screenCapture.captureImage(window, configurationFor(window.frame, size),
        [once](std::optional<WindowPicture> picture) { once->resume(std::move(picture)); });
}

/// A pixel for each point of the window, but no more than a popup shows; or all that it has.
CaptureConfiguration ThumbnailCaptures::configurationFor(
    const Rect& windowFrame, PictureSize size) const
{
    double scale = 1;
    for (auto& screen : m_displays.screens())
        scale = std::max(scale, screen.scale);
    const double width = wholePoints(windowFrame.width);
    const double height = wholePoints(windowFrame.height);
    if (size == PictureSize::window)
        return {static_cast<int>(width * scale), static_cast<int>(height * scale)};
    const double ratio = std::min({1.0, ThumbnailService::kPopupPictureSize.width * scale / width,
        ThumbnailService::kPopupPictureSize.height * scale / height});
    return {static_cast<int>(wholePoints(std::round(width * ratio))),
        static_cast<int>(wholePoints(std::round(height * ratio)))};
}

}
