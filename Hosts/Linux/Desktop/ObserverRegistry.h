#pragma once

#include <bitset>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Quorvel/Platform/Accessibility.h"

namespace quorvel::xdg {

/// Who has registered for what. Observers live on their own threads; the main thread delivers.
class ObserverRegistry {
public:
    explicit ObserverRegistry(const SharedModel& model) : m_model(model) { }

    std::unique_ptr<AXObserver> makeObserver(ProcessID, RunLoopThread&, Accessibility::Callback);
    /// Delivers to each observer what it has registered for, in order, on its thread.
    void deliver(const std::vector<DesktopNotification>&);

private:
    class Observer;
    using Token = std::uint64_t; ///< of an element
    using Names = std::bitset<8>; ///< of notifications, by their place in the list of all
    using Batch = std::vector<std::pair<AXElement, std::string_view>>;

    /// Shared with deliveries on their way to the thread, which check whether the observer has
    /// ended: it ends on that thread, so no callback follows.
    struct State {
        ProcessID pid;
        RunLoopThread& thread;
        Accessibility::Callback callback;
        std::map<Token, Names> registrations; ///< under the registry's lock
        bool hasEnded = false; ///< on the observer's thread
    };

    AXError add(State&, const AXElement&, std::string_view notification);
    AXError remove(State&, const AXElement&, std::string_view notification);
    void end(const std::shared_ptr<State>&);

    const SharedModel& m_model;
    std::mutex m_mutex;
    std::multimap<ProcessID, std::shared_ptr<State>> m_observers;
};

}
