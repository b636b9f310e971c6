#include <gtest/gtest.h>

#include "Hosts/MacOS/System/CFValues.h"
#include "Tests/MacSystem/Support/SimulatedMac.h"

using namespace quorvel::test;

namespace {

FakeDock& dock()
{
    return SimulatedMac::current().desktop().dock();
}

std::string textOf(CFStringRef string)
{
    return quorvel::textFrom(string).value_or("no text");
}

}

Boolean simulatedGetAutoHideEnabled()
{
    return dock().isAutoHideEnabled();
}

void simulatedSetAutoHideEnabled(Boolean isOn)
{
    dock().setAutoHideEnabled(isOn);
}

void simulatedGetOrientationAndPinning(std::int32_t* orientation, std::int32_t* pinning)
{
    *orientation = dock().isAtBottom() ? 2 : 3;
    *pinning = 2;
}

CFTypeRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application)
{
    EXPECT_EQ(textOf(application), "com.apple.dock");
    const auto* answer = SimulatedMac::current().answerFor(textOf(key));
    return answer ? give<CFTypeRef>(*answer) : nullptr;
}

void CFPreferencesSetAppValue(CFStringRef key, CFTypeRef value, CFStringRef application)
{
    EXPECT_EQ(textOf(application), "com.apple.dock");
    if (const auto truth = quorvel::truthFrom(value))
        return dock().setBool(textOf(key), *truth);
    if (const auto number = quorvel::doubleFrom(value))
        return dock().setDouble(textOf(key), *number);
    ADD_FAILURE() << "a preference of another type";
}

Boolean CFPreferencesAppSynchronize(CFStringRef application)
{
    EXPECT_EQ(textOf(application), "com.apple.dock");
    dock().synchronise();
    return true;
}
