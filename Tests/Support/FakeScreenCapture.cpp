#include "Tests/Support/FakeScreenCapture.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

void FakeScreenCapture::answer(
    const Manner& manner, const std::function<void(bool succeeded)>& handler)
{
    if (manner.answers == Answers::never)
        return;
    auto give = [handler, answers = manner.answers] {
        handler(answers != Answers::withFailure);
        if (answers == Answers::twice)
            handler(true);
    };
    if (manner.delay == Duration::zero())
        give();
    else
        m_late.push_back(m_desktop.dispatch().world().after(manner.delay, give));
}

void FakeScreenCapture::getShareableContent(ContentHandler handler)
{
    ++m_contentRequests;
    auto content = std::make_shared<ShareableContent>();
    for (auto& [id, window] : m_desktop.model().windows)
        content->windows.push_back({id, window->frame, nullptr});
    answer(m_content, [handler = std::move(handler), content, this](bool succeeded) {
        handler(succeeded && m_isAllowed ? content : nullptr);
    });
}

void FakeScreenCapture::captureImage(const ShareableWindow& window,
    const CaptureConfiguration& configuration, PictureHandler handler)
{
    m_captured.push_back({window.windowID, configuration});
    for (auto& watch : watches(window.windowID))
        watch->hasTold = false;
    answer(m_captures,
        [this, id = window.windowID, configuration, handler = std::move(handler)](bool succeeded) {
            if (!succeeded || !m_isAllowed || !m_desktop.model().window(id))
                return handler({});
            auto picture = makePicture
                ? makePicture(id, configuration)
                : std::make_shared<FakePicture>(id, m_desktop.dispatch().now());
            handler(WindowPicture{
                std::move(picture), {double(configuration.width), double(configuration.height)}});
        });
}

std::optional<Subscription> FakeScreenCapture::watch(WindowID id, std::function<void()> onDrawn)
{
    if (!m_tellsOfDrawing)
        return {};
    auto watch = std::make_shared<Watch>(Watch{id, std::move(onDrawn)});
    m_watches.push_back(watch);
    return Subscription{std::move(watch)};
}

std::vector<std::shared_ptr<FakeScreenCapture::Watch>> FakeScreenCapture::watches(WindowID id) const
{
    std::vector<std::shared_ptr<Watch>> found;
    for (auto& weak : m_watches) {
        auto watch = weak.lock();
        if (watch && watch->window == id)
            found.push_back(std::move(watch));
    }
    return found;
}

void FakeScreenCapture::windowDraws(WindowID id)
{
    for (auto& watch : watches(id)) {
        if (!std::exchange(watch->hasTold, true))
            watch->onDrawn();
    }
}

std::vector<WindowID> FakeScreenCapture::watchedWindows() const
{
    std::vector<WindowID> windows;
    for (auto& weak : m_watches) {
        if (auto watch = weak.lock())
            windows.push_back(watch->window);
    }
    return windows;
}

std::vector<WindowID> FakeScreenCapture::capturedWindows() const
{
    std::vector<WindowID> windows;
    std::ranges::transform(m_captured, std::back_inserter(windows), &Captured::window);
    return windows;
}

}
