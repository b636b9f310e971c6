#include "Hosts/X11/Capture/X11ScreenCapture.h"

#include <utility>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

namespace {

struct CapturableWindow final : CaptureNative {
    explicit CapturableWindow(xcb_window_t client_) : client(client_) { }

    xcb_window_t client;
};

}

X11ScreenCapture::X11ScreenCapture(
    const SharedModel& model, Dispatch& dispatch, Connection* connection)
    : m_model(model)
    , m_queue(dispatch.makeSerialQueue("com.quorvel.capture", QualityOfService::userInitiated))
{
    m_worker = std::make_unique<CaptureWorker>(*m_queue);
    if (connection && DrawingWatch::hasDamage(connection->raw()))
        m_watch = std::make_unique<DrawingWatch>(*connection,
            DrawingWatch::Holder{
                [this](xcb_window_t client) {
                    m_queue->async([worker = m_worker.get(), client] { worker->hold(client); });
                },
                [this](xcb_window_t client) {
                    m_queue->async([worker = m_worker.get(), client] { worker->letGo(client); });
                }});
}

X11ScreenCapture::~X11ScreenCapture() = default;

xcb_window_t X11ScreenCapture::nativeOf(WindowID id) const
{
    return m_model.read([id](const DesktopModel& model) {
        const auto* window = model.window(id);
        return window ? xcb_window_t{window->native} : xcb_window_t{XCB_WINDOW_NONE};
    });
}

std::optional<Subscription> X11ScreenCapture::watch(WindowID id, std::function<void()> onDrawn)
{
    const auto client = nativeOf(id);
    if (!m_watch || client == XCB_WINDOW_NONE)
        return {};
    return m_watch->watch(client, std::move(onDrawn));
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
    const CaptureWorker::Target target{
        native->client, m_watch ? m_watch->damageOf(native->client) : xcb_damage_damage_t{}};
    m_queue->async([this, target, configuration, handler = std::move(handler)] {
        m_worker->capture(target, configuration, handler);
    });
}

}
