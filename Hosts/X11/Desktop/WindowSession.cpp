#include "Hosts/X11/Desktop/WindowSession.h"

#include <algorithm>
#include <string_view>

#include <glib.h>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::size_t kNameLength = 36; ///< of a UUID in text

bool isName(std::string_view text)
{
    return text.size() == kNameLength && std::ranges::all_of(text, [](char character) {
        return g_ascii_isxdigit(character) || character == '-';
    });
}

}

std::optional<std::string> windowSession(Connection& connection)
{
    auto* raw = connection.raw();
    const auto property = connection.atoms().quorvelSession;
    const auto reply = owned(xcb_get_property_reply(raw,
        xcb_get_property(raw, 0, connection.root(), property, XCB_ATOM_STRING, 0, kNameLength / 4),
        nullptr));
    if (!reply)
        return std::nullopt;
    const std::string_view found{static_cast<const char*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    if (reply->format == 8 && isName(found))
        return std::string{found};
    const GText random{g_uuid_string_random()};
    std::string name{random.get()};
    xcb_change_property(raw, XCB_PROP_MODE_REPLACE, connection.root(), property, XCB_ATOM_STRING, 8,
        static_cast<std::uint32_t>(name.size()), name.data());
    return name;
}

}
