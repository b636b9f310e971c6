#include "Hosts/X11/Desktop/FadedWindows.h"

#include <algorithm>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RequestBatch.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/ServerGrab.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kOpaque = 0xFFFFFFFF;
constexpr std::uint32_t kMark = 0x0000FFFF;

bool isOurs(std::uint32_t opacity)
{
    return (opacity & kMark) == (FadedWindows::kOpacity & kMark);
}

/// Slow at both ends, like every motion of the bar.
std::uint32_t opacityAt(double share, std::optional<std::uint32_t> before)
{
    double from = before.value_or(kOpaque);
    double eased = share * share * (3 - 2 * share);
    auto opacity = std::uint32_t(from + (FadedWindows::kOpacity - from) * eased);
    return (opacity & ~kMark) | (FadedWindows::kOpacity & kMark);
}

}

/// What a window says of itself.
struct FadedWindows::Opacity {
    bool isUnderstood = false; ///< else it is left alone
    std::optional<std::uint32_t> value; ///< absent: nothing
};

FadedWindows::FadedWindows(Connection& connection, const NotedOpacities& left)
    : m_connection(connection)
{
    if (left.empty())
        return;
    ServerGrab grab{connection};
    putBack(left);
    note();
}

FadedWindows::~FadedWindows()
{
    set({}, [](xcb_window_t) { return false; });
    fade(1);
    // A server may drop what it has not read yet of a connection that closes.
    auto* raw = m_connection.raw();
    owned(xcb_get_input_focus_reply(raw, xcb_get_input_focus(raw), nullptr)).reset();
}

void FadedWindows::set(
    const std::set<xcb_window_t>& wanted, const std::function<bool(xcb_window_t)>& isSeen)
{
    auto coming = wanted;
    for (auto& [window, fading] : m_windows) {
        fading.isWanted = coming.erase(window) > 0;
        if (!fading.isWanted && !isSeen(window))
            fading.share = 0;
    }
    if (!coming.empty())
        add(coming);
}

/// They are noted before anything is written: if this program is killed in between, the note tells
/// of windows that are as they were, which does no harm.
void FadedWindows::add(const std::set<xcb_window_t>& windows)
{
    for (auto& [window, opacity] : read(windows)) {
        bool isFaintAlready = opacity.value && *opacity.value <= kOpacity;
        if (opacity.isUnderstood && !isFaintAlready)
            m_windows[window] = {.before = opacity.value, .now = opacity.value};
    }
    note();
}

bool FadedWindows::fade(double by)
{
    std::set<xcb_window_t> moving;
    for (auto& [window, fading] : m_windows) {
        if (!fading.isThere() && (by > 0 || fading.isOver()))
            moving.insert(window);
    }
    if (!moving.empty()) {
        ServerGrab grab{m_connection};
        auto count = m_windows.size();
        for (auto& [window, opacity] : read(moving))
            move(window, opacity.value, by);
        if (m_windows.size() != count)
            note();
    }
    return !std::ranges::all_of(m_windows, [](auto& entry) { return entry.second.isThere(); });
}

void FadedWindows::move(xcb_window_t window, std::optional<std::uint32_t> current, double by)
{
    auto& fading = m_windows.at(window);
    fading.share = std::clamp(fading.share + (fading.isWanted ? by : -by), 0.0, 1.0);
    if (current == fading.now) { // else its program has changed it since
        fading.now = fading.isOver() ? fading.before : opacityAt(fading.share, fading.before);
        write(window, fading.now);
    }
    if (fading.isOver())
        m_windows.erase(window);
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

void FadedWindows::write(xcb_window_t window, std::optional<std::uint32_t> opacity) const
{
    auto* raw = m_connection.raw();
    auto property = m_connection.atoms().netWmWindowOpacity;
    if (opacity)
        xcb_change_property(
            raw, XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_CARDINAL, 32, 1, &*opacity);
    else
        xcb_delete_property(raw, window, property);
}

/// Of what its program has changed since, nothing.
void FadedWindows::putBack(const NotedOpacities& opacities) const
{
    std::set<xcb_window_t> windows;
    for (auto& entry : opacities)
        windows.insert(entry.first);
    for (auto& [window, now] : read(windows)) {
        if (now.value && isOurs(*now.value))
            write(window, opacities.at(window));
    }
}

void FadedWindows::note() const
{
    auto* raw = m_connection.raw();
    auto root = m_connection.root();
    auto property = m_connection.atoms().quorvelFaded;
    if (m_windows.empty())
        return void(xcb_delete_property(raw, root, property));
    NotedOpacities opacities;
    for (auto& [window, fading] : m_windows)
        opacities[window] = fading.before;
    auto words = encodeNotedOpacities(opacities);
    xcb_change_property(raw, XCB_PROP_MODE_REPLACE, root, property, XCB_ATOM_CARDINAL, 32,
        static_cast<std::uint32_t>(words.size()), words.data());
}

}
