#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Core/ThumbnailCaptures.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel {

/// Captures windows again and again while it exists: those that drew something where the system
/// tells, else all of them every second. Main thread.
///
/// It captures one window at a time, the one that has waited longest, and then rests for several
/// times as long as that takes. So what it costs is bounded by a share of the time, whatever the
/// machine, and however many and large the windows are: more windows are captured less often. A
/// rate for each window would be too slow for a small one and too much for eight large ones.
class ThumbnailFollower {
public:
    /// Between two pictures of one window.
    static constexpr Duration kShortestInterval = seconds(0.1);
    /// The same where the system does not tell what was drawn.
    static constexpr Duration kPollInterval = seconds(1);
    /// Before the first picture: until then a covered window may have to draw itself anew.
    static constexpr Duration kSettleTime = seconds(0.1);
    /// How many times as long as a capture the rest is that follows it.
    static constexpr int kRest = 14;
    /// Where other programs keep the machine busy, a capture takes longer than it costs: it counts
    /// for at most so many times the one before.
    static constexpr double kDearer = 1.25;
    /// A capture that is not answered in this time has failed.
    static constexpr Duration kCaptureTimeout = seconds(2);

    using OnPicture = std::function<void(WindowID, const WindowPicture&, const Rect& frame)>;

    ThumbnailFollower(
        std::shared_ptr<ThumbnailCaptures>, const std::vector<WindowID>&, PictureSize, OnPicture);

private:
    struct Followed {
        WindowID id{};
        std::optional<Subscription> watch;
        std::optional<Instant> due; ///< absent: nothing has changed
        Instant lastCapture{};
        Duration cost{}; ///< what one capture takes; zero: not known yet
    };

    void windowDrew(WindowID);
    void schedule();
    void captureNext();
    void captureEnded(std::uint64_t number, const std::optional<WindowPicture>&, const Rect& frame);
    Followed* followed(WindowID);
    Followed* nextDue();

    std::shared_ptr<ThumbnailCaptures> m_captures;
    const PictureSize m_size;
    const OnPicture m_onPicture;
    std::vector<Followed> m_windows;
    std::optional<WindowID> m_capturing;
    std::uint64_t m_captureNumber = 0; ///< of the one under way or the last
    Instant m_restsUntil{};
    WorkItem m_next;
    WorkItem m_timeout;
    WeakOwner<ThumbnailFollower> m_weak{*this};
};

}
