#include "Quorvel/Core/ThumbnailFollower.h"

#include <algorithm>
#include <utility>

namespace quorvel {

ThumbnailFollower::ThumbnailFollower(std::shared_ptr<ThumbnailCaptures> captures,
    const std::vector<WindowID>& windows, PictureSize size, OnPicture onPicture)
    : m_captures(std::move(captures))
    , m_size(size)
    , m_onPicture(std::move(onPicture))
{
    const auto first = m_captures->dispatch().now() + kSettleTime;
    for (auto id : windows) {
        m_windows.push_back(
            {id, m_captures->screenCapture().watch(id, [this, id] { windowDrew(id); }), first});
    }
    schedule();
}

void ThumbnailFollower::windowDrew(WindowID id)
{
    auto* window = followed(id);
    if (!window || window->due)
        return;
    window->due = window->lastCapture + kShortestInterval;
    schedule();
}

ThumbnailFollower::Followed* ThumbnailFollower::followed(WindowID id)
{
    const auto found = std::ranges::find(m_windows, id, &Followed::id);
    return found == m_windows.end() ? nullptr : &*found;
}

ThumbnailFollower::Followed* ThumbnailFollower::nextDue()
{
    Followed* next = nullptr;
    for (auto& window : m_windows) {
        if (window.due && (!next || *window.due < *next->due))
            next = &window;
    }
    return next;
}

void ThumbnailFollower::schedule()
{
    const auto* next = nextDue();
    if (!next || m_capturing)
        return;
    auto& dispatch = m_captures->dispatch();
    const auto wait = std::max(*next->due, m_restsUntil) - dispatch.now();
    m_next = dispatch.main().after(std::max(wait, Duration::zero()), [this] { captureNext(); });
}

void ThumbnailFollower::captureNext()
{
    auto* window = nextDue();
    if (!window)
        return;
    auto& dispatch = m_captures->dispatch();
    m_capturing = window->id;
    const auto number = ++m_captureNumber;
    window->lastCapture = dispatch.now();
    window->due.reset();
    m_timeout = dispatch.main().after(
        kCaptureTimeout, [this, number] { captureEnded(number, std::nullopt, {}); });
    m_captures->captureAnew(window->id, m_size,
        [weak = m_weak.reference(), &main = dispatch.main(), number](
            std::optional<WindowPicture> picture, const Rect& frame) {
            main.async([weak, number, picture = std::move(picture), frame] {
                if (auto* self = weak.get())
                    self->captureEnded(number, picture, frame);
            });
        });
}

void ThumbnailFollower::captureEnded(
    std::uint64_t number, const std::optional<WindowPicture>& picture, const Rect& frame)
{
    if (!m_capturing || number != m_captureNumber)
        return; // it came too late
    m_timeout = {};
    const auto now = m_captures->dispatch().now();
    const auto id = *std::exchange(m_capturing, std::nullopt);
    auto& window = *followed(id);
    const auto took = now - window.lastCapture;
    const auto most = std::chrono::duration_cast<Duration>(window.cost * kDearer);
    window.cost = window.cost > Duration::zero() ? std::min(took, most) : took;
    m_restsUntil = now + window.cost * kRest;
    if (!window.watch)
        window.due = now + kPollInterval;
    schedule();
    if (picture)
        m_onPicture(id, *picture, frame);
}

}
