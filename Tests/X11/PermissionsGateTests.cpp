#include <xkbcommon/xkbcommon-keysyms.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"
#include "Tests/X11/Support/ScreenReader.h"

namespace quorvel::x11tests {

/// A rehearsal, since nothing has to be granted here.
class AccessiblePermissionsGate : public UnderEachManager {
protected:
    /// Until it has the keyboard and knows where the manager has put it.
    testing::AssertionResult comesUp(ScreenReader& reader)
    {
        const auto isThere = [&] { return (window = desktop.clientTitled("Quorvel Setup")); };
        if (auto answer = eventually(isThere); !answer)
            return answer << "no window";
        if (auto answer = becomesActive(*window); !answer)
            return answer << "it is not active";
        const auto hasKeyboard = [&] {
            const auto button = reader.named("quorvel", "Request Access");
            return button && ScreenReader::has(button, ATSPI_STATE_FOCUSED);
        };
        if (auto answer = eventually(hasKeyboard); !answer)
            return answer << "no keyboard";
        if (auto answer = desktop.finishRequests(); !answer)
            return answer;
        return eventually([&] {
            const auto surface = reader.surfaceOf("quorvel");
            return surface && ScreenReader::frame(surface) == desktop.contentFrame(*window);
        }) << "it is sought elsewhere";
    }
    static testing::AssertionResult shows(ScreenReader& reader, const std::string& text)
    {
        return eventually([&] { return reader.named("quorvel", text) != nullptr; }) << text;
    }
    static bool isRole(const ScreenReader::Element& element, AtspiRole role)
    {
        return element && atspi_accessible_get_role(element.get(), nullptr) == role;
    }

    std::optional<xcb_window_t> window;
    Keyboard keyboard{server.display()};
};

// Faults: a window that comes up behind or without the keyboard, or a reader that is sent to where
// it was not put; buttons that real presses or keys do not reach; the bar that does not follow, or
// ends with the window; a closing that leaves a program that nobody sees, or an error.
TEST_P(AccessiblePermissionsGate, isWorkedThroughWithPointerAndKeysOrClosed)
{
    ScreenReader reader{server};
    {
        Bar bar{server, {"--show-permissions-gate"}};
        ASSERT_TRUE(comesUp(reader));
        EXPECT_TRUE(isRole(reader.surfaceOf("quorvel"), ATSPI_ROLE_FRAME));
        EXPECT_TRUE(isRole(reader.named("quorvel", "Accessibility, Required"), ATSPI_ROLE_PANEL));
        EXPECT_EQ(run({"--state"}).error, "quorvel: the bar is waiting for permissions\n");
        pointer.click(ScreenReader::frame(reader.named("quorvel", "Request Access")));
        EXPECT_TRUE(shows(reader, "Accessibility, Granted"));
        EXPECT_FALSE(ScreenReader::has(reader.named("quorvel", "Continue"), ATSPI_STATE_ENABLED));
        for (const auto key : {XKB_KEY_Escape, XKB_KEY_Tab, XKB_KEY_Tab, XKB_KEY_space})
            keyboard.type(key);
        EXPECT_TRUE(shows(reader, "Screen Recording, Granted"));
        pointer.click(ScreenReader::frame(reader.named("quorvel", "Continue")));
        EXPECT_TRUE(bar.appears());
        EXPECT_TRUE(eventually([&] { return !desktop.clientTitled("Quorvel Setup"); }));
        EXPECT_TRUE(bar.isRunning());
    }
    Bar bar{server, {"--show-permissions-gate=accessibility"}};
    ASSERT_TRUE(comesUp(reader));
    desktop.close(*window);
    EXPECT_TRUE(eventually([&] { return !bar.isRunning(); }));
}

QUORVEL_UNDER_EACH_MANAGER(AccessiblePermissionsGate);

}
