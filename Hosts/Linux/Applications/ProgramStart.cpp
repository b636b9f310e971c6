#include "Hosts/Linux/Applications/ProgramStart.h"

#include <array>
#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

namespace {

/// By convention of shells: not executable, not found.
constexpr int kNotExecutable = 126;
constexpr int kNotFound = 127;

/// In the child, where only what is safe in a signal handler may be called.
void leaveOurSession(gpointer)
{
    ::setsid();
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

GTexts withToken(const std::string& token)
{
    char** variables = g_get_environ();
    // Both names of the same: the older of X11, the newer that toolkits read first.
    for (const char* name : {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"})
        variables = token.empty() ? g_environ_unsetenv(variables, name)
                                  : g_environ_setenv(variables, name, token.c_str(), true);
    // They say from which desktop file a program was started: here, the bar itself.
    for (const char* name : {"GIO_LAUNCHED_DESKTOP_FILE", "GIO_LAUNCHED_DESKTOP_FILE_PID"})
        variables = g_environ_unsetenv(variables, name);
    return GTexts{variables};
}

}

std::variant<GPid, std::string> ProgramStart::run() const
{
    auto words = arguments;
    std::vector<char*> pointers;
    for (auto& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    constexpr auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD
        | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
    const auto environment = withToken(token);
    GPid process = 0;
    GError* error = nullptr;
    if (g_spawn_async(folder.c_str(), pointers.data(), environment.get(), flags, leaveOurSession,
            nullptr, &process, &error))
        return process;
    const GErrorHandle owned{error};
    return std::string{error->message};
}

bool neverStarted(int waitStatus)
{
    if (!WIFEXITED(waitStatus))
        return false;
    const int status = WEXITSTATUS(waitStatus);
    return status == kNotExecutable || status == kNotFound;
}

}
