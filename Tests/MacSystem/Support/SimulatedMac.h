#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "Tests/MacSystem/Support/Objects.h"
#include "Tests/MacSystem/Support/Values.h"
#include "Tests/Support/FakeDesktop.h"

/// The private call of accessibility, which the loader finds under another name.
extern "C" AXError simulatedGetWindow(AXUIElementRef, CGWindowID*);

namespace quorvel::test {

/// The C calls of a Mac, answered from a fake desktop with all that desktop's faults. On top of
/// them a test can change what a call answers before the host sees it, and take calls away.
class SimulatedMac {
public:
    explicit SimulatedMac(FakeDesktop&);
    ~SimulatedMac();
    SimulatedMac(const SimulatedMac&) = delete;
    SimulatedMac& operator=(const SimulatedMac&) = delete;

    /// The one that the calls reach.
    static SimulatedMac& current();

    FakeDesktop& desktop() { return m_desktop; }
    /// The desktop's, with an eye on which thread runs.
    Dispatch& dispatch() { return m_dispatch; }

    /// As a notification would bring it.
    static AXUIElementRef createWindowElement(WindowID);

    // Knobs.
    /// What the call, or the accessibility attribute, of this name answers; empty is null.
    void answer(const std::string& name, Value value) { m_answers[name] = std::move(value); }
    void forgetAnswer(const std::string& name) { m_answers.erase(name); }
    /// The loader does not find it.
    void removeSymbol(const std::string& name) { m_removed.insert(name); }
    void removeSkyLight() { m_hasSkyLight = false; }
    void setPointerReadable(bool value) { m_isPointerReadable = value; }
    /// The window server leaves the Dock's rectangle to the Dock.
    void ignoreDockRect(bool value) { m_ignoresDockRect = value; }
    void failDisplayCalls(bool value) { m_failsDisplayCalls = value; }

    /// Calls back whoever watches the disk, as the main queue would.
    void changeFiles();

    /// What the last stream of file events was made with.
    struct Watched {
        Value paths;
        bool isFromNow = false;
        double latency = 0;
        std::uint32_t flags = 0;
    } watched;

    // For the calls.
    void setEventStream(Value stream) { m_eventStream = std::move(stream); }
    const Value* answerFor(const std::string& name) const;
    bool hasSkyLight() const { return m_hasSkyLight; }
    bool isPointerReadable() const { return m_isPointerReadable; }
    bool ignoresDockRect() const { return m_ignoresDockRect; }
    bool failsDisplayCalls() const { return m_failsDisplayCalls; }
    void* symbol(bool isInSkyLight, const std::string& name) const;
    /// The thread of the program whose work is running, if any.
    RunLoopThread* thread() const;
    CFRunLoopRef runLoop();
    float defaultTimeout = FakeAccessibility::kDefaultTimeout;

    /// The Dock's own at first: at the left, for a reason of its own.
    struct DockRect {
        Rect rect{0, 100, 60, 700};
        int reason = 7;
        int orientation = 3;
        friend bool operator==(const DockRect&, const DockRect&) = default;
    } dockRect;
    /// The last registration, for notifications that come too late.
    struct Registration {
        AXObserverCallback callback = nullptr;
        void* context = nullptr;
    } lastRegistration;

private:
    class ThreadWatch final : public Dispatch {
    public:
        explicit ThreadWatch(VirtualDispatch& dispatch) : m_dispatch(dispatch) { }
        Instant now() const override { return m_dispatch.now(); }
        Queue& main() override { return m_dispatch.main(); }
        Queue& background() override { return m_dispatch.background(); }
        std::unique_ptr<Queue> makeSerialQueue(
            std::string_view label, QualityOfService quality) override
        {
            return m_dispatch.makeSerialQueue(label, quality);
        }
        std::unique_ptr<RunLoopThread> startThread(std::string_view, QualityOfService) override;
        RunLoopThread* running() const;

    private:
        VirtualDispatch& m_dispatch;
        std::vector<RunLoopThread*> m_threads;
    };

    FakeDesktop& m_desktop;
    ThreadWatch m_dispatch;
    std::map<std::string, Value> m_answers;
    std::set<std::string> m_removed;
    Value m_eventStream; ///< null while nobody watches
    bool m_hasSkyLight = true;
    bool m_isPointerReadable = true;
    bool m_failsDisplayCalls = false;
    bool m_ignoresDockRect = false;
    std::map<std::string, Value> m_runLoops; ///< by the label of their thread
};

}
