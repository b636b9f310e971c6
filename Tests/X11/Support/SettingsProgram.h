#pragma once

#include <functional>
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
    /// Of what goes by itself: it is brought up before each look.
    testing::AssertionResult showsForAMoment(
        AtspiRole, const std::string& name, const std::function<bool()>& bringUp);
    testing::AssertionResult hasState(
        AtspiRole, const std::string& name, AtspiStateType, bool isSet = true);
    /// Presses it as a screen reader does.
    testing::AssertionResult perform(
        AtspiRole, const std::string& name, const std::string& action = "click");
    /// Clicks the middle of it.
    void click(const ScreenReader::Element&);
    Keyboard& keyboard() { return m_keyboard; }

    /// Leaves the first page for the one at this place, with the keyboard.
    void turnTo(int page);
    /// It, once its page is seen and it can be used; null after a failure.
    ScreenReader::Element find(AtspiRole, const std::string& name);
    /// Whether this becomes true of it.
    static testing::AssertionResult becomes(const ScreenReader::Element&,
        const std::function<bool(const ScreenReader::Element&)>& condition);
    /// Opens a choice's list with the pointer, and takes what is at this place of it with the
    /// keyboard, if that has this title.
    testing::AssertionResult choose(
        const ScreenReader::Element&, int place, const std::string& title);

private:
    /// Its place on the screen, in pixels; empty if it is not seen.
    Frame frame(const ScreenReader::Element&);
    bool hasKeyboard();
    template <typename Question>
    testing::AssertionResult ask(AtspiRole, const std::string& name, Question);

    /// Set before the screen reader's library has threads, which may read variables.
    struct Surroundings {
        Surroundings();
    };

    Surroundings m_surroundings;
    Desktop& m_desktop;
    ScreenReader m_reader;
    Keyboard m_keyboard;
    Pointer m_pointer;
};

}
