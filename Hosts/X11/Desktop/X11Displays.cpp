#include "Hosts/X11/Desktop/X11Displays.h"

#include <algorithm>

#include "Hosts/X11/Desktop/Mirror.h"

namespace quorvel::xdg::x11 {

namespace {

/// What is left of the monitor beside a strip at each edge of the X screen. A strip that would
/// leave nothing does not concern this monitor.
Rect withoutStrut(const Rect& monitor, const Extents& strut, Size screen)
{
    auto limit = Rect{double(strut.left), double(strut.top),
        screen.width - strut.left - strut.right, screen.height - strut.top - strut.bottom};
    auto rest = monitor.intersected(limit);
    return rest.isEmpty() ? monitor : rest;
}

}

X11Displays::X11Displays(Connection& connection, Monitors& monitors, Mirror& mirror)
    : m_pointer(connection)
    , m_monitors(monitors)
    , m_mirror(mirror)
    , m_layout(makeLayout())
{
    m_monitorsChanged = monitors.changed.subscribe([this] { update(); });
    m_reservationsChanged = mirror.reservationsDidChange.subscribe([this] { update(); });
}

X11Displays::Layout X11Displays::makeLayout()
{
    Layout layout{m_monitors.list(), m_monitors.coordinates(), {}};
    auto& coordinates = layout.coordinates;
    auto bottomUp = [&](const Rect& pixels) {
        return coordinates.toPoints(pixels).flipped(coordinates.primaryHeight());
    };
    for (auto& monitor : layout.monitors)
        layout.screens.push_back({bottomUp(monitor.pixels), bottomUp(visiblePixels(monitor.pixels)),
            coordinates.scale, monitor.number});
    return layout;
}

Rect X11Displays::visiblePixels(const Rect& monitor)
{
    auto visible = monitor;
    m_mirror.clients().forEach([&](const Client& client) {
        bool isForeignDock = client.type == WindowType::dock && !m_mirror.isOwn(client.window);
        if (isForeignDock && client.place.intersects(monitor))
            visible = withoutStrut(visible, client.strut, m_monitors.screenPixels());
    });
    return visible;
}

void X11Displays::update()
{
    auto layout = makeLayout();
    bool isSame = false;
    {
        std::scoped_lock lock{m_mutex};
        isSame = layout.screens == m_layout.screens && layout.monitors == m_layout.monitors
            && layout.coordinates == m_layout.coordinates;
        m_layout = std::move(layout);
    }
    if (!isSame)
        parametersDidChange.emit();
}

std::vector<Screen> X11Displays::screens() const
{
    std::scoped_lock lock{m_mutex};
    return m_layout.screens;
}

DisplayNumber X11Displays::mainDisplay() const
{
    std::scoped_lock lock{m_mutex};
    return m_layout.monitors.empty() ? DisplayNumber{0} : m_layout.monitors.front().number;
}

std::vector<DisplayNumber> X11Displays::activeDisplays(std::size_t limit) const
{
    std::scoped_lock lock{m_mutex};
    std::vector<DisplayNumber> numbers;
    for (auto& monitor : m_layout.monitors) {
        if (numbers.size() < limit)
            numbers.push_back(monitor.number);
    }
    return numbers;
}

std::optional<std::string> X11Displays::identifier(DisplayNumber number) const
{
    std::scoped_lock lock{m_mutex};
    for (auto& monitor : m_layout.monitors) {
        if (monitor.number == number)
            return monitor.identifier;
    }
    return std::nullopt;
}

Point X11Displays::pointerLocation() const
{
    auto place = m_pointer.ask();
    std::scoped_lock lock{m_mutex};
    return place ? m_layout.coordinates.toPoints(Rect::from(*place, {})).origin() : Point{};
}

std::optional<DisplayNumber> X11Displays::displayAt(Point globalTopLeft) const
{
    std::scoped_lock lock{m_mutex};
    for (auto& monitor : m_layout.monitors) {
        if (m_layout.coordinates.toPoints(monitor.pixels).contains(globalTopLeft))
            return monitor.number;
    }
    return std::nullopt;
}

Rect X11Displays::toNative(const Rect& globalTopLeft) const
{
    std::scoped_lock lock{m_mutex};
    return m_layout.coordinates.toPixels(globalTopLeft);
}

}
