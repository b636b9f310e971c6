#include "Quorvel/WindowExplanation.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include <fmt/format.h>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/ApplicationMatching.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowScanner.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

/// Of an identifier or a key in the settings.
constexpr std::size_t kLongestText = 1024;

ControlReply declined(const std::string& problem)
{
    return {1, "", "quorvel: " + problem + "\n"};
}

/// On one line, without anything that a terminal would act on.
std::string plain(std::string_view text)
{
    std::string clean{text};
    for (char& letter : clean) {
        auto code = static_cast<unsigned char>(letter);
        if (code < 0x20 || code == 0x7F)
            letter = ' ';
    }
    return clean;
}

void addLine(std::string& text, std::string_view name, std::string_view value)
{
    text += fmt::format("{}: {}\n", name, plain(value));
}

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

std::optional<std::uint32_t> numberIn(std::string_view text)
{
    bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (isHex)
        text.remove_prefix(2);
    std::uint32_t number = 0;
    auto* end = text.data() + text.size();
    auto parsed = std::from_chars(text.data(), end, number, isHex ? 16 : 10);
    if (parsed.ec != std::errc{} || parsed.ptr != end)
        return std::nullopt;
    return number;
}

}

WindowExplanation::WindowExplanation(const Platform& platform, const WindowStore& windowStore,
    const BarViewModel& viewModel, UserSettings& settings)
    : m_platform(platform)
    , m_windowStore(windowStore)
    , m_viewModel(viewModel)
    , m_settings(settings)
{
}

bool WindowExplanation::isRequest(const std::vector<std::string>& arguments)
{
    return (arguments.size() == 2 && arguments[0] == "--explain")
        || ((arguments.size() == 2 || arguments.size() == 3) && arguments[0] == "--match");
}

ControlReply WindowExplanation::answer(const std::vector<std::string>& arguments)
{
    auto window = find(arguments[1]);
    if (!window)
        return declined(
            fmt::format("the system lists no window '{}'; --state does", plain(arguments[1])));
    if (arguments[0] == "--explain")
        return {0, explain(*window), ""};
    return mend(*window, arguments.size() == 3 ? std::optional{arguments[2]} : std::nullopt);
}

std::optional<CGWindowInfo> WindowExplanation::find(const std::string& text) const
{
    auto focused = m_viewModel.focusedWindowID.value();
    auto number = text == "focused" && focused ? std::optional{raw(*focused)} : numberIn(text);
    if (!number)
        return std::nullopt;
    std::vector<CGWindowInfo> windows;
    m_platform.windowServer.enumerateWindows(kWindowListExcludeDesktopElements,
        [&](const CGWindowInfo& window) { windows.push_back(window); });
    bool isNative = text.starts_with("0x") || text.starts_with("0X");
    for (auto& window : windows) {
        if (!isNative && window.windowNumber == WindowID{*number})
            return window;
    }
    for (auto& window : windows) {
        if (window.windowNumber
            && m_platform.windowServer.nativeWindowNumber(*window.windowNumber) == *number)
            return window;
    }
    return std::nullopt;
}

// MARK: Explaining

std::string WindowExplanation::explain(const CGWindowInfo& window) const
{
    WindowScanner scanner(m_platform.accessibility, m_platform.windowServer, m_platform.displays,
        m_platform.workspace, m_platform.trace);
    auto rules = scanner.judge(window);
    auto id = window.windowNumber.value_or(WindowID{});
    auto native = m_platform.windowServer.nativeWindowNumber(id);
    auto* tracked = m_windowStore.window(id);
    std::string text;
    addLine(text, "window",
        native ? fmt::format("{} (0x{:x})", raw(id), *native) : fmt::format("{}", raw(id)));
    addLine(text, "title", tracked ? tracked->windowTitle : window.windowName.value_or(""));
    addLine(text, "process",
        fmt::format("{} ({})", window.ownerPID ? raw(*window.ownerPID) : 0,
            window.ownerName.value_or("unknown")));
    addLine(text, "chip", chipText(id, tracked != nullptr));
    for (auto& answer : rules)
        addLine(text, answer.isMet ? "yes" : "no",
            fmt::format("{}: {}", nameOf(answer.rule), answer.found));
    addMatch(text, window);
    return text;
}

std::string WindowExplanation::chipText(WindowID window, bool isTracked) const
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

void WindowExplanation::addMatch(std::string& text, const CGWindowInfo& window) const
{
    auto* matching = m_platform.applicationMatching;
    auto match
        = matching && window.windowNumber ? matching->match(*window.windowNumber) : std::nullopt;
    auto application = window.ownerPID ? m_platform.workspace.runningApplication(*window.ownerPID)
                                       : std::nullopt;
    auto identifier = match ? match->bundleIdentifier
        : application       ? application->bundleIdentifier.value_or("")
                            : "";
    if (identifier.empty())
        return addLine(text, "application", "unknown");
    addLine(text, "application", identifier);
    addLine(text, "matched by", match ? match->road : "what the system says of its process");
    for (auto& [name, value] : match ? match->facts : decltype(match->facts){})
        addLine(text, name, value);
    if (match && !match->key.empty())
        addLine(text, "to mend",
            fmt::format("quorvel --match {} APPLICATION", raw(*window.windowNumber)));
}

// MARK: Mending

ControlReply WindowExplanation::mend(
    const CGWindowInfo& window, const std::optional<std::string>& application)
{
    auto* matching = m_platform.applicationMatching;
    auto match = matching ? matching->match(*window.windowNumber) : std::nullopt;
    if (!match)
        return declined("this system says itself which application a window belongs to");
    if (match->key.empty() || match->key.size() > kLongestText)
        return declined("the window says nothing of itself that a match could be kept for");
    auto mended = m_settings.mendedMatches();
    if (!application) {
        mended.erase(match->key);
    } else {
        std::string_view identifier = *application;
        if (identifier.ends_with(".desktop"))
            identifier.remove_suffix(std::string_view{".desktop"}.size());
        if (identifier.size() > kLongestText || !m_platform.workspace.applicationURL(identifier))
            return declined(fmt::format("no application '{}' is installed", plain(identifier)));
        mended[match->key] = identifier;
        if (mended.size() > kMostMended)
            return declined("too many matches are kept already; --match WINDOW removes one");
    }
    m_settings.setMendedMatches(std::move(mended));
    return {};
}

}
