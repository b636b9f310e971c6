#include "Hosts/X11/Desktop/PropertyIcons.h"

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/Clients.h"
#include "Hosts/X11/Desktop/PixmapIcon.h"

namespace quorvel::xdg::x11 {

namespace {

/// Absent where bits and bytes go in different directions.
std::optional<BitmapLayout> bitmapLayout(const Connection& connection)
{
    const auto* setup = xcb_get_setup(connection.raw());
    const bool startsAtLowestBit = setup->bitmap_format_bit_order == XCB_IMAGE_ORDER_LSB_FIRST;
    const bool startsAtLowestByte = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    if (startsAtLowestBit != startsAtLowestByte)
        return std::nullopt;
    return BitmapLayout{startsAtLowestBit, setup->bitmap_format_scanline_pad};
}

bool isSane(const std::optional<DrawableSize>& size)
{
    const auto side = static_cast<int>(limits::iconSide);
    return size && size->width <= side && size->height <= side;
}

}

PropertyIcons::PropertyIcons(Connection& connection, Clients& clients)
    : m_connection(connection)
    , m_clients(clients)
{
}

/// One round trip, and a second one for windows that have a picture in their hints alone.
std::vector<IconPixels> PropertyIcons::of(WindowID window)
{
    auto* client = m_clients.find(window);
    if (!client)
        return {};
    std::vector<IconPixels> pixels;
    Named picture{client->hints.iconPixmap};
    Named mask{client->hints.iconMask};
    RequestBatch batch{m_connection.raw()};
    batch.property(client->window, m_connection.atoms().netWmIcon, limits::icons,
        [&](const RawProperty& raw) { pixels = decodeIcons(raw); });
    for (auto* named : {&picture, &mask}) {
        if (named->pixmap)
            batch.drawable(named->pixmap, [named](auto size) { named->size = size; });
    }
    batch.finish();
    return pixels.empty() ? fromPixmaps(picture, mask) : pixels;
}

std::vector<IconPixels> PropertyIcons::fromPixmaps(const Named& picture, const Named& mask) const
{
    const auto bitmaps = bitmapLayout(m_connection);
    if (!bitmaps || !isSane(picture.size))
        return {};
    std::vector<std::byte> pictureData;
    std::vector<std::byte> maskData;
    RequestBatch batch{m_connection.raw()};
    auto ask = [&batch](const Named& named, std::vector<std::byte>& into) {
        batch.pixels(named.pixmap, *named.size,
            [&into](auto data) { into.assign(data.begin(), data.end()); });
    };
    ask(picture, pictureData);
    if (isSane(mask.size))
        ask(mask, maskData);
    batch.finish();

    auto raw = [](const DrawableSize& size, const std::vector<std::byte>& data) {
        return RawPixmap{size.width, size.height, size.depth, data};
    };
    std::optional<RawPixmap> rawMask;
    if (!maskData.empty())
        rawMask = raw(*mask.size, maskData);
    auto& screen = m_connection.screen();
    PixelLayout layout;
    if (picture.size->depth == screen.root_depth)
        layout = pixelLayout(m_connection.raw(), screen, screen.root_depth, screen.root_visual);
    auto icon = iconFromPixmaps(raw(*picture.size, pictureData), rawMask, layout, *bitmaps);
    return icon ? std::vector{std::move(*icon)} : std::vector<IconPixels>{};
}

}
