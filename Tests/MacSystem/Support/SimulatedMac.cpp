#include "Tests/MacSystem/Support/SimulatedMac.h"

namespace quorvel::test {

namespace {

SimulatedMac* s_current = nullptr;

}

SimulatedMac::SimulatedMac(FakeDesktop& desktop) : m_desktop(desktop)
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

}
