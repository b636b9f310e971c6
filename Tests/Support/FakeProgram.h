#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/ControlChannel.h"
#include "Tests/Support/FakeText.h"

namespace quorvel::test {

class VirtualDispatch;

/// The program itself. `run` lets the test have its say, then ends.
class FakeProgram final : public Application {
public:
    static constexpr ProcessID kPID{42};

    explicit FakeProgram(VirtualDispatch& dispatch) : m_dispatch(dispatch) { }

    void setActivationPolicy(ActivationPolicy policy) override { m_policies.push_back(policy); }
    ProcessID processID() const override { return kPID; }
    std::optional<std::string> bundleIdentifier() const override { return m_bundleIdentifier; }
    std::optional<int> operatingSystemMajorVersion() const override { return m_systemVersion; }
    void warn(std::string_view text) override { m_warnings.emplace_back(text); }
    int run() override;
    void terminate() override;
    const Published<Appearance>& appearance() const override { return m_appearance; }

    void setBundleIdentifier(std::optional<std::string> identifier)
    {
        m_bundleIdentifier = std::move(identifier);
    }
    void setSystemVersion(std::optional<int> major) { m_systemVersion = major; }
    void setAppearance(Appearance appearance) { m_appearance.set(appearance); }

    const std::vector<ActivationPolicy>& policies() const { return m_policies; }
    const std::vector<std::string>& warnings() const { return m_warnings; }
    bool isTerminated() const { return m_isTerminated; }

private:
    VirtualDispatch& m_dispatch;
    Published<Appearance> m_appearance;
    std::vector<ActivationPolicy> m_policies;
    std::optional<std::string> m_bundleIdentifier = "com.example.quorvel";
    std::optional<int> m_systemVersion = 14;
    std::vector<std::string> m_warnings;
    bool m_isTerminated = false;
};

/// The other end of a session: another program.
class FakeSessionPeer {
public:
    /// What the bar has sent and has not been looked at.
    std::vector<std::string> takeLines() { return std::exchange(m_lines, {}); }
    bool isConnected() const { return m_session != nullptr; }
    void say(std::string_view line)
    {
        if (m_session && m_session->onLine)
            std::function{m_session->onLine}(line);
    }
    void hangUp()
    {
        if (auto* session = std::exchange(m_session, nullptr))
            std::exchange(session->onEnd, nullptr)();
    }

private:
    friend class FakeControlChannel;

    struct Session final : ControlSession {
        explicit Session(std::shared_ptr<FakeSessionPeer> end) : peer(std::move(end)) { }
        ~Session() override { peer->m_session = nullptr; }
        void send(std::string_view line) override { peer->m_lines.emplace_back(line); }

        std::shared_ptr<FakeSessionPeer> peer;
    };

    ControlSession* m_session = nullptr;
    std::vector<std::string> m_lines;
};

class FakeControlChannel final : public ControlChannel {
public:
    void setHandler(Handler handler) override { m_handler = std::move(handler); }
    void setSessionHandler(SessionHandler handler) override
    {
        m_sessionHandler = std::move(handler);
    }

    /// Another program connects and stays; not connected if nobody listens.
    std::shared_ptr<FakeSessionPeer> connect() const
    {
        auto peer = std::make_shared<FakeSessionPeer>();
        if (m_sessionHandler) {
            auto session = std::make_unique<FakeSessionPeer::Session>(peer);
            peer->m_session = session.get();
            m_sessionHandler(std::move(session));
        }
        return peer;
    }

    /// A later invocation of the program; absent if nobody listens.
    std::optional<ControlReply> send(const std::vector<std::string>& arguments) const
    {
        return m_handler ? std::optional{m_handler(arguments)} : std::nullopt;
    }

private:
    Handler m_handler;
    SessionHandler m_sessionHandler;
};

}
