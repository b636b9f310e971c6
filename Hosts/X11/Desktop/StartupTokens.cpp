#include "Hosts/X11/Desktop/StartupTokens.h"

#include <fmt/format.h>
#include <unistd.h>

namespace quorvel::xdg::x11 {

void StartupTokens::request(std::function<void(const std::string&)> answer)
{
    m_time.ask([this, answer = std::move(answer)](xcb_timestamp_t time) {
        // The time comes last, where window managers look for it.
        answer(fmt::format("quorvel-{}-{}_TIME{}", getpid(), ++m_count, time));
    });
}

}
