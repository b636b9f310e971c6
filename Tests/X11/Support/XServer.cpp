#include "Tests/X11/Support/XServer.h"

#include <cstdlib>
#include <fstream>

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

namespace {

/// The first line that a service writes once it is ready.
std::string waitForLine(const std::filesystem::path& path)
{
    std::string text;
    const auto hasLine = [&] {
        text = readFile(path);
        return text.find('\n') != std::string::npos;
    };
    EXPECT_TRUE(eventually(hasLine)) << path << " stays empty";
    return text.substr(0, text.find('\n'));
}

}

XServer::XServer(const std::vector<std::string>& arguments, int depth)
{
    makeHome();
    startServer(arguments, depth);
    startBus();
}

void XServer::kill()
{
    m_server.reset();
}

std::filesystem::path XServer::settingsFile() const
{
    return folder() / "config" / "Quorvel" / "settings.json";
}

std::string XServer::addProgram(const std::string& name, const std::string& commands) const
{
    const auto path = folder() / name;
    std::ofstream(path) << "#!/bin/sh\n" << commands << '\n';
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path.string();
}

void XServer::addApplication(
    const std::string& id, const std::string& name, const std::string& entry) const
{
    const auto path = folder() / "data" / "applications";
    std::filesystem::create_directories(path);
    std::ofstream(path / (id + ".desktop"))
        << "[Desktop Entry]\nType=Application\nName=" << name << '\n'
        << entry << '\n';
}

void XServer::makeHome()
{
    const std::map<std::string, std::string> folders{{"HOME", "home"},
        {"XDG_CONFIG_HOME", "config"}, {"XDG_DATA_HOME", "data"}, {"XDG_CACHE_HOME", "cache"},
        {"XDG_STATE_HOME", "state"}, {"XDG_RUNTIME_DIR", "runtime"}};
    for (const auto& [variable, name] : folders) {
        const auto path = folder() / name;
        std::filesystem::create_directories(path);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        m_environment[variable] = path;
    }
    for (const auto* variable : {"LANGUAGE", "WAYLAND_DISPLAY", "XAUTHORITY", "SESSION_MANAGER",
             "DESKTOP_STARTUP_ID", "DBUS_SESSION_BUS_ADDRESS"})
        m_environment[variable] = "";
    m_environment["LC_ALL"] = "C.UTF-8";

    std::filesystem::create_directories(settingsFile().parent_path());
    std::ofstream(settingsFile()) << R"({"groupWindowsByApp": false})";
}

void XServer::startServer(const std::vector<std::string>& arguments, int depth)
{
    const auto line = folder() / "display";
    std::vector<std::string> command{"Xvfb", "-displayfd", "1", "-screen", "0",
        "1280x800x" + std::to_string(depth), "-listen", "tcp", "-noreset"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    m_server
        = std::make_unique<Process>(command, m_environment, Outputs{line, folder() / "server.log"});
    m_display = ":" + waitForLine(line);
    m_environment["DISPLAY"] = m_display;
}

void XServer::startBus()
{
    const auto line = folder() / "bus";
    m_bus = std::make_unique<Process>(
        std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--print-address"},
        m_environment, Outputs{line, folder() / "bus.log"});
    m_environment["DBUS_SESSION_BUS_ADDRESS"] = waitForLine(line);
}

}
