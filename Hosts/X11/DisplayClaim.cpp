#include "Hosts/X11/DisplayClaim.h"

#include <chrono>
#include <thread>

#include <fmt/format.h>
#include <unistd.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/ServerGrab.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::chrono::milliseconds kLookAgain{5};
/// A bar that has just ended, but not yet for the server.
constexpr std::chrono::milliseconds kGoneLimit{2000};
/// What a bar that is to go may take.
constexpr std::chrono::milliseconds kEndLimit{5000};

/// The bar of one screen.
xcb_atom_t selectionOf(const Connection& connection)
{
    if (connection.screenNumber() == 0)
        return connection.atoms().quorvelS0;
    const auto name = fmt::format("_QUORVEL_S{}", connection.screenNumber());
    auto* raw = connection.raw();
    auto reply = owned(xcb_intern_atom_reply(raw,
        xcb_intern_atom(raw, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t ownerOf(xcb_connection_t* raw, xcb_atom_t selection)
{
    auto reply = owned(
        xcb_get_selection_owner_reply(raw, xcb_get_selection_owner(raw, selection), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

bool exists(xcb_connection_t* raw, xcb_window_t window)
{
    return owned(xcb_get_geometry_reply(raw, xcb_get_geometry(raw, window), nullptr)) != nullptr;
}

bool goesWithin(xcb_connection_t* raw, xcb_window_t window, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (exists(raw, window)) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(kLookAgain);
    }
    return true;
}

std::string describe(const Connection& connection, xcb_window_t owner)
{
    auto* raw = connection.raw();
    auto reply = owned(xcb_get_property_reply(raw,
        xcb_get_property(raw, 0, owner, connection.atoms().netWmPid, XCB_ATOM_CARDINAL, 0, 1),
        nullptr));
    if (!reply || reply->format != 32 || reply->value_len != 1)
        return "another process";
    return fmt::format(
        "process {}", *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())));
}

xcb_window_t makeOwner(const Connection& connection)
{
    auto* raw = connection.raw();
    const auto window = xcb_generate_id(raw);
    const std::uint32_t overrideRedirect = 1;
    xcb_create_window(raw, XCB_COPY_FROM_PARENT, window, connection.root(), -1, -1, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
        &overrideRedirect);
    const auto process = static_cast<std::uint32_t>(getpid());
    xcb_change_property(raw, XCB_PROP_MODE_REPLACE, window, connection.atoms().netWmPid,
        XCB_ATOM_CARDINAL, 32, 1, &process);
    return window;
}

/// Whatever clock events carry: of two that claim it at one moment the later has it.
xcb_window_t claim(const Connection& connection, xcb_atom_t selection)
{
    const auto window = makeOwner(connection);
    xcb_set_selection_owner(connection.raw(), window, selection, XCB_CURRENT_TIME);
    return window;
}

struct Answer {
    xcb_window_t owner = XCB_WINDOW_NONE; ///< another bar's
    xcb_window_t window = XCB_WINDOW_NONE; ///< ours, if there is no other
};

/// Nobody else claims it between the answer and what is made of it.
Answer claimIfFree(const Connection& connection, xcb_atom_t selection)
{
    const ServerGrab grab{connection};
    const auto owner = ownerOf(connection.raw(), selection);
    return owner ? Answer{.owner = owner} : Answer{.window = claim(connection, selection)};
}

/// None with a problem where another one has come up meanwhile.
xcb_window_t takeOver(
    const Connection& connection, xcb_atom_t selection, xcb_window_t before, std::string& problem)
{
    auto* raw = connection.raw();
    const auto window = claim(connection, selection);
    if (ownerOf(raw, selection) != window) {
        problem = "another bar has come up on this display";
        return XCB_WINDOW_NONE;
    }
    if (!goesWithin(raw, before, kEndLimit)) {
        xcb_kill_client(raw, before); // stopped, or hung; its windows go with it
        goesWithin(raw, before, kGoneLimit);
    }
    return window;
}

}

std::unique_ptr<DisplayClaim> DisplayClaim::take(
    Connection& connection, bool replace, std::string& problem)
{
    const auto selection = selectionOf(connection);
    auto answer = claimIfFree(connection, selection);
    if (answer.owner && !replace && goesWithin(connection.raw(), answer.owner, kGoneLimit))
        answer = claimIfFree(connection, selection);
    if (answer.owner && replace)
        answer.window = takeOver(connection, selection, answer.owner, problem);
    else if (answer.owner)
        problem = fmt::format("{} is the bar on this display; --replace takes over from it",
            describe(connection, answer.owner));
    if (!answer.window)
        return nullptr;
    return std::unique_ptr<DisplayClaim>{new DisplayClaim{connection, answer.window}};
}

DisplayClaim::DisplayClaim(Connection& connection, xcb_window_t window)
    : m_events(connection.event.subscribe([this, window](const xcb_generic_event_t* event) {
        if ((event->response_type & 0x7f) == XCB_SELECTION_CLEAR
            && reinterpret_cast<const xcb_selection_clear_event_t*>(event)->owner == window)
            lost.emit();
    }))
{
}

}
