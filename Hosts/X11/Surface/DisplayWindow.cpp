#include "Hosts/X11/Surface/DisplayWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Hosts/Linux/PanelEnvironment.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/InputGrabs.h"
#include "Hosts/X11/Surface/PartPainter.h"
#include "Hosts/X11/Surface/X11Panel.h"

namespace quorvel::xdg::x11 {

namespace {

template <typename Map, typename Key>
typename Map::mapped_type valueOr(const Map& map, Key key, typename Map::mapped_type fallback)
{
    auto found = map.find(key);
    return found == map.end() ? fallback : found->second;
}

}

DisplayWindow::DisplayWindow(const SurfaceContext& context, DisplayNumber display, bool canBlur)
    : m_context(context)
    , m_display(display)
    , m_canBlur(canBlur)
    , m_paint([this] { return frameInterval(); }, [this] { paint(); })
{
    auto& environment = m_context.environment;
    auto& connection = m_context.connection;
    m_subscriptions.push_back(connection.event.subscribe([this](auto* event) { handle(event); }));
    m_subscriptions.push_back(connection.turnEnded.subscribe([this] { endTurn(); }));
    m_subscriptions.push_back(m_context.grabs.pointerTaken.subscribe([this] { m_pointer.lose(); }));
    m_subscriptions.push_back(environment.activeSpace.subscribe([this](auto&) { update(); }));
    m_subscriptions.push_back(m_context.monitors.changed.subscribe([this] { update(); }));
    m_subscriptions.push_back(environment.dockHeights.subscribe([this](auto&) { updateStrut(); }));
    m_subscriptions.push_back(
        environment.edgeReservations.subscribe([this](auto&) { updateStrut(); }));
    m_subscriptions.push_back(environment.isCovered.subscribe([this](auto&) { updateStacking(); }));
}

DisplayWindow::~DisplayWindow() = default;

void DisplayWindow::add(X11Panel& panel)
{
    m_panels.push_back(&panel);
}

void DisplayWindow::remove(X11Panel& panel)
{
    if (m_shown == &panel) {
        setListener(nullptr);
        m_shown = nullptr;
    }
    std::erase(m_panels, &panel);
    update();
}

void DisplayWindow::setCanBlur(bool canBlur)
{
    if (std::exchange(m_canBlur, canBlur) == canBlur || !m_window)
        return;
    hide();
    update();
}

bool DisplayWindow::isCurrent(const X11Panel& panel) const
{
    return panel.options().space == m_context.environment.activeSpace.value();
}

double DisplayWindow::scale() const
{
    return m_context.scale();
}

X11Panel* DisplayWindow::panelOfCurrentSpace() const
{
    auto found = std::ranges::find_if(m_panels, [this](auto* panel) { return isCurrent(*panel); });
    return found == m_panels.end() ? nullptr : *found;
}

bool DisplayWindow::hasOrderedInPanel() const
{
    return std::ranges::any_of(m_panels, [](auto* panel) { return panel->isOrderedIn(); });
}

void DisplayWindow::update()
{
    auto* current = panelOfCurrentSpace();
    if (current && current->isOrderedIn() && !current->seenPixels().isEmpty())
        return show(*current);
    // A space that is new has no panel yet: what is seen stays until it has.
    if (current || !hasOrderedInPanel())
        hide();
}

void DisplayWindow::show(X11Panel& panel)
{
    placeWindow(panel.seenPixels(), panel.framePixels().size());
    m_drops->setPlace(m_window->frame().origin(), scale());
    if (m_shown != &panel || m_paintedScale != scale()) {
        takeAway(&panel);
        m_shown = &panel;
        m_paintedScale = scale();
        m_pointer.setScale(m_paintedScale);
        setListener(&panel.client());
        m_window->setTitle(panel.options().title);
        repaintAll();
    }
    bool blurs = panel.blur().has_value();
    if (std::exchange(m_blurs, blurs) != blurs)
        m_window->setBlursBehind(m_blurs);
    updateStrut();
    updateStacking();
    m_window->map();
}

/// A panel that is no longer seen gives the keyboard back.
void DisplayWindow::takeAway(const X11Panel* successor)
{
    if (m_shown && m_shown != successor)
        m_shown->releaseKeyboard();
}

void DisplayWindow::setListener(SurfaceClient* client)
{
    m_pointer.setClient(client);
    if (m_drops)
        m_drops->setClient(client);
}

void DisplayWindow::hide()
{
    takeAway(nullptr);
    setListener(nullptr);
    m_shown = nullptr;
    m_drops.reset();
    m_window.reset(); // and with it the strut
    m_buffer.reset();
    m_hasContent = m_isLowered = m_blurs = false;
}

void DisplayWindow::placeWindow(const Rect& seen, Size whole)
{
    if (!m_window) {
        m_visual = m_canBlur ? WindowVisual::withAlpha(m_context.connection)
                             : WindowVisual::ofRoot(m_context.connection);
        m_buffer = std::make_unique<BackBuffer>(m_context.connection, m_visual);
        m_window = std::make_unique<DockWindow>(
            m_context.connection, m_context.dispatch, m_visual, seen);
        m_drops = std::make_unique<DropTarget>(
            m_context.connection, m_context.dispatch, m_window->id());
        m_paint.hurry();
    }
    m_window->setFrame(seen);
    if (std::exchange(m_contentSize, whole) == whole && !m_buffer->isEmpty())
        return;
    m_buffer->resize(static_cast<int>(whole.width), static_cast<int>(whole.height));
    m_hasContent = false;
    repaintAll();
}

void DisplayWindow::repaintAll()
{
    if (!m_window)
        return;
    m_damage.add(Rect::from({}, m_contentSize));
    m_paint.request();
}

void DisplayWindow::updateStrut()
{
    if (!m_window)
        return;
    auto& environment = m_context.environment;
    auto height = std::max(valueOr(environment.dockHeights.value(), m_display, 0.0),
        valueOr(environment.edgeReservations.value(), environment.activeSpace.value(), 0.0));
    auto& monitors = m_context.monitors;
    auto own = std::ranges::find(monitors.list(), m_display, &Monitor::number);
    if (own == monitors.list().end())
        return m_window->setStrut({});
    m_window->setStrut(Strut::atBottomOf(
        own->pixels, std::round(height * scale()), monitors.list(), monitors.screenPixels()));
}

void DisplayWindow::updateStacking()
{
    bool isCovered = valueOr(m_context.environment.isCovered.value(), m_display, false);
    if (!m_window || isCovered == m_isLowered)
        return;
    m_isLowered = isCovered;
    m_window->setLowered(isCovered);
}

void DisplayWindow::invalidate(const X11Panel& panel, const Rect& points)
{
    if (&panel != m_shown)
        return; // it is painted whole when it comes into view
    m_damage.add(points.scaled(scale()));
    m_paint.request();
}

Duration DisplayWindow::frameInterval() const
{
    return m_context.monitors.frameInterval(m_display);
}

void DisplayWindow::requestSpace(SpaceID space) const
{
    auto& environment = m_context.environment;
    if (space != environment.activeSpace.value())
        environment.spaceWanted.emit(space);
}

void DisplayWindow::handle(const xcb_generic_event_t* event)
{
    if (!m_window || eventWindow(event) != m_window->id())
        return;
    if ((event->response_type & 0x7f) == XCB_EXPOSE) {
        if (m_hasContent)
            m_buffer->copyTo(m_window->id(), exposedPart(as<xcb_expose_event_t>(event)));
        return;
    }
    m_isLost |= (event->response_type & 0x7f) == XCB_DESTROY_NOTIFY;
    m_window->handle(event);
    m_pointer.handle(event);
}

void DisplayWindow::endTurn()
{
    if (m_pointer.endTurn() && onPointerMoved)
        onPointerMoved();
    if (std::exchange(m_isLost, false)) {
        hide();
        update(); // makes a new one
    }
    if (m_window)
        m_window->endTurn();
}

void DisplayWindow::paint()
{
    auto parts = m_damage.take(m_window ? Rect::from({}, m_contentSize) : Rect{});
    if (!m_shown || !m_window || m_buffer->isEmpty())
        return;
    // Asked for once: after a part is sent it would wait for the server to have read that.
    auto* surface = m_buffer->surface();
    for (auto& part : parts) {
        paintPart(m_context, m_shown->client(), surface, part, m_shown->ground());
        m_buffer->copyTo(m_window->id(), part);
    }
    m_hasContent = true;
    xcb_flush(m_context.connection.raw());
}

}
