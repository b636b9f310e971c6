#pragma once

#include "Hosts/X11/Desktop/Client.h"

namespace quorvel::xdg::x11 {

class Connection;
class RequestBatch;

/// Maps the facts about a client to the properties that hold them. Main thread.
class ClientReader {
public:
    explicit ClientReader(Connection&);

    /// The facts that a change of the property makes stale.
    Facets facetsOf(xcb_atom_t property) const;
    /// Asks for the stale facts among `wanted`; the answers go into the client, which must outlive
    /// the batch. A title may need a second question: it is then marked stale again.
    void request(RequestBatch&, Client&, Facets wanted) const;

private:
    void requestNames(RequestBatch&, Client&, Facets) const;
    void requestIdentity(RequestBatch&, Client&, Facets) const;
    void requestRole(RequestBatch&, Client&, Facets) const;
    void requestGeometry(RequestBatch&, Client&, Facets) const;
    std::optional<WindowType> typeOf(const std::vector<xcb_atom_t>&) const;
    ClientState stateOf(const std::vector<xcb_atom_t>&) const;

    Connection& m_connection;
    bool m_hasClientProcesses = false;
};

}
