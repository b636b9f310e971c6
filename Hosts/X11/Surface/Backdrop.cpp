#include "Hosts/X11/Surface/Backdrop.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

/// How far from a pixel the one beside the picture may be.
constexpr int kReach = 4;
/// More than edges have: the picture is transparent as a whole.
constexpr std::size_t kMostSoftPixels = 20000;

std::uint32_t* pixelRow(cairo_surface_t* surface, int y)
{
    auto offset = static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface);
    return reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface) + offset);
}

bool isThere(cairo_surface_t* picture, int x, int y)
{
    return x >= 0 && y >= 0 && x < cairo_image_surface_get_width(picture)
        && y < cairo_image_surface_get_height(picture)
        && pixelRow(picture, y)[x] >> 24 >= Backdrop::kLeastAlpha;
}

/// A premultiplied colour over an opaque one.
std::uint32_t mixed(std::uint32_t color, std::uint32_t below)
{
    std::uint32_t rest = 255 - (color >> 24);
    auto channel = [&](int shift) {
        auto value = (color >> shift & 0xff) + ((below >> shift & 0xff) * rest + 127) / 255;
        return std::min<std::uint32_t>(value, 255) << shift;
    };
    return 0xff000000 | channel(16) | channel(8) | channel(0);
}

/// A part of the screen, as far as there is one.
class ScreenPart {
public:
    ScreenPart(Connection& connection, const Rect& place, Size screen)
        : m_connection(connection)
        , m_place(place.intersected(Rect::from({}, screen)))
    {
        if (m_place.isEmpty())
            return;
        m_cookie = xcb_get_image(connection.raw(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(),
            static_cast<std::int16_t>(m_place.x), static_cast<std::int16_t>(m_place.y),
            static_cast<std::uint16_t>(m_place.width), static_cast<std::uint16_t>(m_place.height),
            ~0U);
    }

    void wait(const PixelLayout& layout)
    {
        if (!m_cookie)
            return;
        auto image = owned(xcb_get_image_reply(m_connection.raw(), *m_cookie, nullptr));
        auto width = static_cast<int>(m_place.width);
        auto stride = layout.rowBytes(width);
        auto rows = static_cast<std::size_t>(m_place.height);
        if (!image || std::cmp_less(xcb_get_image_data_length(image.get()), stride * rows))
            return;
        m_pixels.resize(rows * static_cast<std::size_t>(width));
        auto* data = reinterpret_cast<const std::byte*>(xcb_get_image_data(image.get()));
        for (std::size_t row = 0; row < rows; ++row)
            layout.toOpaque({data + row * stride, stride},
                std::span{m_pixels}.subspan(
                    row * static_cast<std::size_t>(width), static_cast<std::size_t>(width)));
    }

    /// A pixel of the screen; absent if it was not read.
    std::optional<std::uint32_t> at(int x, int y) const
    {
        if (m_pixels.empty()
            || !m_place.contains(Point{static_cast<double>(x), static_cast<double>(y)}))
            return {};
        auto column = static_cast<std::size_t>(x - static_cast<int>(m_place.x));
        auto row = static_cast<std::size_t>(y - static_cast<int>(m_place.y));
        return m_pixels[row * static_cast<std::size_t>(m_place.width) + column];
    }

private:
    Connection& m_connection;
    Rect m_place;
    std::optional<xcb_get_image_cookie_t> m_cookie;
    std::vector<std::uint32_t> m_pixels;
};

/// From the nearest to the farthest.
std::vector<std::pair<int, int>> nearbyOffsets()
{
    std::vector<std::pair<int, int>> offsets;
    for (int y = -kReach; y <= kReach; ++y) {
        for (int x = -kReach; x <= kReach; ++x)
            offsets.emplace_back(x, y);
    }
    std::ranges::stable_sort(offsets, {},
        [](auto& offset) { return offset.first * offset.first + offset.second * offset.second; });
    return offsets;
}

}

/// One rectangle in each quarter of the picture: they are at its corners and its edges.
void Backdrop::setPicture(cairo_surface_t* picture)
{
    cairo_surface_flush(picture);
    auto before = std::exchange(m_soft, {});
    int width = cairo_image_surface_get_width(picture);
    int height = cairo_image_surface_get_height(picture);
    std::array<Rect, 4> quarters{};
    for (int y = 0; y < height; ++y) {
        auto* row = pixelRow(picture, y);
        for (int x = 0; x < width; ++x) {
            auto alpha = row[x] >> 24;
            if (alpha < kLeastAlpha || alpha == 255)
                continue;
            m_soft.push_back({x, y, row[x], 0});
            auto& quarter = quarters[(y < height / 2 ? 0U : 2U) + (x < width / 2 ? 0U : 1U)];
            quarter = quarter.united(Rect{double(x), double(y), 1, 1});
        }
    }
    m_parts.clear();
    if (m_soft.size() > kMostSoftPixels)
        return m_soft.clear();
    std::ranges::copy_if(
        quarters, std::back_inserter(m_parts), [](auto& part) { return !part.isEmpty(); });
    // The same pixels keep their blend, which is compared with the next.
    if (before.size() == m_soft.size()) {
        for (std::size_t i = 0; i < before.size(); ++i)
            m_soft[i].blended = before[i].blended;
    }
}

bool Backdrop::read(cairo_surface_t* picture, const Rect& frame)
{
    bool wasKnown = std::exchange(m_isKnown, false);
    if (m_soft.empty())
        return wasKnown;
    bool isOther = mix(picture, frame);
    return isOther || wasKnown != m_isKnown;
}

bool Backdrop::mix(cairo_surface_t* picture, const Rect& frame)
{
    static const auto offsets = nearbyOffsets();
    auto& screen = m_connection.screen();
    auto layout = pixelLayout(m_connection.raw(), screen, screen.root_depth, screen.root_visual);
    auto* raw = m_connection.raw();
    auto root
        = owned(xcb_get_geometry_reply(raw, xcb_get_geometry(raw, m_connection.root()), nullptr));
    if (!layout.isReadable() || !root)
        return false;
    std::vector<ScreenPart> screenParts;
    screenParts.reserve(m_parts.size());
    for (auto& part : m_parts)
        screenParts.emplace_back(m_connection,
            part.inset(-kReach, -kReach).translated(frame.x, frame.y),
            Size{double(root->width), double(root->height)});
    for (auto& part : screenParts)
        part.wait(layout);
    bool isOther = false;
    for (auto& pixel : m_soft) {
        std::optional<std::uint32_t> below;
        for (auto [dx, dy] : offsets) {
            if (isThere(picture, pixel.x + dx, pixel.y + dy))
                continue;
            int x = pixel.x + dx + static_cast<int>(frame.x);
            int y = pixel.y + dy + static_cast<int>(frame.y);
            for (auto& part : screenParts)
                below = below ? below : part.at(x, y);
            if (below)
                break;
        }
        if (!below)
            return true;
        auto now = mixed(pixel.color, *below);
        isOther |= std::exchange(pixel.blended, now) != now;
    }
    m_isKnown = true;
    return isOther;
}

void Backdrop::blend(cairo_surface_t* target) const
{
    cairo_surface_flush(target);
    for (auto& pixel : m_soft)
        pixelRow(target, pixel.y)[pixel.x] = pixel.blended;
    cairo_surface_mark_dirty(target);
}

}
