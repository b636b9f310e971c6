#include "Hosts/X11/Surface/SharedPixels.h"

#include <utility>

#include <sys/ipc.h>
#include <sys/shm.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

std::unique_ptr<SharedPixels> SharedPixels::create(Connection& connection, int width, int height)
{
    auto* extension = xcb_get_extension_data(connection.raw(), &xcb_shm_id);
    if (!extension || !extension->present)
        return nullptr;
    auto size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    int memory = shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
    if (memory < 0)
        return nullptr;

    std::unique_ptr<SharedPixels> pixels;
    if (auto* data = shmat(memory, nullptr, 0); data != reinterpret_cast<void*>(-1)) {
        pixels.reset(new SharedPixels{connection, width, height, static_cast<std::uint8_t*>(data)});
        pixels->attach(memory);
    }
    // Marked now, it goes with the last of us two, even if this program is killed. Linux lets the
    // server have it all the same.
    shmctl(memory, IPC_RMID, nullptr);
    return pixels;
}

SharedPixels::SharedPixels(Connection& connection, int width, int height, std::uint8_t* data)
    : m_connection(connection)
    , m_width(width)
    , m_height(height)
    , m_data(data)
{
}

SharedPixels::~SharedPixels()
{
    if (isAttached())
        xcb_shm_detach(m_connection.raw(), m_segment);
    shmdt(m_data);
}

/// A server on the other end of a network has the extension too, but not our memory.
void SharedPixels::attach(int memory)
{
    m_segment = xcb_generate_id(m_connection.raw());
    m_attaching = xcb_shm_attach_checked(
        m_connection.raw(), m_segment, static_cast<std::uint32_t>(memory), true);
}

bool SharedPixels::isAttached()
{
    if (m_attaching) {
        auto error = owned(
            xcb_request_check(m_connection.raw(), *std::exchange(m_attaching, std::nullopt)));
        m_isAttached = !error && !xcb_connection_has_error(m_connection.raw());
    }
    return m_isAttached;
}

}
