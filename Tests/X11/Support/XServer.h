#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/X11/Support/Process.h"

namespace quorvel::x11tests {

/// An X server in memory (1280 x 800), a session bus and a home, all empty and private.
class XServer {
public:
    /// Further arguments of the server's, and the depth of its screen.
    explicit XServer(const std::vector<std::string>& arguments = {}, int depth = 24);

    const std::string& display() const { return m_display; }
    /// The same display for clients that come over the network: their process is not known.
    std::string networkDisplay() const { return "127.0.0.1" + m_display; }
    const Environment& environment() const { return m_environment; }
    const std::filesystem::path& folder() const { return m_folder.path(); }
    /// Takes the display away from everybody.
    void kill();
    /// Where the bar looks for its settings.
    std::filesystem::path settingsFile() const;
    /// Makes a program of these commands of the shell; returns its path.
    std::string addProgram(const std::string& name, const std::string& commands) const;
    /// Installs an application; `entry` has the lines that say more of it than its name.
    void addApplication(
        const std::string& id, const std::string& name, const std::string& entry) const;

private:
    void makeHome();
    void startServer(const std::vector<std::string>& arguments, int depth);
    void startBus();

    test::TemporaryFolder m_folder;
    Environment m_environment;
    std::string m_display;
    std::unique_ptr<Process> m_server;
    std::unique_ptr<Process> m_bus;
};

}
