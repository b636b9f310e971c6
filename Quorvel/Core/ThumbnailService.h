#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel {

class Displays;
class ThumbnailCaptures;

/// Still pictures of windows, for the popups above the chips.
///
/// A picture is kept for 30 s as good as new, and for as long as there is room in case that no
/// newer one can be had. Asking for the list of windows that can be captured is the slow part: all
/// captures that begin while it is being asked for wait for the same answer, which then serves for
/// 2 s. Pictures are captured no larger than a popup shows them. Any thread.
class ThumbnailService {
public:
    using Completion = std::function<void(std::optional<WindowPicture>)>;

    /// The largest picture in a popup, in points.
    static constexpr Size kPopupPictureSize{240, 150};

    ThumbnailService(Dispatch&, ScreenCapture&, const Displays&);
    ~ThumbnailService();
    ThumbnailService(const ThumbnailService&) = delete;
    ThumbnailService& operator=(const ThumbnailService&) = delete;

    /// The running program's. Only where the program is wired together.
    static ThumbnailService& shared();

    /// A fresh picture, else an old one, else none. Answers once, on the main queue and never
    /// inside the call; not at all once the result is dropped, and what was captured for it is then
    /// thrown away.
    [[nodiscard]] Subscription thumbnail(WindowID, Completion);
    /// What there is, of whatever age.
    std::optional<WindowPicture> cached(WindowID) const;
    /// Captures those that have no fresh picture, so that they are there when a popup opens.
    void prefetch(const std::vector<WindowID>&);

private:
    /// Answers of the platform may come when the service is gone: they hold this weakly.
    std::shared_ptr<ThumbnailCaptures> m_captures;
};

}
