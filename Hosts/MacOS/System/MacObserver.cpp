#include "Hosts/MacOS/System/MacObserver.h"

#include <map>
#include <mutex>

#include "Hosts/MacOS/System/AccessibilityElement.h"
#include "Hosts/MacOS/System/CFValues.h"

namespace quorvel {

namespace {

using SharedCallback = std::shared_ptr<const Accessibility::Callback>;

/// The callbacks of the living observers of the process, by the number that the system keeps.
class ObserverTable {
public:
    std::uintptr_t insert(Accessibility::Callback callback)
    {
        const std::lock_guard lock(m_mutex);
        const std::uintptr_t key = ++m_lastKey;
        m_callbacks[key] = std::make_shared<const Accessibility::Callback>(std::move(callback));
        return key;
    }

    void erase(std::uintptr_t key)
    {
        const std::lock_guard lock(m_mutex);
        m_callbacks.erase(key);
    }

    SharedCallback find(std::uintptr_t key)
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_callbacks.find(key);
        return found == m_callbacks.end() ? nullptr : found->second;
    }

private:
    std::mutex m_mutex;
    std::uintptr_t m_lastKey = 0;
    std::map<std::uintptr_t, SharedCallback> m_callbacks;
};

// The system's callback carries nothing but the number, so the table has to be the process's. It is
// never destroyed: the system may end the program by `exit`, while observers run on their thread.
ObserverTable& observerTable()
{
    static auto& table = *new ObserverTable;
    return table;
}

void handleNotification(AXObserverRef, AXUIElementRef element, CFStringRef notification, void* key)
{
    const AutoreleasePool pool;
    // Held here too: the callback may destroy its observer.
    const SharedCallback callback = observerTable().find(reinterpret_cast<std::uintptr_t>(key));
    const auto name = textFrom(notification);
    if (callback && element && name)
        (*callback)(makeElement(CFRef<AXUIElementRef>::retain(element)), *name);
}

}

std::pair<AXError, std::unique_ptr<AXObserver>> MacObserver::create(
    ProcessID pid, Accessibility::Callback callback)
{
    CFRef<AXObserverRef> observer;
    const auto error
        = static_cast<AXError>(AXObserverCreate(raw(pid), handleNotification, observer.out()));
    if (error != AXError::success)
        return {error, nullptr};
    if (!observer)
        return {AXError::failure, nullptr};
    return {error, std::make_unique<MacObserver>(std::move(observer), std::move(callback))};
}

MacObserver::MacObserver(CFRef<AXObserverRef> observer, Accessibility::Callback callback)
    : m_observer(std::move(observer))
    , m_runLoop(CFRef<CFRunLoopRef>::retain(CFRunLoopGetCurrent()))
    , m_key(observerTable().insert(std::move(callback)))
{
    CFRunLoopAddSource(
        m_runLoop.get(), AXObserverGetRunLoopSource(m_observer.get()), kCFRunLoopCommonModes);
}

MacObserver::~MacObserver()
{
    observerTable().erase(m_key);
    CFRunLoopRemoveSource(
        m_runLoop.get(), AXObserverGetRunLoopSource(m_observer.get()), kCFRunLoopCommonModes);
}

AXError MacObserver::addNotification(const AXElement& element, std::string_view notification)
{
    const AXUIElementRef target = systemElement(element);
    const auto name = makeString(notification);
    if (!target || !name)
        return AXError::illegalArgument;
    return static_cast<AXError>(AXObserverAddNotification(
        m_observer.get(), target, name.get(), reinterpret_cast<void*>(m_key)));
}

AXError MacObserver::removeNotification(const AXElement& element, std::string_view notification)
{
    const AXUIElementRef target = systemElement(element);
    const auto name = makeString(notification);
    if (!target || !name)
        return AXError::illegalArgument;
    return static_cast<AXError>(AXObserverRemoveNotification(m_observer.get(), target, name.get()));
}

}
