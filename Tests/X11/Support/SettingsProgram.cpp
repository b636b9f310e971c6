#include "Tests/X11/Support/SettingsProgram.h"

#include <algorithm>
#include <cstdlib>

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

namespace {

constexpr char kProgram[] = "quorvel-settings";
constexpr char kTitle[] = "Quorvel Settings";

// Keys by their place.
constexpr std::uint8_t kReturn = 36;
constexpr std::uint8_t kControl = 37;
constexpr std::uint8_t kHome = 110;
constexpr std::uint8_t kDown = 116;
constexpr std::uint8_t kPageDown = 117;

}

SettingsProgram::SettingsProgram(const XServer& server, Desktop& desktop)
    : m_desktop(desktop)
    , m_reader(server)
    , m_keyboard(server.display())
    , m_pointer(server.display())
{
}

SettingsProgram::Surroundings::Surroundings()
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

testing::AssertionResult SettingsProgram::showsForAMoment(
    AtspiRole role, const std::string& name, const std::function<bool()>& bringUp)
{
    const auto isAny = [](auto&) { return true; };
    return eventually([&] {
        return bringUp() && m_reader.seek(kProgram, role, name, isAny) != nullptr;
    }) << name;
}

testing::AssertionResult SettingsProgram::hasState(
    AtspiRole role, const std::string& name, AtspiStateType state, bool isSet)
{
    return ask(
        role, name, [&](auto& element) { return ScreenReader::has(element, state) == isSet; });
}

testing::AssertionResult SettingsProgram::perform(
    AtspiRole role, const std::string& name, const std::string& action)
{
    return ask(role, name, [&](auto& element) {
        return ScreenReader::has(element, ATSPI_STATE_SENSITIVE)
            && ScreenReader::perform(element, action);
    });
}

Frame SettingsProgram::frame(const ScreenReader::Element& part)
{
    // What the toolkit says begins within the border that it draws around its window.
    const auto isSeen = [](auto& element) { return ScreenReader::frame(element).width > 0; };
    const auto whole = m_reader.seek(kProgram, ATSPI_ROLE_FRAME, kTitle, isSeen);
    if (!whole || !isSeen(part))
        return {};
    const auto outer = m_desktop.frame(window());
    const auto inner = ScreenReader::frame(whole);
    auto place = ScreenReader::frame(part);
    place.x += outer.x + (outer.width - inner.width) / 2;
    place.y += outer.y + (outer.height - inner.height) / 2;
    return place;
}

void SettingsProgram::click(const ScreenReader::Element& element)
{
    m_pointer.click(frame(element));
}

/// The toolkit gives it to a window of its own within.
bool SettingsProgram::hasKeyboard()
{
    auto& connection = m_desktop.connection();
    const auto focus
        = connection.wait(xcb_get_input_focus_reply, xcb_get_input_focus(connection.get()));
    if (!focus)
        return false;
    const auto tree
        = connection.wait(xcb_query_tree_reply, xcb_query_tree(connection.get(), focus->focus));
    return focus->focus == window() || (tree && tree->parent == window());
}

void SettingsProgram::turnTo(int page)
{
    EXPECT_TRUE(eventually([&] { return hasKeyboard(); }));
    EXPECT_TRUE(shows(ATSPI_ROLE_PAGE_TAB, ""));
    for (; page > 0; --page)
        m_keyboard.chord(kControl, kPageDown);
}

ScreenReader::Element SettingsProgram::find(AtspiRole role, const std::string& name)
{
    ScreenReader::Element found;
    const auto isUsable = [](auto& element) {
        return ScreenReader::has(element, ATSPI_STATE_SENSITIVE)
            && ScreenReader::frame(element).width > 0;
    };
    EXPECT_TRUE(eventually([&] {
        return (found = m_reader.seek(kProgram, role, name, isUsable)) != nullptr;
    })) << name;
    return found;
}

testing::AssertionResult SettingsProgram::becomes(const ScreenReader::Element& element,
    const std::function<bool(const ScreenReader::Element&)>& condition)
{
    return eventually([&] {
        atspi_accessible_clear_cache(element.get());
        return condition(element);
    });
}

testing::AssertionResult SettingsProgram::choose(
    const ScreenReader::Element& choice, int place, const std::string& title)
{
    const auto hasTitle = [&](auto& option) {
        const auto isAny = [](auto&) { return true; };
        return ScreenReader::has(option, ATSPI_STATE_FOCUSED)
            && ScreenReader::seekIn(option, ATSPI_ROLE_LABEL, title, isAny);
    };
    const auto offers = [&](auto isRight) {
        return eventually([&] {
            return ScreenReader::seekIn(choice, ATSPI_ROLE_LIST_ITEM, "", isRight) != nullptr;
        });
    };
    click(choice);
    const auto isFocused
        = [](auto& option) { return ScreenReader::has(option, ATSPI_STATE_FOCUSED); };
    if (auto answer = offers(isFocused); !answer)
        return answer << "it does not open";
    m_keyboard.tap(kHome);
    for (; place > 0; --place)
        m_keyboard.tap(kDown);
    if (auto answer = offers(hasTitle); !answer)
        return answer << "the keys do not lead to " << title;
    m_keyboard.tap(kReturn);
    return testing::AssertionSuccess();
}

}
