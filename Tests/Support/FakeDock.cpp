#include "Tests/Support/FakeDock.h"

#include <fmt/format.h>

namespace quorvel::test {

namespace {

template <typename Type>
bool holds(const std::map<std::string, Preferences::Value>& values, const char* key, Type wanted)
{
    auto found = values.find(key);
    auto* value = found == values.end() ? nullptr : std::get_if<Type>(&found->second);
    return value && *value == wanted;
}

}

void FakeDock::setAutoHideEnabled(bool isOn)
{
    m_isAutoHideEnabled = isOn;
    note(fmt::format("auto-hide {}", isOn));
}

void FakeDock::restart()
{
    m_running = m_stored;
    m_calls.emplace_back("restart");
}

Preferences::Value FakeDock::value(const std::string& key) const
{
    for (auto* values : {&m_unsynchronised, &m_stored}) {
        if (auto found = values->find(key); found != values->end())
            return found->second;
    }
    return Missing{};
}

void FakeDock::setDouble(const std::string& key, double number)
{
    m_unsynchronised[key] = number;
    note(fmt::format("{} {}", key, number));
}

void FakeDock::setBool(const std::string& key, bool isOn)
{
    m_unsynchronised[key] = isOn;
    note(fmt::format("{} {}", key, isOn));
}

void FakeDock::synchronise()
{
    for (auto& [key, value] : std::exchange(m_unsynchronised, {}))
        m_stored[key] = value;
    note("synchronise");
}

bool FakeDock::isOutOfReach() const
{
    return m_isAutoHideEnabled && holds(m_running, "autohide-delay", 1000.0)
        && holds(m_running, "no-bouncing", true);
}

void FakeDock::note(std::string call)
{
    m_calls.push_back(std::move(call));
    m_afterCall();
}

}
