#include "Hosts/X11/Capture/PixmapReader.h"

#include <algorithm>

#include <sys/ipc.h>
#include <sys/shm.h>

#include "Hosts/X11/Capture/CaptureConnection.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kAllPlanes = 0xFFFFFFFF;

}

PixmapReader::PixmapReader(CaptureConnection& connection) : m_connection(connection)
{
    const auto* extension = xcb_get_extension_data(connection.raw(), &xcb_shm_id);
    if (extension && extension->present)
        shareMemory();
}

PixmapReader::~PixmapReader()
{
    if (m_segment)
        xcb_shm_detach(m_connection.raw(), m_segment);
    if (m_memory)
        shmdt(m_memory);
}

void PixmapReader::shareMemory()
{
    const int memory = shmget(IPC_PRIVATE, kBandBytes, IPC_CREAT | 0600);
    if (memory < 0)
        return;
    if (auto* data = shmat(memory, nullptr, 0); data != reinterpret_cast<void*>(-1)) {
        m_memory = data;
        const auto segment = xcb_generate_id(m_connection.raw());
        // A server on the other end of a network has the extension too, but not our memory.
        if (m_connection.succeeds(xcb_shm_attach_checked(
                m_connection.raw(), segment, static_cast<std::uint32_t>(memory), false)))
            m_segment = segment;
    }
    // Marked now, it goes with the last of us two, even if this program is killed.
    shmctl(memory, IPC_RMID, nullptr);
}

std::size_t PixmapReader::bytesOf(const Area& area) const
{
    return m_layout.rowBytes(area.width) * static_cast<std::size_t>(area.height);
}

void PixmapReader::giveRows(const void* data, const Area& area, const OnRow& onRow)
{
    const auto width = static_cast<std::size_t>(area.width);
    const std::span bytes{static_cast<const std::byte*>(data), bytesOf(area)};
    const auto rowBytes = m_layout.rowBytes(area.width);
    m_row.resize(m_layout.isUsual() ? 0 : width);
    for (std::size_t at = 0; at < bytes.size(); at += rowBytes) {
        const auto row = bytes.subspan(at, rowBytes);
        if (m_layout.isUsual()) {
            onRow({reinterpret_cast<const std::uint32_t*>(row.data()), width});
        } else {
            m_layout.toOpaque(row, m_row);
            onRow(m_row);
        }
    }
}

bool PixmapReader::read(
    xcb_pixmap_t pixmap, const Area& area, const PixelLayout& layout, const OnRow& onRow)
{
    m_layout = layout;
    const auto rowBytes = layout.rowBytes(area.width);
    const int rows = std::max(1, static_cast<int>(kBandBytes / rowBytes));
    for (int y = 0; y < area.height; y += rows) {
        const Area band{area.x, area.y + y, area.width, std::min(rows, area.height - y)};
        if (!readBand(pixmap, band, onRow))
            return false;
    }
    return true;
}

bool PixmapReader::readBand(xcb_pixmap_t pixmap, const Area& band, const OnRow& onRow)
{
    if (m_segment)
        return readShared(pixmap, band, onRow);
    auto* connection = m_connection.raw();
    const Reply<xcb_get_image_reply_t> image{xcb_get_image_reply(connection,
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap,
            static_cast<std::int16_t>(band.x), static_cast<std::int16_t>(band.y),
            static_cast<std::uint16_t>(band.width), static_cast<std::uint16_t>(band.height),
            kAllPlanes),
        nullptr)};
    if (!image || static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < bytesOf(band))
        return false;
    giveRows(xcb_get_image_data(image.get()), band, onRow);
    return true;
}

bool PixmapReader::readShared(xcb_pixmap_t pixmap, const Area& band, const OnRow& onRow)
{
    auto* connection = m_connection.raw();
    const Reply<xcb_shm_get_image_reply_t> image{xcb_shm_get_image_reply(connection,
        xcb_shm_get_image(connection, pixmap, static_cast<std::int16_t>(band.x),
            static_cast<std::int16_t>(band.y), static_cast<std::uint16_t>(band.width),
            static_cast<std::uint16_t>(band.height), kAllPlanes, XCB_IMAGE_FORMAT_Z_PIXMAP,
            m_segment, 0),
        nullptr)};
    if (!image || image->size < bytesOf(band))
        return false;
    giveRows(m_memory, band, onRow);
    return true;
}

}
