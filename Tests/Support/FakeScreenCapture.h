#pragma once

#include <functional>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel::test {

class FakeDesktop;

/// A picture that tells what it shows.
struct FakePicture final : PlatformImage {
    FakePicture(WindowID window_, Instant at_) : window(window_), at(at_) { }

    WindowID window;
    Instant at;
};

/// Captures of what is on the desktop, answered as badly as real systems do.
class FakeScreenCapture final : public ScreenCapture {
public:
    enum class Answers { once, twice, never, withFailure };

    explicit FakeScreenCapture(FakeDesktop& desktop) : m_desktop(desktop) { }

    bool preflightAccess() const override { return m_isAllowed; }
    bool requestAccess() override
    {
        ++m_requests;
        return m_isAllowed;
    }
    void getShareableContent(ContentHandler) override;
    void captureImage(const ShareableWindow&, const CaptureConfiguration&, PictureHandler) override;
    std::optional<Subscription> watch(WindowID, std::function<void()> onDrawn) override;

    // Knobs. Without a delay the answer comes inside the call.
    /// Whether it says which windows drew something, as the Mac does not.
    void setTellsOfDrawing(bool value) { m_tellsOfDrawing = value; }
    void windowDraws(WindowID);
    void setAllowed(bool value) { m_isAllowed = value; }
    void setContent(Answers answers, Duration delay = {}) { m_content = {answers, delay}; }
    void setCaptures(Answers answers, Duration delay = {}) { m_captures = {answers, delay}; }
    /// For pictures that a real canvas can draw.
    std::function<Image(WindowID, const CaptureConfiguration&)> makePicture;

    // What the program did.
    struct Captured {
        WindowID window{};
        CaptureConfiguration configuration;
    };
    int requests() const { return m_requests; }
    int contentRequests() const { return m_contentRequests; }
    std::vector<WindowID> watchedWindows() const;
    const std::vector<Captured>& captured() const { return m_captured; }
    std::vector<WindowID> capturedWindows() const;

private:
    struct Manner {
        Answers answers = Answers::once;
        Duration delay{};
    };

    struct Watch {
        WindowID window{};
        std::function<void()> onDrawn;
        bool hasTold = false; ///< since the last capture
    };

    void answer(const Manner&, const std::function<void(bool succeeded)>&);
    std::vector<std::shared_ptr<Watch>> watches(WindowID) const;

    FakeDesktop& m_desktop;
    bool m_isAllowed = true;
    int m_requests = 0;
    int m_contentRequests = 0;
    Manner m_content;
    Manner m_captures;
    std::vector<Captured> m_captured;
    std::vector<WorkItem> m_late;
    bool m_tellsOfDrawing = true;
    std::vector<std::weak_ptr<Watch>> m_watches;
};

}
