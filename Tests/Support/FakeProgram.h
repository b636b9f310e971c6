#pragma once

#include <functional>
#include <optional>
#include <string>
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
    std::optional<int> operatingSystemMajorVersion() const override { return m_systemVersion; }
    void warn(std::string_view text) override { m_warnings.emplace_back(text); }
    int run() override;
    void terminate() override;
    const Published<Appearance>& appearance() const override { return m_appearance; }

    void setSystemVersion(std::optional<int> major) { m_systemVersion = major; }
    void setAppearance(Appearance appearance) { m_appearance.set(appearance); }

    const std::vector<ActivationPolicy>& policies() const { return m_policies; }
    const std::vector<std::string>& warnings() const { return m_warnings; }
    bool isTerminated() const { return m_isTerminated; }

private:
    VirtualDispatch& m_dispatch;
    Published<Appearance> m_appearance;
    std::vector<ActivationPolicy> m_policies;
    std::optional<int> m_systemVersion = 14;
    std::vector<std::string> m_warnings;
    bool m_isTerminated = false;
};

class FakeControlChannel final : public ControlChannel {
public:
    void setHandler(Handler handler) override { m_handler = std::move(handler); }

    /// A later invocation of the program; absent if nobody listens.
    std::optional<ControlReply> send(const std::vector<std::string>& arguments) const
    {
        return m_handler ? std::optional{m_handler(arguments)} : std::nullopt;
    }

private:
    Handler m_handler;
};

}
