#include <cmath>

#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

namespace {

struct MacAccessibilityTest : MacFixture {
    MacAccessibility accessibility{PrivateSymbols::load()};
    ProcessID mail = desktop.launch({.name = "Mail"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});
    AXElement app = accessibility.application(mail);
    AXElement window
        = accessibility.copyAttribute(app, ax::windows).get<std::vector<AXElement>>()->front();

    /// The application answers this for the title of its window.
    AXValue read(Value value)
    {
        mac.answer("AXTitle", std::move(value));
        const auto reply = accessibility.copyAttribute(app, ax::title);
        EXPECT_EQ(reply.error, AXError::success);
        return reply.value;
    }
};

}

TEST_F(MacAccessibilityTest, eachTypeIsReadAsWhatItIs)
{
    EXPECT_EQ(read(text("Ünicode 😀")), AXValue{std::string{"Ünicode 😀"}});
    EXPECT_EQ(read(truth(true)), AXValue{true}) << "a truth value is no number";
    EXPECT_EQ(read(number(1)), AXValue{1.0}) << "a number is no truth value";
    EXPECT_EQ(read(real(0.5)), AXValue{0.5});
    EXPECT_EQ(read(axValue(kAXValueTypeCGPoint, {{3, 4}, {}})), (AXValue{Point{3, 4}}));
    EXPECT_EQ(read(axValue(kAXValueTypeCGSize, {{5, 6}, {}})), (AXValue{Size{5, 6}}));
    EXPECT_EQ(read(array({})), AXValue{std::vector<AXElement>{}});
}

TEST_F(MacAccessibilityTest, whatTheProgramNeverAsksForIsNoValue)
{
    const AXValue none;
    EXPECT_EQ(read({}), none) << "success without a value";
    EXPECT_EQ(read(null()), none);
    EXPECT_EQ(read(dictionary({})), none);
    EXPECT_EQ(read(axValue(kAXValueTypeCGRect, {{1, 2}, {3, 4}})), none);
    EXPECT_EQ(read(axValue(kAXValueTypeAXError, {})), none);
    EXPECT_EQ(read(real(NAN)), none);
    EXPECT_EQ(read(axValue(kAXValueTypeCGPoint, {{NAN, 4}, {}})), none);
    EXPECT_EQ(read(axValue(kAXValueTypeCGSize, {{5, INFINITY}, {}})), none);
    EXPECT_EQ(read(array({text("x"), number(1)})), none) << "a list of other things";
}

TEST_F(MacAccessibilityTest, foreignMembersOfAListAreLeftOut)
{
    const auto value = Value::retain(systemElement(window));
    EXPECT_EQ(read(array({null(), value, text("x"), axValue(kAXValueTypeCGPoint, {})})),
        AXValue{std::vector{window}});
    EXPECT_EQ(read(value), AXValue{window});
}

TEST_F(MacAccessibilityTest, whatIsSetArrivesInItsType)
{
    using Kind = AXMessage::Kind;
    desktop.accessibility().forgetMessages();

    EXPECT_EQ(accessibility.setAttribute(window, ax::position, Point{7, 8}), AXError::success);
    EXPECT_EQ(accessibility.setAttribute(window, ax::size, Size{300, 200}), AXError::success);
    EXPECT_EQ(accessibility.setAttribute(window, ax::minimized, true), AXError::success);
    EXPECT_EQ(accessibility.setAttribute(app, ax::focusedWindow, window), AXError::success);

    EXPECT_EQ(desktop.window(inbox).frame, (Rect{7, 8, 300, 200}));
    EXPECT_TRUE(desktop.window(inbox).isMinimized);
    EXPECT_EQ(desktop.application(mail).focusedWindow, inbox);
    EXPECT_EQ(desktop.accessibility().messages(mail, Kind::set).size(), 4u);

    EXPECT_EQ(accessibility.setAttribute(window, ax::title, {}), AXError::illegalArgument);
    EXPECT_EQ(accessibility.setAttribute(window, ax::title, std::vector<AXElement>{}),
        AXError::illegalArgument);
    EXPECT_EQ(accessibility.setAttribute(AXElement{}, ax::main, true), AXError::illegalArgument);
    EXPECT_EQ(accessibility.copyAttribute(window, "\xFF").error, AXError::illegalArgument);
    EXPECT_EQ(desktop.accessibility().messages(mail, Kind::set).size(), 4u) << "nothing was sent";
}

TEST_F(MacAccessibilityTest, errorsComeThroughWithTheirCode)
{
    desktop.window(inbox).role.reset();
    EXPECT_EQ(accessibility.copyAttribute(window, ax::role).error, AXError::noValue);
    desktop.accessibility().setTrusted(false);
    EXPECT_EQ(accessibility.copyAttribute(window, ax::title).error, AXError::apiDisabled);
    EXPECT_FALSE(accessibility.isTrusted());
    accessibility.promptForTrust();
    EXPECT_EQ(desktop.accessibility().prompts(), 1);
}

TEST_F(MacAccessibilityTest, aHungApplicationIsWaitedForAsLongAsTheElementSays)
{
    const auto copy = window;
    accessibility.setMessagingTimeout(window, 0.05F);
    desktop.application(mail).faults.isHung = true;
    const auto waited = [&](const AXElement& element) {
        const auto before = desktop.dispatch().now();
        EXPECT_EQ(accessibility.copyAttribute(element, ax::title).error, AXError::cannotComplete);
        return desktop.dispatch().now() - before;
    };

    EXPECT_EQ(waited(copy), seconds(0.05)) << "a copy is the same reference";
    EXPECT_EQ(waited(app), seconds(MacAccessibility::kDefaultMessagingTimeoutSeconds))
        << "not the system's own six seconds";
}

TEST_F(MacAccessibilityTest, withoutTheResolverTheWindowNumberIsAnAttribute)
{
    WindowID id{9};
    EXPECT_EQ(accessibility.windowIDResolver()(app, id), AXError::illegalArgument);
    EXPECT_EQ(id, WindowID{9}) << "left alone by a failure";
    EXPECT_EQ(accessibility.windowIDResolver()(window, id), AXError::success);
    EXPECT_EQ(id, inbox);

    mac.removeSymbol("_AXUIElementGetWindow");
    MacAccessibility without{PrivateSymbols::load()};
    EXPECT_FALSE(without.windowIDResolver());
    EXPECT_EQ(without.copyAttribute(window, ax::windowNumber).value,
        AXValue{static_cast<double>(raw(inbox))});
}

}
