#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "Quorvel/Core/PictureSize.h"
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
    /// How long an answer is good enough to capture a window in it once more.
    static constexpr Duration kKnownWindowTTL = seconds(10);

    using Content = std::shared_ptr<const ShareableContent>;
    using Result = std::function<void(std::optional<WindowPicture>)>;
    /// The frame is that of the list it was captured from; points, global top-left origin.
    using AnewResult = std::function<void(std::optional<WindowPicture>, const Rect& frame)>;

    ThumbnailCaptures(Dispatch&, ScreenCapture&, const Displays&);

    Dispatch& dispatch() { return m_dispatch; }
    /// `isWanted` is asked when the picture is ready; an unwanted picture is dropped.
    void thumbnail(WindowID, std::function<bool()> isWanted, Result);
    std::optional<WindowPicture> staleCachedImage(WindowID) const;
    void prefetch(const std::vector<WindowID>&);
    void keepIf(const std::function<bool(WindowID)>& isThere);
    /// However fresh the one is that there is. Popup-sized pictures are stored.
    void captureAnew(WindowID, PictureSize, AnewResult);
    ScreenCapture& screenCapture() { return m_screenCapture; }

private:
    using ContentResult = std::function<void(const Content&)>;

    std::optional<WindowPicture> cachedThumbnailIfFresh(WindowID) const;
    void cacheImage(WindowID, const WindowPicture&);
    std::vector<WindowID> withoutFreshPicture(const std::vector<WindowID>&) const;

    void fetchShareableContent(const ContentResult&);
    void requestShareableContent();
    void contentArrived(const Content&);
    /// Call with the lock held.
    Content cachedShareableContent(Duration youngerThan = kContentTTL) const;
    std::optional<ShareableWindow> knownWindow(WindowID) const;

    void captureWindow(WindowID, PictureSize, AnewResult);
    void captureImage(const ShareableWindow&, PictureSize, const AnewResult&);
    CaptureConfiguration configurationFor(const Rect& windowFrame, PictureSize) const;

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
