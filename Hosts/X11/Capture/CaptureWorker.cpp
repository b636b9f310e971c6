#include "Hosts/X11/Capture/CaptureWorker.h"

#include <iterator>
#include <utility>

namespace quorvel::xdg::x11 {

void CaptureWorker::capture(
    Target target, const CaptureConfiguration& configuration, ScreenCapture::PictureHandler handler)
{
    if (!connect())
        return handler({});
    keepConnected();
    m_connection->dropEvents();
    m_waiting.push_back({target, configuration, std::move(handler), nullptr, {}});
    beginWaiting();
}

void CaptureWorker::hold(xcb_window_t client)
{
    if (!connect())
        return;
    if (const auto topLevel = m_connection->topLevelOf(client); topLevel != XCB_WINDOW_NONE)
        m_held[client] = std::make_unique<WindowRedirection>(*m_connection, topLevel);
    keepConnected();
}

void CaptureWorker::letGo(xcb_window_t client)
{
    m_held.erase(client);
    if (m_connection)
        keepConnected();
}

bool CaptureWorker::connect()
{
    if (m_connection)
        return true;
    m_connection = CaptureConnection::open();
    if (m_connection)
        m_reader = std::make_unique<PixmapReader>(*m_connection);
    return m_connection != nullptr;
}

void CaptureWorker::keepConnected()
{
    m_disconnect = {};
    if (!m_held.empty())
        return;
    m_disconnect = m_queue.after(kIdleTime, [this] {
        m_reader.reset();
        m_connection.reset();
    });
}

void CaptureWorker::beginWaiting()
{
    while (!m_waiting.empty() && m_repainting.size() < kRepaintingAtOnce) {
        auto job = std::move(m_waiting.front());
        m_waiting.pop_front();
        begin(std::move(job));
    }
}

void CaptureWorker::begin(Job job)
{
    job.capture
        = std::make_unique<WindowCapture>(*m_connection, job.target.client, job.target.damage);
    const auto progress = job.capture->begin();
    if (progress == WindowCapture::Progress::failed)
        return job.handler({});
    if (progress == WindowCapture::Progress::ready)
        return finish(std::move(job));
    const auto at = m_repainting.insert(m_repainting.end(), std::move(job));
    at->repainted = m_queue.after(kRepaintTime, [this, at] {
        auto repainted = std::move(*at);
        m_repainting.erase(at);
        finish(std::move(repainted));
        beginWaiting();
    });
}

void CaptureWorker::finish(Job job)
{
    auto picture = job.capture->finish(*m_reader, job.configuration);
    job.capture.reset();
    keepConnected();
    job.handler(std::move(picture));
}

}
