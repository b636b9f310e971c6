#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "Hosts/MacOS/System/CFRef.h"
#include "Quorvel/Platform/Accessibility.h"

namespace quorvel {

/// One process's observer on the run loop of the thread that made it.
///
/// The system returns a bare number with each notification, and a notification already on its way
/// may still arrive after its registration ended, so the number is a key into a table of live
/// observers and never the address of one.
class MacObserver final : public AXObserver {
public:
    static std::pair<AXError, std::unique_ptr<AXObserver>> create(
        ProcessID, Accessibility::Callback);

    MacObserver(CFRef<AXObserverRef>, Accessibility::Callback);
    ~MacObserver() override;

    AXError addNotification(const AXElement&, std::string_view notification) override;
    AXError removeNotification(const AXElement&, std::string_view notification) override;

private:
    CFRef<AXObserverRef> m_observer;
    CFRef<CFRunLoopRef> m_runLoop;
    std::uintptr_t m_key;
};

}
