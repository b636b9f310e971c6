#include "Quorvel/Core/ThumbnailService.h"

#include <utility>

#include "Quorvel/Core/ThumbnailCaptures.h"
#include "Quorvel/Core/ThumbnailFollower.h"

namespace quorvel {

ThumbnailService::ThumbnailService(
    Dispatch& dispatch, ScreenCapture& screenCapture, const Displays& displays)
    : m_captures(std::make_shared<ThumbnailCaptures>(dispatch, screenCapture, displays))
{
}

ThumbnailService::~ThumbnailService() = default;

Subscription ThumbnailService::thumbnail(WindowID id, Completion completion)
{
    auto asker = std::make_shared<Completion>(std::move(completion));
    const std::weak_ptr<Completion> weak = asker;
    m_captures->thumbnail(
        id, [weak] { return !weak.expired(); },
        [weak, &main = m_captures->dispatch().main()](std::optional<WindowPicture> picture) {
            main.async([weak, picture = std::move(picture)] {
                if (auto asking = weak.lock())
                    (*asking)(picture);
            });
        });
    return Subscription{std::move(asker)};
}

std::optional<WindowPicture> ThumbnailService::cached(WindowID id) const
{
    return m_captures->staleCachedImage(id);
}

void ThumbnailService::prefetch(const std::vector<WindowID>& ids)
{
    m_captures->prefetch(ids);
}

void ThumbnailService::keepIf(const std::function<bool(WindowID)>& isThere)
{
    m_captures->keepIf(isThere);
}

Subscription ThumbnailService::follow(
    const std::vector<WindowID>& windows, PictureSize size, OnPicture onPicture)
{
    return Subscription{
        std::make_shared<ThumbnailFollower>(m_captures, windows, size, std::move(onPicture))};
}

}
