#include "Hosts/X11/Desktop/WindowSession.h"

#include <algorithm>
#include <string_view>

#include <glib.h>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RootNotes.h"

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

std::string windowSession(Connection& connection, const RootNotes& notes)
{
    if (isName(notes.session))
        return notes.session;
    const GText random{g_uuid_string_random()};
    std::string name{random.get()};
    xcb_change_property(connection.raw(), XCB_PROP_MODE_REPLACE, connection.root(),
        connection.atoms().quorvelSession, XCB_ATOM_STRING, 8,
        static_cast<std::uint32_t>(name.size()), name.data());
    return name;
}

}
