#include "Hosts/MacOS/System/MacLaunchServices.h"

#include "Hosts/MacOS/System/CFValues.h"
#include "Hosts/Posix/ToolRun.h"

namespace quorvel {

namespace {

ApplicationStatus statusFrom(CFDictionaryRef information)
{
    ApplicationStatus status;
    status.bundleIdentifier = textFrom(valueIn(information, CFSTR("CFBundleIdentifier")));
    // What an application without a badge has here is no dictionary.
    if (const auto label = dictionaryFrom(valueIn(information, CFSTR("StatusLabel"))))
        status.label = textFrom(valueIn(label, CFSTR("label")));
    return status;
}

}

std::vector<ApplicationStatus> MacLaunchServices::runningApplications() const
{
    std::vector<ApplicationStatus> statuses;
    if (!m_symbols.copyRunningApplicationArray || !m_symbols.copyApplicationInformation)
        return statuses;
    const AutoreleasePool pool;
    const auto serials
        = CFRef<CFTypeRef>::adopt(m_symbols.copyRunningApplicationArray(kLSDefaultSessionID));
    const auto list = arrayFrom(serials.get());
    if (!list)
        return statuses;
    forEachIn(list, [&](CFTypeRef serial) {
        const auto information = CFRef<CFTypeRef>::adopt(
            m_symbols.copyApplicationInformation(kLSDefaultSessionID, serial, nullptr));
        if (const auto dictionary = dictionaryFrom(information.get()))
            statuses.push_back(statusFrom(dictionary));
    });
    return statuses;
}

std::optional<ToolResult> MacLaunchServices::runTool(
    const std::string& path, const std::vector<std::string>& arguments)
{
    return posix::runTool(path, arguments);
}

}
