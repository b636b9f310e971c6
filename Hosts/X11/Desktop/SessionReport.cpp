#include "Hosts/X11/Desktop/SessionReport.h"

#include <fmt/format.h>

#include "Hosts/Posix/StandardStreams.h"
#include "Hosts/X11/Desktop/Mirror.h"

namespace quorvel::xdg::x11 {

namespace {

std::string describe(const Client& client)
{
    auto process = client.serverProcess ? client.serverProcess : client.claimedProcess;
    auto name = client.title().empty() ? std::string{"without a name"} : client.title();
    return process ? fmt::format("{}, process {}", name, *process) : name;
}

}

SessionReport::SessionReport(Dispatch& dispatch, Mirror& mirror)
    : m_mirror(mirror)
    , m_look(dispatch.main().after(kPatience, [this] { look(); }))
{
}

void SessionReport::look()
{
    if (!m_mirror.hasWindowManager())
        posix::tell("no window manager is running here: the bar shows windows when one comes");
    tellOfOtherPanels();
    m_reservationsDidChange
        = m_mirror.reservationsDidChange.subscribe([this] { tellOfOtherPanels(); });
}

void SessionReport::tellOfOtherPanels()
{
    m_mirror.clients().forEach([this](const Client& client) {
        if (!hasOurEdge(client) || !m_told.insert(client.window).second)
            return;
        posix::tell(fmt::format(
            "another panel ({}) has the bottom edge too: one covers the other", describe(client)));
    });
}

bool SessionReport::hasOurEdge(const Client& client) const
{
    return client.type == WindowType::dock && client.strut.bottom > 0 && !client.isUnmapped
        && !m_mirror.isOwn(client.window);
}

}
