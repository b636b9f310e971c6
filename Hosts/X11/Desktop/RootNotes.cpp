#include "Hosts/X11/Desktop/RootNotes.h"

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RequestBatch.h"

namespace quorvel::xdg::x11 {

RootNotes RootNotes::read(Connection& connection)
{
    RootNotes notes;
    const auto& atoms = connection.atoms();
    RequestBatch batch{connection.raw()};
    batch.property(
        connection.root(), atoms.quorvelSession, limits::text, [&](const RawProperty& raw) {
            if (raw.type == XCB_ATOM_STRING && raw.format == 8)
                notes.session.assign(
                    reinterpret_cast<const char*>(raw.data.data()), raw.data.size());
        });
    batch.property(connection.root(), atoms.quorvelFaded, limits::notedOpacities,
        [&](const RawProperty& raw) { notes.faded = decodeNotedOpacities(raw); });
    batch.property(connection.root(), atoms.quorvelRaised, 2,
        [&](const RawProperty& raw) { notes.raised = decodeWindows(raw); });
    batch.finish();
    return notes;
}

}
