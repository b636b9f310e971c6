#include "Hosts/Linux/Applications/DirectoryEvents.h"

#include <memory>
#include <utility>

#include "Hosts/Linux/Applications/DirectoryMonitors.h"

namespace quorvel::xdg {
namespace {

/// Gathers what happens, and tells of it once the latency has passed.
class Watch {
public:
    Watch(Dispatch& dispatch, Duration latency, std::function<void()> handler)
        : m_dispatch(dispatch)
        , m_latency(latency)
        , m_handler(std::move(handler))
    {
    }

    void follow(const std::vector<std::string>& folders)
    {
        m_monitors.watchOnly({folders.begin(), folders.end()});
    }

private:
    void didChange()
    {
        if (!m_report.isPending())
            m_report = m_dispatch.main().after(m_latency, [this] { m_handler(); });
    }

    Dispatch& m_dispatch;
    const Duration m_latency;
    const std::function<void()> m_handler;
    WorkItem m_report;
    DirectoryMonitors m_monitors{[this](std::string_view) { didChange(); }};
};

}

std::optional<Subscription> DirectoryEvents::watch(
    const std::vector<std::string>& folders, Duration latency, std::function<void()> handler)
{
    auto watch = std::make_shared<Watch>(m_dispatch, latency, std::move(handler));
    watch->follow(folders);
    return Subscription{std::move(watch)};
}

}
