#include "Hosts/Linux/Desktop/ProcessEnd.h"

#include <cerrno>
#include <climits>

#include <glib-unix.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quorvel::xdg {

std::unique_ptr<ProcessEnd> ProcessEnd::of(
    std::uint32_t pid, Watch& watch, std::function<void()> onEnd)
{
    watch = Watch::unavailable;
    if (pid == 0 || pid > INT_MAX)
        return nullptr;

    auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, static_cast<pid_t>(pid), 0));
    if (descriptor < 0) {
        if (errno == ESRCH)
            watch = Watch::ended;
        return nullptr;
    }
    watch = Watch::running;
    return std::unique_ptr<ProcessEnd>{new ProcessEnd{descriptor, std::move(onEnd)}};
}

ProcessEnd::ProcessEnd(int descriptor, std::function<void()> onEnd)
    : m_descriptor(descriptor)
    , m_onEnd(std::move(onEnd))
{
    auto dispatch = [](gint, GIOCondition, gpointer data) -> gboolean {
        auto* self = static_cast<ProcessEnd*>(data);
        self->m_source = 0;
        auto hasEnded = std::move(self->m_onEnd); // the owner may drop this watch inside the call
        hasEnded();
        return G_SOURCE_REMOVE;
    };
    m_source = g_unix_fd_add(descriptor, G_IO_IN, dispatch, this);
}

ProcessEnd::~ProcessEnd()
{
    if (m_source != 0)
        g_source_remove(m_source);
    close(m_descriptor);
}

}
