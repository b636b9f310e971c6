#include "Quorvel/Core/OrderFile.h"

#include <utility>

#include <fmt/format.h>

#include "Quorvel/Core/RememberedOrderCoding.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Files.h"

namespace quorvel {

namespace {

std::string orderFileIn(const Files& files)
{
    auto state = files.stateFolder();
    return state ? *state + "/Quorvel/order.json" : std::string{};
}

std::error_code writeOrder(Files& files, const std::string& path, const RememberedOrder& order)
{
    if (auto error = files.createFolder(path.substr(0, path.find_last_of('/'))))
        return error;
    auto error = files.revise(path, OrderLimits::fileBytes,
        [&](const std::optional<std::string>& file) -> std::optional<std::string> {
            auto bytes = withOrder(file, order);
            return bytes == file ? std::nullopt : std::optional{std::move(bytes)};
        });
    return error == std::errc::operation_canceled ? std::error_code{} : error;
}

}

OrderFile::OrderFile(Files& files, Application& application, Dispatch& dispatch,
    std::function<RememberedOrder()> makeOrder)
    : m_files(files)
    , m_application(application)
    , m_dispatch(dispatch)
    , m_makeOrder(std::move(makeOrder))
    , m_path(orderFileIn(files))
    , m_willTerminate(application.willTerminate.subscribe([this] { writeLastChange(); }))
{
}

OrderFile::~OrderFile() = default;

std::optional<RememberedOrder> OrderFile::read(const std::string& session)
{
    if (m_path.empty() || !m_files.exists(m_path))
        return std::nullopt;
    auto bytes = m_files.read(m_path, OrderLimits::fileBytes);
    auto orders = bytes ? decodeOrders(*bytes) : std::nullopt;
    if (!orders) {
        m_application.warn(m_path + " cannot be used; chips stand in the order of their windows");
        return std::nullopt;
    }
    return orderFor(session, std::move(*orders));
}

void OrderFile::writeSoon()
{
    if (!m_path.empty() && !m_writing.isPending())
        m_writing = m_dispatch.main().after(kWriteDelay, [this] { write(); });
}

void OrderFile::write()
{
    if (m_queue)
        return writeSoon(); // a slow disk is still at the last change
    m_queue = m_dispatch.makeSerialQueue("com.quorvel.order", QualityOfService::utility);
    m_queue->async([&files = m_files, &main = m_dispatch.main(), path = m_path,
                       order = m_makeOrder(), weak = m_weak.reference()] {
        auto error = writeOrder(files, path, order);
        main.async([weak, error] {
            if (auto* self = weak.get())
                self->didWrite(error);
        });
    });
}

void OrderFile::writeLastChange()
{
    const bool isBeingWritten = static_cast<bool>(m_queue);
    if (isBeingWritten)
        m_queue->sync([] { }); // it must not come after this, and nobody hears any more how it went
    m_queue.reset();
    if (!isBeingWritten && !m_writing.isPending())
        return;
    m_writing = {};
    didWrite(writeOrder(m_files, m_path, m_makeOrder()));
}

/// A thread that sleeps for hours would hold memory for nothing.
void OrderFile::didWrite(std::error_code error)
{
    m_queue.reset();
    if (error && !m_isFailureTold)
        m_application.warn(fmt::format(
            "{} cannot be written ({}); the order of the chips will not outlast the bar", m_path,
            error.message()));
    m_isFailureTold = static_cast<bool>(error);
}

}
