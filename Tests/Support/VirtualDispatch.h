#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::test {

class VirtualQueue;

/// A `Dispatch` whose clock moves only when a test says so. Everything runs on the test's thread,
/// one piece of work after another: by due time, and at the same time in the order of scheduling,
/// whatever queue it belongs to. So a run is the same each time.
class VirtualDispatch final : public Dispatch {
public:
    static constexpr Instant kStart{seconds(1000)};

    VirtualDispatch();
    ~VirtualDispatch() override;

    Instant now() const override { return m_now; }
    Queue& main() override;
    Queue& background() override;
    std::unique_ptr<Queue> makeSerialQueue(std::string_view label, QualityOfService) override;
    std::unique_ptr<RunLoopThread> startThread(std::string_view name, QualityOfService) override;

    /// Runs everything that falls due until the clock has moved on by `duration`.
    void advance(Duration duration);
    /// Runs what is due now, and what that brings about without waiting.
    void drain() { advance(Duration::zero()); }
    /// What a blocking call costs: the clock moves, and nothing else gets its turn meanwhile.
    void spend(Duration duration) { m_now += duration; }

    /// Delayed and repeating work of the program; none means that it is idle.
    std::size_t pendingTimers() const;

    /// What the world outside the program does later; not counted as the program's timers.
    Queue& world();

    bool isOnMain() const;
    bool isOn(const RunLoopThread&) const;
    bool hasEnded(const RunLoopThread&) const;
    /// The one whose work is running; null on the main thread.
    RunLoopThread* thread() const;
    /// The label of the queue or thread whose work is running; "main" outside of any.
    std::string currentLabel() const;

private:
    friend class VirtualQueue;
    struct Item;
    struct Key {
        Instant due;
        std::uint64_t sequence;
        // Not defaulted: the Mac's library has no `<=>` for points in time.
        friend bool operator<(const Key& one, const Key& other)
        {
            return std::tie(one.due, one.sequence) < std::tie(other.due, other.sequence);
        }
    };

    std::shared_ptr<Item> schedule(
        VirtualQueue&, Instant due, Duration interval, bool isTimer, Work);
    void enqueue(const std::shared_ptr<Item>&, Instant due);
    void run(const std::shared_ptr<Item>&);
    void reschedule(const std::shared_ptr<Item>&);
    void runReadyWork(VirtualQueue&);
    void dropWork(VirtualQueue&);
    bool isRunning(const VirtualQueue&) const;

    Instant m_now = kStart;
    std::uint64_t m_sequence = 0;
    std::map<Key, std::shared_ptr<Item>> m_items;
    std::set<const RunLoopThread*> m_threads;
    std::vector<VirtualQueue*> m_running; // innermost last
    std::unique_ptr<VirtualQueue> m_main;
    std::unique_ptr<VirtualQueue> m_background;
    std::unique_ptr<VirtualQueue> m_world;
};

}
