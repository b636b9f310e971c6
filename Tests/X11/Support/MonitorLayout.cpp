#include "Tests/X11/Support/MonitorLayout.h"

#include <gtest/gtest.h>

#include "Tests/X11/Support/Eventually.h"
#include "Tests/X11/Support/Process.h"

namespace quorvel::x11tests {

void MonitorLayout::run(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> command{"xrandr"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Process process(command, m_server.environment());
    EXPECT_EQ(process.waitForEnd(), 0) << testing::PrintToString(arguments);
}

void MonitorLayout::set(const std::vector<Frame>& frames)
{
    for (const auto& name : m_names)
        run({"--delmonitor", name});
    m_names.clear();
    m_frames = frames;
    for (const auto& frame : frames) {
        const bool isFirst = m_names.empty();
        const auto name = "monitor-" + std::to_string(++m_count % 5);
        const auto geometry = std::to_string(frame.width) + "/300x" + std::to_string(frame.height)
            + "/200+" + std::to_string(frame.x) + "+" + std::to_string(frame.y);
        // The one output belongs to the first, or the server adds a monitor of its own for it.
        run({"--setmonitor", (isFirst ? "*" : "") + name, geometry, isFirst ? "screen" : "none"});
        m_names.push_back(name);
    }
}

}
