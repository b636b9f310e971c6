#pragma once

#include "Hosts/Linux/Desktop/LaunchTokens.h"
#include "Hosts/X11/ServerTime.h"

namespace quorvel::xdg::x11 {

/// Startup identifiers: unique in the session, and carrying the server's time of the user's action,
/// which managers compare with the last input.
class StartupTokens final : public LaunchTokens {
public:
    explicit StartupTokens(Connection& connection) : m_time(connection) { }

    void request(std::function<void(const std::string&)>) override;

private:
    ServerTime m_time;
    unsigned m_count = 0;
};

}
