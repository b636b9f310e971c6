#include "Tests/X11/Support/SettingsProgram.h"

#include <algorithm>
#include <cstdlib>

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

namespace {

constexpr char kProgram[] = "quorvel-settings";
constexpr char kTitle[] = "Quorvel Settings";

}

SettingsProgram::SettingsProgram(const XServer& server, Desktop& desktop)
    : m_desktop(desktop)
    , m_reader(server)
    , m_keyboard(server.display())
    , m_pointer(server.display())
{
    setenv("GSK_RENDERER", "cairo", 1);
    setenv("GSETTINGS_BACKEND", "memory", 1);
}

testing::AssertionResult SettingsProgram::isActive()
{
    return eventually([&] { return window() != XCB_NONE && m_desktop.activeWindow() == window(); });
}

xcb_window_t SettingsProgram::window()
{
    return m_desktop.clientTitled(kTitle).value_or(XCB_NONE);
}

std::size_t SettingsProgram::windowCount()
{
    const auto clients = m_desktop.clients();
    return static_cast<std::size_t>(std::ranges::count_if(
        clients, [&](auto client) { return m_desktop.title(client) == kTitle; }));
}

template <typename Question>
testing::AssertionResult SettingsProgram::ask(
    AtspiRole role, const std::string& name, Question question)
{
    return eventually([&] { return m_reader.seek(kProgram, role, name, question) != nullptr; })
        << name;
}

testing::AssertionResult SettingsProgram::shows(AtspiRole role, const std::string& name)
{
    return ask(role, name, [](auto&) { return true; });
}

testing::AssertionResult SettingsProgram::lacks(AtspiRole role, const std::string& name)
{
    const auto isAny = [](auto&) { return true; };
    return eventually([&] { return !m_reader.seek(kProgram, role, name, isAny); }) << name;
}

testing::AssertionResult SettingsProgram::hasState(
    AtspiRole role, const std::string& name, AtspiStateType state, bool isSet)
{
    return ask(
        role, name, [&](auto& element) { return ScreenReader::has(element, state) == isSet; });
}

testing::AssertionResult SettingsProgram::isDescribed(
    AtspiRole role, const std::string& name, const std::string& description)
{
    return ask(role, name, [&](auto& element) {
        return ScreenReader::description(element).find(description) != std::string::npos;
    });
}

testing::AssertionResult SettingsProgram::perform(
    AtspiRole role, const std::string& name, const std::string& action)
{
    return ask(role, name, [&](auto& element) {
        return ScreenReader::has(element, ATSPI_STATE_SENSITIVE)
            && ScreenReader::perform(element, action);
    });
}

Frame SettingsProgram::frame(AtspiRole role, const std::string& name)
{
    // What the toolkit says begins within the border that it draws around its window.
    const auto isSeen = [](auto& element) { return ScreenReader::frame(element).width > 0; };
    const auto whole = m_reader.seek(kProgram, ATSPI_ROLE_FRAME, kTitle, isSeen);
    const auto part = m_reader.seek(kProgram, role, name, isSeen);
    if (!whole || !part)
        return {};
    const auto outer = m_desktop.frame(window());
    const auto inner = ScreenReader::frame(whole);
    auto place = ScreenReader::frame(part);
    place.x += outer.x + (outer.width - inner.width) / 2;
    place.y += outer.y + (outer.height - inner.height) / 2;
    return place;
}

void SettingsProgram::click(AtspiRole role, const std::string& name)
{
    EXPECT_TRUE(eventually([&] { return frame(role, name).width > 0; })) << name;
    m_pointer.click(frame(role, name));
}

}
