#pragma once

#include <string>
#include <vector>

#include "Tests/X11/Support/Connection.h"
#include "Tests/X11/Support/XServer.h"

namespace quorvel::x11tests {

/// The monitors that an X server divides its screen into.
class MonitorLayout {
public:
    explicit MonitorLayout(const XServer& server) : m_server(server) { }

    /// In place of those there are; the first one is the primary.
    void set(const std::vector<Frame>&);
    const std::vector<Frame>& frames() const { return m_frames; }

private:
    void run(const std::vector<std::string>& arguments) const;

    const XServer& m_server;
    std::vector<Frame> m_frames;
    std::vector<std::string> m_names;
    int m_count = 0;
};

}
