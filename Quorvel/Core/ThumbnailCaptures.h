#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "Quorvel/Core/ThumbnailCache.h"

namespace quorvel {

class Displays;

/// The work of `ThumbnailService`. What the platform answers goes on on the answer's own thread;
/// the lock is never held while somebody else's code runs.
class ThumbnailCaptures : public std::enable_shared_from_this<ThumbnailCaptures> {
public:
    /// An answer serves for so long.
    static constexpr Duration kContentTTL = seconds(2);
    /// A question that is not answered in this time has failed; else it would stop every capture.
    static constexpr Duration kContentTimeout = seconds(5);

    using Content = std::shared_ptr<const ShareableContent>;
    using Result = std::function<void(std::optional<WindowPicture>)>;

    ThumbnailCaptures(Dispatch&, ScreenCapture&, const Displays&);

    Dispatch& dispatch() { return m_dispatch; }
    /// `isWanted` is asked when the picture is there; one that nobody wants is not kept.
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
    Content cachedShareableContentIfFresh() const; ///< with the lock held

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
