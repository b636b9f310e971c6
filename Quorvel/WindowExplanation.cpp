#include "Quorvel/WindowExplanation.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include <fmt/format.h>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Platform/ApplicationMatching.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/WindowServer.h"

namespace quorvel {

namespace {

ControlReply declined(const std::string& problem)
{
    return {1, "", "quorvel: " + problem + "\n"};
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
    , m_viewModel(viewModel)
    , m_facts(platform, windowStore, viewModel)
    , m_mending(platform.workspace, settings)
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
        return declined(fmt::format(
            "the system lists no window '{}'; --state does", withoutControls(arguments[1])));
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

std::string WindowExplanation::explain(const CGWindowInfo& window) const
{
    std::string text;
    for (auto& fact : m_facts.of(window))
        text += fmt::format("{}: {}\n", fact.name, fact.value);
    return text;
}

ControlReply WindowExplanation::mend(
    const CGWindowInfo& window, const std::optional<std::string>& application)
{
    auto* matching = m_platform.applicationMatching;
    auto match = matching ? matching->match(*window.windowNumber) : std::nullopt;
    if (!match)
        return declined("this system says itself which application a window belongs to");
    auto refusal = m_mending.mend(*match, application);
    return refusal.empty() ? ControlReply{} : declined(refusal);
}

}
