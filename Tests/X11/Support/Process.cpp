#include "Tests/X11/Support/Process.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

namespace {

void redirect(const std::filesystem::path& path, int descriptor)
{
    const char* const name = path.empty() ? "/dev/null" : path.c_str();
    const int file = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file >= 0)
        dup2(file, descriptor);
}

void apply(const Environment& environment)
{
    for (const auto& [name, value] : environment) {
        if (value.empty())
            unsetenv(name.c_str());
        else
            setenv(name.c_str(), value.c_str(), 1);
    }
}

[[noreturn]] void become(
    const std::vector<std::string>& command, const Environment& environment, const Outputs& to)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    apply(environment);
    redirect(to.output, STDOUT_FILENO);
    redirect(to.error, STDERR_FILENO);
    std::vector<char*> arguments;
    for (const auto& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

}

Process::Process(
    const std::vector<std::string>& command, const Environment& environment, const Outputs& outputs)
{
    m_pid = fork();
    if (m_pid == 0)
        become(command, environment, outputs);
}

Process::~Process()
{
    if (isRunning())
        signal(SIGKILL);
    waitForEnd();
}

void Process::collect()
{
    int status = 0;
    if (m_status || waitpid(m_pid, &status, WNOHANG) != m_pid)
        return;
    m_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool Process::isRunning()
{
    collect();
    return !m_status;
}

void Process::signal(int number) const
{
    if (!m_status)
        ::kill(m_pid, number);
}

std::optional<int> Process::waitForEnd()
{
    (void)eventually([this] { return !isRunning(); });
    return m_status;
}

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}
