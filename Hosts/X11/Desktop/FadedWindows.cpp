#include "Hosts/X11/Desktop/FadedWindows.h"

#include <vector>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RequestBatch.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

/// Nobody else writes between what is read and what is written.
class ServerGrab {
public:
    explicit ServerGrab(Connection& connection) : m_connection(connection.raw())
    {
        xcb_grab_server(m_connection);
    }
    ~ServerGrab()
    {
        xcb_ungrab_server(m_connection);
        xcb_flush(m_connection);
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    xcb_connection_t* m_connection;
};

}

/// What a window says of itself.
struct FadedWindows::Opacity {
    bool isUnderstood = false; ///< else it is left alone
    std::optional<std::uint32_t> value; ///< absent: nothing
};

FadedWindows::FadedWindows(Connection& connection) : m_connection(connection)
{
    NotedOpacities left;
    RequestBatch batch{connection.raw()};
    batch.property(connection.root(), connection.atoms().quorvelFaded, limits::notedOpacities,
        [&](const RawProperty& raw) { left = decodeNotedOpacities(raw); });
    batch.finish();
    if (left.empty())
        return;
    ServerGrab grab{connection};
    putBack(left);
    note();
}

FadedWindows::~FadedWindows()
{
    set({});
    // A server may drop what it has not read yet of a connection that closes.
    auto* raw = m_connection.raw();
    owned(xcb_get_input_focus_reply(raw, xcb_get_input_focus(raw), nullptr)).reset();
}

void FadedWindows::set(const std::set<xcb_window_t>& wanted)
{
    NotedOpacities leaving;
    for (auto& entry : m_before) {
        if (!wanted.contains(entry.first))
            leaving.insert(entry);
    }
    auto coming = wanted;
    std::erase_if(coming, [this](auto window) { return m_before.contains(window); });
    if (leaving.empty() && coming.empty())
        return;
    ServerGrab grab{m_connection};
    putBack(leaving);
    for (auto& [window, opacity] : leaving)
        m_before.erase(window);
    fade(coming);
}

std::map<xcb_window_t, FadedWindows::Opacity> FadedWindows::read(
    const std::set<xcb_window_t>& windows) const
{
    std::map<xcb_window_t, Opacity> read;
    RequestBatch batch{m_connection.raw()};
    for (auto window : windows) {
        batch.property(window, m_connection.atoms().netWmWindowOpacity, 2,
            [&read, window](const RawProperty& raw) {
                bool isNumber = raw.type == XCB_ATOM_CARDINAL && raw.words() == 1;
                if (raw.type == XCB_ATOM_NONE)
                    read[window] = {true, std::nullopt};
                else
                    read[window] = {isNumber, raw.word(0)};
            });
    }
    batch.finish();
    return read;
}

/// The note comes first: if this program is killed in between, it tells of windows that are as they
/// were, which does no harm.
void FadedWindows::fade(const std::set<xcb_window_t>& windows)
{
    std::vector<xcb_window_t> fading;
    for (auto& [window, opacity] : read(windows)) {
        bool isFaintAlready = opacity.value && *opacity.value <= kOpacity;
        if (!opacity.isUnderstood || isFaintAlready)
            continue;
        m_before[window] = opacity.value;
        fading.push_back(window);
    }
    note();
    for (auto window : fading)
        xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, window,
            m_connection.atoms().netWmWindowOpacity, XCB_ATOM_CARDINAL, 32, 1, &kOpacity);
}

void FadedWindows::putBack(const NotedOpacities& opacities)
{
    std::set<xcb_window_t> windows;
    for (auto& [window, before] : opacities)
        windows.insert(window);
    auto* raw = m_connection.raw();
    auto property = m_connection.atoms().netWmWindowOpacity;
    for (auto& [window, now] : read(windows)) {
        if (now.value != kOpacity)
            continue; // its program has changed it since
        if (auto& before = opacities.at(window))
            xcb_change_property(
                raw, XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_CARDINAL, 32, 1, &*before);
        else
            xcb_delete_property(raw, window, property);
    }
}

void FadedWindows::note() const
{
    auto* raw = m_connection.raw();
    auto root = m_connection.root();
    auto property = m_connection.atoms().quorvelFaded;
    if (m_before.empty())
        return void(xcb_delete_property(raw, root, property));
    auto words = encodeNotedOpacities(m_before);
    xcb_change_property(raw, XCB_PROP_MODE_REPLACE, root, property, XCB_ATOM_CARDINAL, 32,
        static_cast<std::uint32_t>(words.size()), words.data());
}

}
