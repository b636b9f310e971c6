#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Accessibility.h"
#include "Tests/Support/DesktopModel.h"

namespace quorvel::test {

class FakeDesktop;

/// A message that went to an application: an attribute read or set, an action, a registration.
struct AXMessage {
    enum class Kind { copy, set, action, registration };

    Kind kind{};
    ProcessID pid{};
    std::optional<WindowID> window{}; ///< absent: the application element
    std::string name{}; ///< of the attribute, the action or the notification
    AXValue value{}; ///< what was set
    AXError result{};
    float timeout = 0; ///< what the element's timeout was
    std::string thread{};
    Instant at{};
};

/// The applications' accessibility trees, told from the desktop with each application's faults.
class FakeAccessibility final : public Accessibility {
public:
    /// What an element waits whose timeout the program did not set.
    static constexpr float kDefaultTimeout = 6;

    explicit FakeAccessibility(FakeDesktop& desktop) : m_desktop(desktop) { }

    bool isTrusted() const override { return m_isTrusted; }
    void promptForTrust() override { ++m_prompts; }
    AXElement application(ProcessID) const override;
    void setMessagingTimeout(const AXElement&, float seconds) override;
    AXReply copyAttribute(const AXElement&, std::string_view attribute) override;
    AXReply isAttributeSettable(const AXElement&, std::string_view attribute) override;
    AXError setAttribute(const AXElement&, std::string_view attribute, const AXValue&) override;
    AXError performAction(const AXElement&, std::string_view action) override;
    WindowIDResolver windowIDResolver() const override;
    std::pair<AXError, std::unique_ptr<AXObserver>> createObserver(
        ProcessID, RunLoopThread&, Callback) override;

    // Knobs.
    void setTrusted(bool value) { m_isTrusted = value; }
    void setResolverAvailable(bool value) { m_hasResolver = value; }

    // What the program did.
    int prompts() const { return m_prompts; }
    const std::vector<AXMessage>& messages() const { return m_messages; }
    /// The messages to one application, of one kind.
    std::vector<AXMessage> messages(ProcessID, AXMessage::Kind) const;
    void forgetMessages() { m_messages.clear(); }
    /// When the program tried to make an observer.
    const std::vector<Instant>& observerAttempts() const { return m_observerAttempts; }
    std::size_t observersOf(ProcessID) const;
    bool isRegistered(ProcessID, std::string_view notification) const;
    bool isRegistered(WindowID, std::string_view notification) const;

    AXElement windowElement(WindowID) const;

    /// An application tells its observers about one of its windows (or itself).
    void notify(ProcessID, const AXElement& about, std::string_view notification);

private:
    friend class FakeObserver;
    struct Target;

    Target target(const AXElement&) const;
    AXError send(const AXElement&, AXMessage);
    AXError fault(const Target&, float timeout);
    /// What a request is answered if that takes too long.
    std::optional<AXError> lateAnswer(const Target&, const AXElement&);
    AXReply applicationAttribute(FakeApplication&, std::string_view attribute) const;
    AXReply windowAttribute(const FakeWindow&, std::string_view attribute) const;
    bool isListed(const FakeWindow&) const;
    AXError setApplicationAttribute(FakeApplication&, std::string_view, const AXValue&);
    AXError setWindowAttribute(FakeWindow&, std::string_view, const AXValue&);
    AXError resolve(const AXElement&, WindowID&) const;

    FakeDesktop& m_desktop;
    bool m_isTrusted = true;
    bool m_hasResolver = true;
    int m_prompts = 0;
    std::vector<AXMessage> m_messages;
    std::vector<Instant> m_observerAttempts;
    std::vector<class FakeObserver*> m_observers;
};

}
