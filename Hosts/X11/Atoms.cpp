#include "Hosts/X11/Atoms.h"

#include <cstring>
#include <iterator>

#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

struct AtomName {
    xcb_atom_t Atoms::* member;
    const char* name;
};

#define QUORVEL_ATOM_NAME(member, name) {&Atoms::member, name},
constexpr AtomName kAtomNames[] = {QUORVEL_ATOMS(QUORVEL_ATOM_NAME)};
#undef QUORVEL_ATOM_NAME

}

Atoms Atoms::intern(xcb_connection_t* connection)
{
    xcb_intern_atom_cookie_t cookies[std::size(kAtomNames)];
    for (std::size_t i = 0; i < std::size(kAtomNames); ++i) {
        auto* name = kAtomNames[i].name;
        cookies[i]
            = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    }

    Atoms atoms;
    for (std::size_t i = 0; i < std::size(kAtomNames); ++i) {
        if (auto reply = owned(xcb_intern_atom_reply(connection, cookies[i], nullptr)))
            atoms.*kAtomNames[i].member = reply->atom;
    }
    return atoms;
}

}
