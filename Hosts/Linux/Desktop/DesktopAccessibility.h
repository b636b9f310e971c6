#pragma once

#include <thread>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/Linux/Desktop/ObserverRegistry.h"
#include "Quorvel/Platform/Accessibility.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel::xdg {

class DesktopRequests;

/// The applications' accessibility trees, built from the model. No question waits for an
/// application; a change becomes a request to the display server, passed from any thread through
/// the main one.
class DesktopAccessibility final : public Accessibility {
public:
    /// On the main thread.
    DesktopAccessibility(const SharedModel&, ObserverRegistry&, DesktopRequests&, Dispatch&);

    bool isTrusted() const override { return true; }
    void promptForTrust() override { }

    AXElement application(ProcessID) const override;
    void setMessagingTimeout(const AXElement&, float) override { }
    AXReply copyAttribute(const AXElement&, std::string_view attribute) override;
    AXReply isAttributeSettable(const AXElement&, std::string_view attribute) override;
    AXError setAttribute(const AXElement&, std::string_view attribute, const AXValue&) override;
    AXError performAction(const AXElement&, std::string_view action) override;
    WindowIDResolver windowIDResolver() const override;
    std::pair<AXError, std::unique_ptr<AXObserver>> createObserver(
        ProcessID, RunLoopThread&, Callback) override;

private:
    AXReply applicationAttribute(ProcessID, std::string_view attribute) const;
    AXReply windowAttribute(WindowID, std::string_view attribute) const;
    AXError setApplicationAttribute(ProcessID, std::string_view attribute, const AXValue&);
    AXError setSize(WindowID, const Size*);
    AXError setSwitch(WindowID, WindowSwitch, const bool*);
    AXError setMinimized(WindowID, const bool*);
    AXError activate(WindowID, const bool*);
    AXError request(std::function<void(DesktopRequests&)>);
    bool exists(WindowID) const;

    const SharedModel& m_model;
    ObserverRegistry& m_observers;
    DesktopRequests& m_requests;
    Dispatch& m_dispatch;
    std::thread::id m_mainThread;
    WeakOwner<DesktopRequests> m_weakRequests;
};

}
