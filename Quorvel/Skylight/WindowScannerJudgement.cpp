// What the scanner finds of one window, told rule by rule.

#include "Quorvel/Skylight/WindowScanner.h"

#include <fmt/format.h>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

namespace {

std::string sizeText(const CGWindowInfo& window)
{
    return window.bounds
        ? fmt::format("{:.0f} x {:.0f}", window.bounds->width, window.bounds->height)
        : "unknown";
}

std::vector<ChipRuleAnswer> judgeFilters(const CGWindowInfo& window)
{
    auto filter = windowFilter(window);
    auto layer = window.layer ? fmt::format("{}", *window.layer) : std::string{"unknown"};
    std::vector<ChipRuleAnswer> answers{
        {ChipRule::ordinaryLayer, filter != WindowFilter::layerNotZero, layer}};
    if (answers.back().isMet)
        answers.push_back(
            {ChipRule::largeEnough, filter != WindowFilter::boundsTooSmall, sizeText(window)});
    if (answers.back().isMet)
        answers.push_back({ChipRule::visible, filter != WindowFilter::fullyTransparent,
            fmt::format("opacity {:.2f}", window.alpha.value_or(1))});
    return answers;
}

std::vector<ChipRuleAnswer> judgeMetadata(const AXWindowMetadata& window)
{
    bool isWindow = window.role == ax::windowRole;
    std::vector<ChipRuleAnswer> answers{
        {ChipRule::windowRole, isWindow, window.role.value_or("unknown")}};
    if (!isWindow)
        return answers;
    bool isModal = window.isModal.value_or(false);
    answers.push_back({ChipRule::notModal, !isModal, isModal ? "modal" : "not modal"});
    if (isModal)
        return answers;
    bool isMinimized = window.isMinimized.value_or(false);
    answers.push_back({ChipRule::standardSubrole, isDockEligibleAXWindow(window),
        isMinimized ? "minimised" : window.subrole.value_or("none")});
    return answers;
}

}

std::vector<ChipRuleAnswer> WindowScanner::judgeOwner(const CGWindowInfo& window) const
{
    auto application
        = window.ownerPID ? m_workspace.runningApplication(*window.ownerPID) : std::nullopt;
    if (!application)
        return {{ChipRule::regularApplication, false, "its process is not known"}};
    bool isRegular = !application->isTerminated
        && application->activationPolicy == ActivationPolicy::regular
        && application->bundleIdentifier;
    std::vector<ChipRuleAnswer> answers{
        {ChipRule::regularApplication, isRegular, application->localizedName}};
    if (isRegular)
        answers.push_back(
            {ChipRule::noPartOfSystem, !isSystemBundleIdentifier(*application->bundleIdentifier),
                *application->bundleIdentifier});
    return answers;
}

std::vector<ChipRuleAnswer> WindowScanner::judge(const CGWindowInfo& window)
{
    AXCalls::Scan hungOnlyOnce(m_calls);
    auto answers = judgeOwner(window);
    auto add = [&](std::vector<ChipRuleAnswer> more) {
        answers.insert(answers.end(), more.begin(), more.end());
    };
    if (answers.back().isMet)
        add(judgeFilters(window));
    if (!answers.back().isMet || !window.windowNumber)
        return answers;
    auto [metadataByID, hasList] = copyAXWindowMetadataByID(*window.ownerPID);
    auto metadata = metadataByID.find(*window.windowNumber);
    bool isListed = metadata != metadataByID.end();
    // An application that does not answer is believed.
    add({{ChipRule::listedByApplication, isListed || !hasList,
        isListed      ? "listed"
            : hasList ? "not listed"
                      : "the application does not answer"}});
    if (isListed)
        add(judgeMetadata(metadata->second));
    return answers;
}

}
