#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "Tests/MacSystem/Support/Objects.h"
#include "Tests/MacSystem/Support/Values.h"
#include "Tests/Support/FakeDesktop.h"

extern "C" {
/// The private call of accessibility, which the loader finds under another name.
AXError simulatedGetWindow(AXUIElementRef, CGWindowID*);
// And those of the Dock.
Boolean simulatedGetAutoHideEnabled();
void simulatedSetAutoHideEnabled(Boolean);
void simulatedGetOrientationAndPinning(std::int32_t* orientation, std::int32_t* pinning);
}

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

    /// As a notification would bring it.
    static AXUIElementRef createWindowElement(WindowID);

    // Knobs.
    /// What the call, or the accessibility attribute, of this name answers; empty is null.
    void answer(const std::string& name, Value value) { m_answers[name] = std::move(value); }
    void forgetAnswer(const std::string& name) { m_answers.erase(name); }
    /// The loader does not find it.
    void removeSymbol(const std::string& name) { m_removed.insert(name); }
    bool hasSkyLight = true;
    bool isPointerReadable = true;
    bool failsDisplayCalls = false;
    bool ignoresDockRect = false; ///< the window server leaves it to the Dock

    /// Calls back whoever watches the disk, as the main queue would.
    void changeFiles();

    /// What the program's handler answers to these keys; absent if they are none of its hot keys.
    static std::optional<std::int32_t> pressHotkey(std::uint32_t keyCode, std::uint32_t modifiers);
    /// Of those that are registered, and of handlers.
    static std::size_t hotkeyCount();

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
    void* symbol(bool isInSkyLight, const std::string& name) const;
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
    FakeDesktop& m_desktop;
    std::map<std::string, Value> m_answers;
    std::set<std::string> m_removed;
    Value m_eventStream; ///< null while nobody watches
    std::map<std::string, Value> m_runLoops; ///< by the label of their thread
};

}
