#pragma once

#include "Hosts/Linux/Desktop/WindowIcons.h"

namespace quorvel::xdg {
class Icons;
}

namespace quorvel::xdg::x11 {

class Clients;
class Connection;

/// The pictures in windows' properties, read when they are asked for.
class PropertyIcons final : public WindowIcons {
public:
    PropertyIcons(Connection&, Clients&, Icons&);

    Image of(WindowID) override;

private:
    Connection& m_connection;
    Clients& m_clients;
    Icons& m_icons;
};

}
