#include "Tests/X11/Support/WindowManager.h"

#include <filesystem>
#include <fstream>
#include <iostream>

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

namespace {

/// Its own taskbar lies where ours does.
void writeSettingsOfIcewm(const std::filesystem::path& home)
{
    const auto folder = home / "config" / "icewm";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "preferences") << "ShowTaskBar=0\n";
}

}

std::string nameOf(ManagerKind kind)
{
    switch (kind) {
    case ManagerKind::openbox:
        return "openbox";
    case ManagerKind::xfwm4:
        return "xfwm4";
    case ManagerKind::metacity:
        return "metacity";
    case ManagerKind::icewm:
        return "icewm";
    }
    return {};
}

WindowManager::WindowManager(const XServer& server, Desktop& desktop, ManagerKind kind)
    : m_server(server)
    , m_desktop(desktop)
    , m_kind(kind)
{
    beginStart();
    waitUntilManaging();
}

WindowManager::~WindowManager()
{
    if (!testing::Test::HasFailure())
        return;
    const auto folder = "/proc/" + std::to_string(m_process->pid()) + "/";
    std::cout << nameOf(m_kind) << (m_process->isRunning() ? " runs" : " has ended") << ", in "
              << readFile(folder + "wchan") << ", system call " << readFile(folder + "syscall")
              << readFile(m_server.folder() / "manager.log") << '\n';
}

bool WindowManager::isManaging()
{
    return m_process->isRunning() && m_desktop.hasWindowManager();
}

void WindowManager::end(int signal)
{
    m_process->signal(signal);
    EXPECT_TRUE(m_process->waitForEnd()) << nameOf(m_kind) << " does not end";
}

void WindowManager::beginStart()
{
    m_process = launch({});
}

void WindowManager::beginReplace()
{
    auto successor = launch({"--replace"});
    EXPECT_TRUE(m_process->waitForEnd()) << nameOf(m_kind) << " does not give way";
    m_process = std::move(successor);
}

void WindowManager::waitUntilManaging()
{
    // A window that is opened while openbox starts may stay unmanaged.
    EXPECT_TRUE(eventually([this] { return isManaging() && m_desktop.managerAnswers(); }))
        << readFile(m_server.folder() / "manager.log");
}

std::unique_ptr<Process> WindowManager::launch(const std::vector<std::string>& arguments)
{
    std::vector<std::string> command{nameOf(m_kind)};
    if (m_kind == ManagerKind::xfwm4)
        command.emplace_back("--compositor=off");
    if (m_kind == ManagerKind::metacity)
        command.emplace_back("--no-composite");
    if (m_kind == ManagerKind::icewm)
        writeSettingsOfIcewm(m_server.folder());
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto log = m_server.folder() / "manager.log";
    return std::make_unique<Process>(command, m_server.environment(), Outputs{{}, log});
}

}
