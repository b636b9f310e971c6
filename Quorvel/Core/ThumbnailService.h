#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Core/PictureSize.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel {

class Displays;
class ThumbnailCaptures;

/// Still pictures of windows, for the popups above the chips.
///
/// A picture is fresh for 30 s; after that it is kept, as long as there is room and the window is
/// there, in case no newer one is available. Asking for the list of capturable windows is the slow
/// part: all captures that begin while it is being requested share the answer, which is then reused
/// for 2 s. Pictures are captured no larger than a popup shows them. Any thread.
class ThumbnailService {
public:
    using Completion = std::function<void(std::optional<WindowPicture>)>;

    /// The largest picture in a popup, in points.
    static constexpr Size kPopupPictureSize{240, 150};

    ThumbnailService(Dispatch&, ScreenCapture&, const Displays&);
    ~ThumbnailService();
    ThumbnailService(const ThumbnailService&) = delete;
    ThumbnailService& operator=(const ThumbnailService&) = delete;

    /// The running program's instance. Use only where the program is wired together.
    static ThumbnailService& shared();

    /// A fresh picture, else an old one, else none. Answers once, on the main queue and never
    /// inside the call; not at all once the result is dropped, and a picture captured for it is
    /// then discarded.
    [[nodiscard]] Subscription thumbnail(WindowID, Completion);
    /// The stored picture, whatever its age.
    std::optional<WindowPicture> cached(WindowID) const;
    /// Captures those without a fresh picture, so that pictures are ready when a popup opens.
    void prefetch(const std::vector<WindowID>&);
    /// Drops the pictures of the other windows: nobody can ask for those of closed ones again.
    void keepIf(const std::function<bool(WindowID)>& isThere);

    /// The frame is that of the window, in points, global top-left origin.
    using OnPicture = std::function<void(WindowID, const WindowPicture&, const Rect& frame)>;
    /// A picture of each window soon and whenever it has changed, until the result is dropped, at a
    /// bounded cost: see `ThumbnailFollower`. Main thread.
    [[nodiscard]] Subscription follow(const std::vector<WindowID>&, PictureSize, OnPicture);

private:
    /// The platform may answer after the service is gone: its answers hold this weakly.
    std::shared_ptr<ThumbnailCaptures> m_captures;
};

}
