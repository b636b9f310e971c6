#include "Hosts/X11/Connection.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <new>
#include <optional>
#include <unordered_map>

#include <fmt/format.h>
#include <glib.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/res.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/Linux/Loop/SourceTime.h"
#include "Hosts/Linux/Loop/WorkSchedule.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/TurnPace.h"

namespace quorvel::xdg::x11 {

namespace {

/// One turn hands out at most this many events, so that a flood cannot keep timers waiting.
constexpr int kEventsPerTurn = 4096;

/// Asks for what every start asks for, so that the answers come with those about the atoms and not
/// in a round trip each.
void askForExtensions(xcb_connection_t* connection)
{
    for (auto* extension :
        {&xcb_randr_id, &xcb_input_id, &xcb_xfixes_id, &xcb_res_id, &xcb_damage_id, &xcb_shm_id})
        xcb_prefetch_extension_data(connection, extension);
}

}

xcb_screen_t* screenOf(xcb_connection_t* connection, int number)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0; --number, xcb_screen_next(&screens)) {
        if (number == 0)
            return screens.data;
    }
    return nullptr;
}

PixelLayout pixelLayout(xcb_connection_t* connection, const xcb_screen_t& screen,
    std::uint8_t depth, xcb_visualid_t wanted)
{
    PixelLayout layout;
    const auto* setup = xcb_get_setup(connection);
    const bool isLittle = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    if (isLittle != (std::endian::native == std::endian::little))
        return layout;
    auto formats = xcb_setup_pixmap_formats_iterator(setup);
    for (; formats.rem > 0; xcb_format_next(&formats)) {
        if (formats.data->depth == depth) {
            layout.bitsPerPixel = formats.data->bits_per_pixel;
            layout.rowBits = formats.data->scanline_pad;
        }
    }
    auto depths = xcb_screen_allowed_depths_iterator(&screen);
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem > 0; xcb_visualtype_next(&visuals)) {
            const auto& visual = *visuals.data;
            if (visual.visual_id == wanted) {
                layout.red = visual.red_mask;
                layout.green = visual.green_mask;
                layout.blue = visual.blue_mask;
            }
        }
    }
    return layout;
}

struct Connection::Masks {
    std::unordered_map<xcb_window_t, std::uint32_t> byWindow;
};

/// The descriptor in GLib's loop. Any wait for a reply, and any flush, may read what else has come
/// into queues inside xcb, where no poll on the descriptor sees it. So the queue of events is
/// looked at before and after each sleep (what the look takes out is kept for the dispatch), and
/// bytes that were read since a turn ended bring another turn: an answer may be among them.
struct Connection::Source {
    struct Base : GSource {
        Source* owner;
    };

    explicit Source(Connection& owner)
        : connection(owner)
        , pace([&owner](auto window) { return window == owner.root() || owner.isOwn(window); })
    {
        static GSourceFuncs functions{
            &Source::prepare, &Source::check, &Source::dispatch, nullptr, nullptr, nullptr};
        base.reset(reinterpret_cast<Base*>(g_source_new(&functions, sizeof(Base))));
        base->owner = this;
        g_source_set_static_name(base.get(), "X11");
        // Otherwise GLib takes the descriptor out of its poll while events are dispatched, and
        // wakes itself for that, twice in each turn. No loop runs within a dispatch.
        g_source_set_can_recurse(base.get(), TRUE);
        // Not by a tag: to change what is waited for would wake the loop.
        poll = {xcb_get_file_descriptor(connection.m_connection), kInput, 0};
        g_source_add_poll(base.get(), &poll);
        g_source_attach(base.get(), nullptr);
    }

    /// Lets events gather in the socket; what others read of it in the meantime is handled. A turn
    /// that only brought answers changes nothing.
    void restAfter(TurnPace::Events events)
    {
        const auto now = WorkSchedule::now();
        if (events == TurnPace::Events::none && restsUntil && now < *restsUntil)
            return;
        const auto length = pace.restAfter(now, events);
        const bool rests = length > Duration::zero();
        restsUntil = rests ? std::optional{now + length} : std::nullopt;
        poll.events = rests ? 0 : kInput;
    }

    bool hasInput()
    {
        if (!queued)
            queued = owned(xcb_poll_for_queued_event(connection.m_connection));
        return queued || xcb_total_read(connection.m_connection) != readBeforeTurnEnd
            || xcb_connection_has_error(connection.m_connection);
    }

    Reply<xcb_generic_event_t> next()
    {
        return queued ? std::move(queued) : owned(xcb_poll_for_event(connection.m_connection));
    }

    static gboolean prepare(GSource* source, gint* timeout)
    {
        auto* self = static_cast<Base*>(source)->owner;
        // Requests made from timers and other sources leave here at the latest. A flush may itself
        // read, so it comes before the look at the queue.
        xcb_flush(self->connection.m_connection);
        return isDueOrSleeps(self->restsUntil, *timeout) || self->hasInput();
    }

    static gboolean check(GSource* source)
    {
        auto* self = static_cast<Base*>(source)->owner;
        const bool hasRested = self->restsUntil && *self->restsUntil <= WorkSchedule::now();
        return hasRested || self->poll.revents != 0 || self->hasInput();
    }

    static gboolean dispatch(GSource* source, GSourceFunc, gpointer)
    {
        auto& connection = static_cast<Base*>(source)->owner->connection;
        connection.dispatchEvents();
        if (!xcb_connection_has_error(connection.m_connection))
            return G_SOURCE_CONTINUE;
        connection.lost.emit();
        return G_SOURCE_REMOVE;
    }

    static constexpr gushort kInput = G_IO_IN | G_IO_HUP | G_IO_ERR;

    Connection& connection;
    GPollFD poll{};
    GSourceHandle<Base> base;
    std::optional<Instant> restsUntil; ///< else the socket is listened to
    TurnPace pace;
    Reply<xcb_generic_event_t> queued;
    std::uint64_t readBeforeTurnEnd = 0; ///< bytes, since the connection was opened
};

std::unique_ptr<Connection> Connection::open(std::string& problem)
{
    const char* name = std::getenv("DISPLAY");
    if (!name || !*name) {
        problem = "no X display (DISPLAY is not set)";
        return nullptr;
    }

    int screenNumber = 0;
    auto* connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection) || !screenOf(connection, screenNumber)) {
        problem = fmt::format("cannot open the X display \"{}\"", name);
        xcb_disconnect(connection);
        return nullptr;
    }
    askForExtensions(connection);
    return std::unique_ptr<Connection>{new Connection{connection, screenNumber}};
}

Connection::Connection(xcb_connection_t* connection, int screenNumber)
    : m_connection(connection)
    , m_screenNumber(screenNumber)
    , m_screen(screenOf(connection, screenNumber))
    , m_atoms(Atoms::intern(connection))
    , m_masks(std::make_unique<Masks>())
    , m_source(std::make_unique<Source>(*this))
{
}

Connection::~Connection()
{
    m_source.reset();
    xcb_disconnect(m_connection);
}

std::uint32_t Connection::addEventMask(xcb_window_t window, std::uint32_t mask)
{
    auto& current = m_masks->byWindow[window];
    auto added = mask & ~current;
    if (added == 0)
        return 0;
    current |= mask;
    xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &current);
    return added;
}

void Connection::removeEventMask(xcb_window_t window, std::uint32_t mask)
{
    auto known = m_masks->byWindow.find(window);
    if (known == m_masks->byWindow.end() || (known->second & mask) == 0)
        return;
    known->second &= ~mask;
    xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &known->second);
}

void Connection::forgetWindow(xcb_window_t window)
{
    m_masks->byWindow.erase(window);
}

bool Connection::isOwn(xcb_window_t window) const
{
    auto* setup = xcb_get_setup(m_connection);
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

bool Connection::isHandled(std::uint32_t sequence) const
{
    // The numbers begin anew after 2^32.
    return static_cast<std::int32_t>(m_handled - sequence) >= 0;
}

/// Events that were read late tell of earlier requests than an answer has.
void Connection::tellHandled(std::uint32_t sequence)
{
    if (!isHandled(sequence))
        m_handled = sequence;
}

void Connection::waitUntilHandled(std::uint32_t sequence)
{
    if (isHandled(sequence))
        return;
    auto cookie = xcb_get_input_focus(m_connection);
    if (owned(xcb_get_input_focus_reply(m_connection, cookie, nullptr)))
        tellHandled(cookie.sequence);
}

void Connection::dispatchEvents()
{
    TurnPace::Events events = TurnPace::Events::none;
    for (int i = 0; i < kEventsPerTurn; ++i) {
        const auto next = m_source->next();
        if (!next)
            break;
        tellHandled(next->full_sequence);
        if (next->response_type == 0)
            continue; // an error of a request that nobody waits for
        events = std::max(events, m_source->pace.kindOf(*next));
        event.emit(next.get());
    }
    m_source->readBeforeTurnEnd = xcb_total_read(m_connection);
    turnEnded.emit();
    xcb_flush(m_connection);
    m_source->restAfter(events);
}

}
