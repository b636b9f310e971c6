#include "Quorvel/WindowFacts.h"

#include <algorithm>

#include <fmt/format.h>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Platform/ApplicationMatching.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowScanner.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

std::string_view nameOf(ChipRule rule)
{
    switch (rule) {
    case ChipRule::regularApplication:
        return "its application has windows for its user";
    case ChipRule::noPartOfSystem:
        return "it is no part of the system";
    case ChipRule::ordinaryLayer:
        return "it lies among ordinary windows (layer 0)";
    case ChipRule::largeEnough:
        return "it is at least 40 x 40";
    case ChipRule::visible:
        return "it is not transparent";
    case ChipRule::listedByApplication:
        return "its application lists it";
    case ChipRule::windowRole:
        return "its role is AXWindow";
    case ChipRule::notModal:
        return "it is not modal";
    case ChipRule::standardSubrole:
        return "it is a standard window, or minimised";
    }
    return {};
}

std::string told(MatchKind kind)
{
    switch (kind) {
    case MatchKind::nothing:
        return tr("No installed application fits");
    case MatchKind::userChoice:
        return tr("Chosen by you");
    case MatchKind::applicationID:
        return tr("Found by the window's application ID");
    case MatchKind::windowClass:
        return tr("Found by the window's class");
    case MatchKind::similarName:
        return tr("Found by a name that resembles the window's class");
    case MatchKind::program:
        return tr("Found by the program's name");
    }
    return {};
}

WindowFact matchFact(MatchFact fact, const std::string& found)
{
    auto value = withoutControls(found);
    switch (fact) {
    case MatchFact::applicationID:
        return {"application id", value, trFormat("Application ID: {}", value)};
    case MatchFact::windowClass:
        return {"class", value, trFormat("Class: {}", value)};
    case MatchFact::instance:
        return {"instance", value, trFormat("Instance: {}", value)};
    case MatchFact::executable:
        return {"executable", value, trFormat("Program: {}", value)};
    case MatchFact::desktopFile:
        return {"desktop file", value};
    }
    return {};
}

}

std::string withoutControls(std::string_view text)
{
    std::string clean{text};
    for (char& letter : clean) {
        auto code = static_cast<unsigned char>(letter);
        if (code < 0x20 || code == 0x7F)
            letter = ' ';
    }
    return clean;
}

std::optional<CGWindowInfo> listedWindow(const WindowList& list, WindowID id)
{
    std::optional<CGWindowInfo> found;
    list.enumerateWindows(kWindowListExcludeDesktopElements, [&](const CGWindowInfo& window) {
        if (window.windowNumber == id)
            found = window;
    });
    return found;
}

WindowFacts::WindowFacts(
    const Platform& platform, const WindowStore& windowStore, const BarViewModel& viewModel)
    : m_platform(platform)
    , m_windowStore(windowStore)
    , m_viewModel(viewModel)
{
}

std::vector<WindowFact> WindowFacts::of(const CGWindowInfo& window) const
{
    auto id = window.windowNumber.value_or(WindowID{});
    auto native = m_platform.windowServer.nativeWindowNumber(id);
    auto* tracked = m_windowStore.window(id);
    auto process = window.ownerPID ? raw(*window.ownerPID) : 0;
    std::vector<WindowFact> facts{
        {"window", native ? fmt::format("{} (0x{:x})", raw(id), *native) : std::to_string(raw(id))},
        {"title", withoutControls(tracked ? tracked->windowTitle : window.windowName.value_or(""))},
        {"process",
            fmt::format("{} ({})", process, withoutControls(window.ownerName.value_or("unknown"))),
            process > 0 ? trFormat("Process: {}", process) : std::string{}},
        {"chip", chipText(id, tracked != nullptr)}};
    addRules(facts, window);
    addMatch(facts, window);
    return facts;
}

/// A menu tells the outcome: whoever wants each rule asks for it.
void WindowFacts::addRules(std::vector<WindowFact>& facts, const CGWindowInfo& window) const
{
    WindowScanner scanner(m_platform.accessibility, m_platform.windowServer, m_platform.displays,
        m_platform.workspace, m_platform.trace);
    bool isMet = true;
    for (auto& answer : scanner.judge(window)) {
        isMet &= answer.isMet;
        facts.push_back({answer.isMet ? "yes" : "no",
            fmt::format("{}: {}", nameOf(answer.rule), withoutControls(answer.found))});
    }
    facts.back().told = isMet ? tr("On the bar as an ordinary window of an application")
                              : tr("On the bar, though no longer an ordinary window");
}

std::string WindowFacts::chipText(WindowID window, bool isTracked) const
{
    std::string spaces;
    for (auto& [space, chips] : m_viewModel.chipsBySpace.value()) {
        if (std::ranges::find(chips, window, &ChipData::id) != chips.end())
            spaces += (spaces.empty() ? "" : ", ") + std::to_string(raw(space));
    }
    if (!spaces.empty())
        return "yes, on space " + spaces;
    return isTracked ? "no, it is on no space" : "no";
}

void WindowFacts::addMatch(std::vector<WindowFact>& facts, const CGWindowInfo& window) const
{
    auto* matching = m_platform.applicationMatching;
    auto match
        = matching && window.windowNumber ? matching->match(*window.windowNumber) : std::nullopt;
    auto application = window.ownerPID ? m_platform.workspace.runningApplication(*window.ownerPID)
                                       : std::nullopt;
    auto identifier = withoutControls(match ? match->bundleIdentifier
            : application                   ? application->bundleIdentifier.value_or("")
                                            : "");
    if (identifier.empty())
        return facts.push_back({"application", "unknown", tr("No installed application fits")});
    auto name = m_viewModel.appName(identifier);
    facts.push_back({"application", identifier,
        trFormat("Application: {}",
            name == identifier ? identifier : fmt::format("{} ({})", name, identifier))});
    facts.push_back({"matched by", match ? match->road : "what the system says of its process",
        match ? told(match->kind) : tr("Found by what the system says")});
    for (auto& [fact, value] : match ? match->facts : decltype(match->facts){})
        facts.push_back(matchFact(fact, value));
    if (match && !match->key.empty())
        facts.push_back(
            {"to mend", fmt::format("quorvel --match {} APPLICATION", raw(*window.windowNumber))});
}

}
