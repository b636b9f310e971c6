#pragma once

#include <string>

#include "Tests/X11/Support/Desktop.h"
#include "Tests/X11/Support/Keyboard.h"
#include "Tests/X11/Support/Pointer.h"
#include "Tests/X11/Support/ScreenReader.h"

namespace quorvel::x11tests {

/// The window with the settings, as its user and a screen reader find it. Each question waits until
/// there is an answer.
class SettingsProgram {
public:
    /// Those that are started from now on do without a graphics card, and with nothing of the
    /// user's that runs the tests.
    SettingsProgram(const XServer&, Desktop&);

    /// Whether the window is there, and the active one.
    testing::AssertionResult isActive();
    xcb_window_t window();
    std::size_t windowCount();

    /// Whether there is such a thing, in this state.
    testing::AssertionResult shows(AtspiRole, const std::string& name);
    testing::AssertionResult lacks(AtspiRole, const std::string& name);
    testing::AssertionResult hasState(
        AtspiRole, const std::string& name, AtspiStateType, bool isSet = true);
    testing::AssertionResult isDescribed(
        AtspiRole, const std::string& name, const std::string& description);
    /// Presses it as a screen reader does.
    testing::AssertionResult perform(
        AtspiRole, const std::string& name, const std::string& action = "click");
    /// Its place on the screen, in pixels; empty if it is not seen.
    Frame frame(AtspiRole, const std::string& name);
    /// Clicks the middle of it.
    void click(AtspiRole, const std::string& name);
    Keyboard& keyboard() { return m_keyboard; }

private:
    template <typename Question>
    testing::AssertionResult ask(AtspiRole, const std::string& name, Question);

    Desktop& m_desktop;
    ScreenReader m_reader;
    Keyboard m_keyboard;
    Pointer m_pointer;
};

}
