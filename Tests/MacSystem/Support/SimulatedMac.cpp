#include "Tests/MacSystem/Support/SimulatedMac.h"

#include <algorithm>

namespace quorvel::test {

namespace {

SimulatedMac* s_current = nullptr;

}

SimulatedMac::SimulatedMac(FakeDesktop& desktop)
    : m_desktop(desktop)
    , m_dispatch(desktop.dispatch())
{
    s_current = this;
}

SimulatedMac::~SimulatedMac()
{
    s_current = nullptr;
}

SimulatedMac& SimulatedMac::current()
{
    return *s_current;
}

const Value* SimulatedMac::answerFor(const std::string& name) const
{
    const auto found = m_answers.find(name);
    return found == m_answers.end() ? nullptr : &found->second;
}

RunLoopThread* SimulatedMac::thread() const
{
    return m_dispatch.running();
}

std::unique_ptr<RunLoopThread> SimulatedMac::ThreadWatch::startThread(
    std::string_view name, QualityOfService quality)
{
    auto thread = m_dispatch.startThread(name, quality);
    m_threads.push_back(thread.get());
    return thread;
}

RunLoopThread* SimulatedMac::ThreadWatch::running() const
{
    const auto found = std::ranges::find_if(
        m_threads, [this](const RunLoopThread* thread) { return m_dispatch.isOn(*thread); });
    return found == m_threads.end() ? nullptr : *found;
}

}
