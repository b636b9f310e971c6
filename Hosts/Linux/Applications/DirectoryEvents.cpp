#include "Hosts/Linux/Applications/DirectoryEvents.h"

#include <memory>
#include <utility>

#include "Hosts/Linux/Loop/FolderMonitors.h"

namespace quorvel::xdg {
namespace {

/// Enough for any system; a folder that links to itself ends here.
constexpr int kDeepestFolder = 6;

/// Gathers what happens, and tells of it once the latency has passed.
class Watch {
public:
    Watch(Dispatch& dispatch, const std::vector<std::string>& folders, Duration latency,
        std::function<void()> handler)
        : m_dispatch(dispatch)
        , m_latency(latency)
        , m_handler(std::move(handler))
        , m_monitors(folders, kDeepestFolder, [this](std::string_view) { didChange(); })
    {
    }

    bool isWatching() const { return m_monitors.isWatching(); }

private:
    void didChange()
    {
        if (!m_report.isPending())
            m_report = m_dispatch.main().after(m_latency, [handler = m_handler] { handler(); });
    }

    Dispatch& m_dispatch;
    const Duration m_latency;
    const std::function<void()> m_handler;
    WorkItem m_report;
    FolderMonitors m_monitors;
};

}

std::optional<Subscription> DirectoryEvents::watch(
    const std::vector<std::string>& folders, Duration latency, std::function<void()> handler)
{
    auto watch = std::make_shared<Watch>(m_dispatch, folders, latency, std::move(handler));
    if (!watch->isWatching())
        return std::nullopt;
    return Subscription{std::move(watch)};
}

}
