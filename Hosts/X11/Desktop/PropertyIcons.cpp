#include "Hosts/X11/Desktop/PropertyIcons.h"

#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/Clients.h"
#include "Hosts/X11/Desktop/RequestBatch.h"

namespace quorvel::xdg::x11 {

PropertyIcons::PropertyIcons(Connection& connection, Clients& clients, Icons& icons)
    : m_connection(connection)
    , m_clients(clients)
    , m_icons(icons)
{
}

Image PropertyIcons::of(WindowID window)
{
    auto* client = m_clients.find(window);
    if (!client)
        return nullptr;
    std::vector<IconPixels> pixels;
    RequestBatch batch{m_connection.raw()};
    batch.property(client->window, m_connection.atoms().netWmIcon, limits::icons,
        [&](const RawProperty& raw) { pixels = decodeIcons(raw); });
    batch.finish();
    return pixels.empty() ? nullptr : m_icons.fromPixels(std::move(pixels));
}

}
