#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Quorvel/Platform/DockControl.h"

namespace quorvel::test {

/// The system's Dock. It reads its preferences when it starts, and what was set but never
/// synchronised is lost with the program that set it.
class FakeDock final : public DockControl, public Preferences {
public:
    bool isAutoHideEnabled() const override { return m_isAutoHideEnabled; }
    void setAutoHideEnabled(bool) override;
    bool isAtBottom() const override { return m_isAtBottom; }
    Preferences* preferences() override { return m_hasPreferences ? this : nullptr; }
    void restart() override;

    Value value(const std::string& key) const override;
    void setDouble(const std::string& key, double) override;
    void setBool(const std::string& key, bool) override;
    void synchronise() override;

    // What the user did.
    void setPreference(const std::string& key, Value value) { m_stored[key] = std::move(value); }
    void setAtBottom(bool value) { m_isAtBottom = value; }
    void setHasPreferences(bool value) { m_hasPreferences = value; }
    /// The program has gone without a word.
    void forgetUnsynchronised() { m_unsynchronised.clear(); }

    /// The Dock as it runs does not come out and does not bounce.
    bool isOutOfReach() const;
    /// Each call that changes something, as "name value", in order.
    std::vector<std::string> takeCalls() { return std::exchange(m_calls, {}); }
    /// Called after each of them but a restart, after which nothing is left to do.
    void setAfterCall(std::function<void()> call) { m_afterCall = std::move(call); }

private:
    void note(std::string call);

    using Values = std::map<std::string, Value>;
    bool m_isAutoHideEnabled = false;
    bool m_isAtBottom = true;
    bool m_hasPreferences = true;
    Values m_unsynchronised;
    Values m_stored;
    Values m_running; ///< as the Dock read them
    std::vector<std::string> m_calls;
    std::function<void()> m_afterCall = [] { };
};

}
