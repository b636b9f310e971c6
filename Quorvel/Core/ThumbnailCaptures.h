#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "Quorvel/Core/ThumbnailCache.h"

namespace quorvel {

class Displays;

/// The work of `ThumbnailService`. The platform's answers are processed on the thread they come on;
/// the lock is never held while foreign code runs.
class ThumbnailCaptures : public std::enable_shared_from_this<ThumbnailCaptures> {
public:
    /// How long an answer can be reused.
    static constexpr Duration kContentTTL = seconds(2);
    /// A question not answered in this time has failed; otherwise it would block every capture.
    static constexpr Duration kContentTimeout = seconds(5);

    using Content = std::shared_ptr<const ShareableContent>;
    using Result = std::function<void(std::optional<WindowPicture>)>;

    ThumbnailCaptures(Dispatch&, ScreenCapture&, const Displays&);

    Dispatch& dispatch() { return m_dispatch; }
    /// `isWanted` is asked when the picture is ready; an unwanted picture is dropped.
    void thumbnail(WindowID, std::function<bool()> isWanted, Result);
    std::optional<WindowPicture> staleCachedImage(WindowID) const;
    void prefetch(const std::vector<WindowID>&);

private:
    using ContentResult = std::function<void(const Content&)>;

    std::optional<WindowPicture> cachedThumbnailIfFresh(WindowID) const;
    void cacheImage(WindowID, const WindowPicture&);
    std::vector<WindowID> withoutFreshPicture(const std::vector<WindowID>&) const;

    void fetchShareableContent(ContentResult);
    void requestShareableContent();
    void contentArrived(const Content&);
    Content cachedShareableContentIfFresh() const; ///< call with the lock held

    void captureWindow(WindowID, Result);
    void captureImage(const ShareableWindow&, Result);
    CaptureConfiguration configurationFor(const Rect& windowFrame) const;

    Dispatch& m_dispatch;
    ScreenCapture& m_screenCapture;
    const Displays& m_displays;

    mutable std::mutex m_stateLock; ///< guards what follows
    ThumbnailCache m_cache;
    Content m_cachedContent;
    Instant m_cachedContentTimestamp;
    bool m_isFetchingContent = false;
    std::vector<ContentResult> m_contentWaiters;
    WorkItem m_contentTimeout;
};

}
