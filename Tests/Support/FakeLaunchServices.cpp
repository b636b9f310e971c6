#include "Tests/Support/FakeLaunchServices.h"

#include <gtest/gtest.h>

#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::test {

namespace {

constexpr char kTool[] = "/usr/bin/lsappinfo";
constexpr char kAttention[] = "kLSApplicationDesiresAttentionKey";

}

std::vector<ApplicationStatus> FakeLaunchServices::runningApplications() const
{
    expectOwnQueue();
    return statuses;
}

std::vector<AttentionRequest> FakeLaunchServices::attentionRequests() const
{
    expectOwnQueue();
    return requests;
}

FakeLaunchServices::Answer FakeLaunchServices::runTool(
    const std::string& path, const Arguments& arguments)
{
    expectOwnQueue();
    EXPECT_EQ(path, kTool);
    m_runs.push_back(arguments);
    m_dispatch.spend(m_toolDelay);
    const auto& verb = arguments.at(0);
    if (auto answer = m_answers.find(verb); answer != m_answers.end())
        return answer->second;
    if (arguments == Arguments{"list"})
        return ToolResult{0, list(), ""};
    if (arguments == Arguments{"find", std::string{kAttention} + "=true"})
        return ToolResult{0, find(), ""};
    if (arguments.size() == 4 && verb == "setinfo")
        return setInfo(arguments);
    return ToolResult{1, "", "usage"};
}

std::string FakeLaunchServices::list() const
{
    std::string text;
    int index = 0;
    for (auto& [bundleIdentifier, application] : applications) {
        text += " " + std::to_string(++index) + ") \"" + application.name
            + "\" ASN:" + application.serial + ": \n    bundleID=\"" + bundleIdentifier
            + "\"\n    bundle path=\"/Applications/x.app\"\n    pid = "
            + std::to_string(application.pid) + " type=\"Foreground\" flavor=3\n";
    }
    return text;
}

std::string FakeLaunchServices::find() const
{
    std::string text;
    for (auto& [bundleIdentifier, application] : applications) {
        if (application.wantsAttention)
            text += "ASN:" + application.serial + "-\"" + application.name + "\": ";
    }
    return text + "\n";
}

ToolResult FakeLaunchServices::setInfo(const Arguments& arguments)
{
    EXPECT_EQ(arguments[1], "-app");
    EXPECT_EQ(arguments[3], std::string{kAttention} + "=false");
    for (auto& [bundleIdentifier, application] : applications) {
        if (arguments[2] != "pid:" + std::to_string(application.pid)
            && arguments[2] != bundleIdentifier)
            continue;
        application.wantsAttention = false;
        return {};
    }
    return {1, "", "err=-600"};
}

void FakeLaunchServices::expectOwnQueue() const
{
    EXPECT_FALSE(m_dispatch.isOnMain()) << "a blocking question on the main thread";
}

}
