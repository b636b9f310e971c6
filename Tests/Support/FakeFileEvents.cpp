#include "Tests/Support/FakeFileEvents.h"

#include <algorithm>

#include "Tests/Support/Contract.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::test {

std::optional<Subscription> FakeFileEvents::watch(
    const std::vector<std::string>& folders, Duration latency, std::function<void()> handler)
{
    if (!m_dispatch.isOnMain())
        contractBroken("files were watched away from the main thread");
    if (m_refuses)
        return std::nullopt;
    auto watch = std::make_shared<Watch>(Watch{folders, latency, std::move(handler), {}});
    m_watches.push_back(watch);
    return Subscription{std::move(watch)};
}

void FakeFileEvents::change(const std::string& path)
{
    for (auto& each : m_watches) {
        auto watch = each.lock();
        auto contains = [&](auto& folder) { return path.starts_with(folder); };
        if (!watch || watch->report.isPending() || std::ranges::none_of(watch->folders, contains))
            continue;
        watch->report = m_dispatch.world().after(watch->latency, [this, each] {
            m_dispatch.main().async([each] {
                if (auto present = each.lock())
                    present->handler();
            });
        });
    }
}

std::vector<std::vector<std::string>> FakeFileEvents::watched() const
{
    std::vector<std::vector<std::string>> all;
    for (auto& each : m_watches) {
        if (auto watch = each.lock())
            all.push_back(watch->folders);
    }
    return all;
}

}
