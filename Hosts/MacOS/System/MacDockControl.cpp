#include "Hosts/MacOS/System/MacDockControl.h"

#include "Hosts/MacOS/System/CFValues.h"
#include "Hosts/Posix/ToolRun.h"

namespace quorvel {

namespace {

CFStringRef domain()
{
    return CFSTR("com.apple.dock");
}

void set(const std::string& key, CFTypeRef value)
{
    if (const auto name = makeString(key))
        CFPreferencesSetAppValue(name.get(), value, domain());
}

}

bool MacDockControl::isAvailable(const PrivateSymbols& symbols)
{
    return symbols.coreDockGetAutoHideEnabled && symbols.coreDockSetAutoHideEnabled;
}

bool MacDockControl::isAutoHideEnabled() const
{
    return m_symbols.coreDockGetAutoHideEnabled();
}

void MacDockControl::setAutoHideEnabled(bool isOn)
{
    m_symbols.coreDockSetAutoHideEnabled(isOn);
}

bool MacDockControl::isAtBottom() const
{
    std::int32_t orientation = 0;
    std::int32_t pinning = 0;
    if (m_symbols.coreDockGetOrientationAndPinning)
        m_symbols.coreDockGetOrientationAndPinning(&orientation, &pinning);
    constexpr std::int32_t kBottom = 2;
    return orientation == kBottom;
}

void MacDockControl::restart()
{
    posix::runTool("/usr/bin/killall", {"Dock"});
}

Preferences::Value MacDockControl::value(const std::string& key) const
{
    const auto name = makeString(key);
    const auto value = name
        ? CFRef<CFTypeRef>::adopt(CFPreferencesCopyAppValue(name.get(), domain()))
        : CFRef<CFTypeRef>{};
    if (!value)
        return Missing{};
    if (const auto truth = truthFrom(value.get()))
        return *truth;
    if (const auto number = doubleFrom(value.get()))
        return *number;
    return OtherType{};
}

void MacDockControl::setDouble(const std::string& key, double number)
{
    set(key, makeNumber(number).get());
}

void MacDockControl::setBool(const std::string& key, bool isOn)
{
    set(key, isOn ? kCFBooleanTrue : kCFBooleanFalse);
}

void MacDockControl::synchronise()
{
    CFPreferencesAppSynchronize(domain());
}

}
