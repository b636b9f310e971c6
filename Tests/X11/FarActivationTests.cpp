#include <cstdlib>
#include <optional>

#include "Quorvel/Platform/Accessibility.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/HostServices.h"

namespace quorvel::x11tests {

/// A window of another desktop than the user's is asked for, through the services that the core
/// uses.
class FarActivation : public UnderEachManager {
protected:
    static constexpr std::uint32_t kFar = 2;

    FarActivation()
    {
        for (const auto& [name, value] : server.environment())
            setenv(name.c_str(), value.c_str(), 1);
        target = application.open({.title = "target", .applicationClass = "Target"});
        other = otherApplication.open({.title = "other"});
        host.emplace();
    }

    bool eventuallyIn(const std::function<bool()>& condition) { return host->runUntil(condition); }
    /// The target goes to the other desktop and the user stays with the other window.
    void leaveTarget(bool isMinimised)
    {
        ASSERT_TRUE(eventuallyIn([&] { return desktop.taskbarClients().size() == 2; }));
        if (isMinimised)
            desktop.minimise(target);
        ASSERT_TRUE(eventuallyIn([&] { return desktop.isHidden(target) == isMinimised; }));
        desktop.moveToDesktop(target, kFar);
        desktop.switchTo(0);
        ASSERT_TRUE(eventuallyIn(
            [&] { return desktop.desktopOf(target) == kFar && desktop.currentDesktop() == 0; }));
        ASSERT_TRUE(eventuallyIn(desktop.activation(other)));
        ASSERT_TRUE(eventuallyIn([&] { return isKnown(isMinimised); }));
    }
    /// Whether the host knows all of this.
    bool isKnown(bool isMinimised)
    {
        const auto element = elementOf("target");
        if (!element)
            return false;
        const auto minimised = accessibility().copyAttribute(*element, ax::minimized);
        const auto* const value = minimised.get<bool>();
        WindowID number{};
        accessibility().windowIDResolver()(*element, number);
        auto& windows = host->services.windowServer();
        const auto spaces = windows.spacesOfWindows(kAllSpacesMask, {number});
        return value && *value == isMinimised && windows.activeSpace() == SpaceID{1}
        && spaces == std::vector{SpaceID{kFar + 1}};
    }
    Accessibility& accessibility() { return host->services.accessibility(); }
    std::optional<AXElement> elementOf(const std::string& title)
    {
        std::vector<ProcessID> owners;
        host->services.windowServer().enumerateWindows(
            kWindowListExcludeDesktopElements, [&](const CGWindowInfo& window) {
                if (window.ownerPID)
                    owners.push_back(*window.ownerPID);
            });
        for (const auto owner : owners) {
            const auto reply
                = accessibility().copyAttribute(accessibility().application(owner), ax::windows);
            const auto* const windows = reply.get<std::vector<AXElement>>();
            for (const auto& element : windows ? *windows : std::vector<AXElement>{}) {
                const auto text = accessibility().copyAttribute(element, ax::title);
                if (const auto* const name = text.get<std::string>(); name && *name == title)
                    return element;
            }
        }
        return std::nullopt;
    }
    void askForTarget()
    {
        const auto element = elementOf("target");
        ASSERT_TRUE(element);
        accessibility().setAttribute(*element, ax::minimized, false);
        accessibility().setAttribute(*element, ax::main, true);
        accessibility().setAttribute(*element, ax::focused, true);
        accessibility().performAction(*element, ax::raiseAction);
    }
    void expectTargetInFront()
    {
        EXPECT_TRUE(eventuallyIn([&] {
            return desktop.activeWindow() == target && !desktop.isHidden(target)
                && desktop.currentDesktop() == kFar;
        })) << "current desktop "
            << desktop.currentDesktop() << ", active " << desktop.title(desktop.activeWindow());
        EXPECT_EQ(desktop.desktopOf(target), kFar) << "dragged here instead";
    }

    Client application{server};
    Client otherApplication{server};
    xcb_window_t target = XCB_NONE;
    xcb_window_t other = XCB_NONE;
    std::optional<HostServices> host;
};

// Faults: the window comes to the user instead of the user to the window; it is shown and does not
// get the focus, which the manager has taken from all windows for the switch.
TEST_P(FarActivation, takesTheUserToTheWindow)
{
    for (const bool isMinimised : {false, true}) {
        SCOPED_TRACE(isMinimised ? "minimised" : "shown");
        leaveTarget(isMinimised);
        askForTarget();
        expectTargetInFront();
    }
}

// Faults: the user is taken to where the window has been, which comes here meanwhile; it comes
// without the focus, or minimised.
TEST_P(FarActivation, ofAWindowThatIsBroughtHereGoesNowhere)
{
    for (const bool isMinimised : {false, true}) {
        SCOPED_TRACE(isMinimised ? "minimised" : "shown");
        leaveTarget(isMinimised);
        const auto element = elementOf("target");
        ASSERT_TRUE(element);
        WindowID number{};
        accessibility().windowIDResolver()(*element, number);
        auto& windows = host->services.windowServer();
        windows.addWindowsToSpaces({number}, {SpaceID{1}});
        windows.removeWindowsFromSpaces({number}, {SpaceID{kFar + 1}});
        askForTarget();
        bool hasLeft = false;
        EXPECT_TRUE(eventuallyIn([&] {
            hasLeft |= desktop.currentDesktop() != 0;
            return desktop.activeWindow() == target && desktop.desktopOf(target) == 0
                && !desktop.isHidden(target);
        }));
        EXPECT_FALSE(hasLeft);
    }
}

INSTANTIATE_TEST_SUITE_P(, FarActivation,
    testing::Values(
        ManagerKind::openbox, ManagerKind::xfwm4, ManagerKind::metacity, ManagerKind::icewm),
    managerName);

}
