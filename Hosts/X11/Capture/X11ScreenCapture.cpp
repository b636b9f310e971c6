#include "Hosts/X11/Capture/X11ScreenCapture.h"

#include <utility>

namespace quorvel::xdg::x11 {

namespace {

struct CapturableWindow final : CaptureNative {
    explicit CapturableWindow(xcb_window_t client_) : client(client_) { }

    xcb_window_t client;
};

}

X11ScreenCapture::X11ScreenCapture(const SharedModel& model, Dispatch& dispatch)
    : m_model(model)
    , m_queue(dispatch.makeSerialQueue("com.quorvel.capture", QualityOfService::userInitiated))
{
    m_worker = std::make_unique<CaptureWorker>(*m_queue);
}

void X11ScreenCapture::getShareableContent(ContentHandler handler)
{
    auto content = std::make_shared<ShareableContent>();
    m_model.read([&](const DesktopModel& model) {
        for (auto& [id, window] : model.windows) {
            if (window.native != XCB_WINDOW_NONE)
                content->windows.push_back(
                    {id, window.frame, std::make_shared<CapturableWindow>(window.native)});
        }
    });
    handler(std::move(content));
}

void X11ScreenCapture::captureImage(const ShareableWindow& window,
    const CaptureConfiguration& configuration, PictureHandler handler)
{
    const auto* native = dynamic_cast<const CapturableWindow*>(window.native.get());
    if (!native)
        return handler({});
    m_queue->async([this, client = native->client, configuration, handler = std::move(handler)] {
        m_worker->capture(client, configuration, handler);
    });
}

}
