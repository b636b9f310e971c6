#pragma once

#include "Hosts/MacOS/System/PrivateSymbols.h"
#include "Quorvel/Platform/Accessibility.h"

namespace quorvel {

class MacAccessibility final : public Accessibility {
public:
    /// The timeout of an element for which none was set, instead of the system's six seconds.
    static constexpr float kDefaultMessagingTimeoutSeconds = 1;

    explicit MacAccessibility(const PrivateSymbols&);

    bool isTrusted() const override;
    void promptForTrust() override;

    AXElement application(ProcessID) const override;
    void setMessagingTimeout(const AXElement&, float seconds) override;
    AXReply copyAttribute(const AXElement&, std::string_view attribute) override;
    AXReply isAttributeSettable(const AXElement&, std::string_view attribute) override;
    AXError setAttribute(const AXElement&, std::string_view attribute, const AXValue&) override;
    AXError performAction(const AXElement&, std::string_view action) override;

    WindowIDResolver windowIDResolver() const override;

    std::pair<AXError, std::unique_ptr<AXObserver>> createObserver(
        ProcessID, RunLoopThread&, Callback) override;

private:
    decltype(PrivateSymbols::axElementGetWindow) m_getWindow;
};

}
