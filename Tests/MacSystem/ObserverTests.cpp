#include "Quorvel/Skylight/AXObserverManager.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

namespace {

struct MacObserverTest : MacFixture {
    MacAccessibility accessibility{PrivateSymbols::load()};
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "com.example.mail"});
    WindowID inbox = desktop.open(mail);
    std::vector<std::string> heard;
    std::unique_ptr<RunLoopThread> thread
        = desktop.dispatch().startThread("observers", QualityOfService::userInitiated);

    void onThread(const Work& work)
    {
        thread->perform(work);
        desktop.drain();
    }
    std::unique_ptr<AXObserver> observe(ProcessID pid, AXError expected = AXError::success)
    {
        std::unique_ptr<AXObserver> observer;
        onThread([&] {
            auto [error, made] = accessibility.createObserver(
                pid, *thread, [this](const AXElement& element, std::string_view notification) {
                    EXPECT_NE(systemElement(element), nullptr);
                    heard.emplace_back(notification);
                });
            EXPECT_EQ(error, expected);
            observer = std::move(made);
        });
        return observer;
    }
    AXError listen(AXObserver& observer, std::string_view notification)
    {
        AXError error{};
        onThread([&] {
            error = observer.addNotification(accessibility.application(mail), notification);
        });
        return error;
    }
    void end(std::unique_ptr<AXObserver> observer)
    {
        onThread([&] { observer.reset(); });
    }
};

}

TEST_F(MacObserverTest, aNotificationThatComesAfterItsObserverReachesNobody)
{
    auto observer = observe(mail);
    listen(*observer, ax::titleChanged);
    const auto late = mac.lastRegistration;
    auto successor = observe(mail);
    listen(*successor, ax::titleChanged);
    const auto fresh = mac.lastRegistration;
    EXPECT_NE(late.context, fresh.context);
    end(std::move(observer));

    const auto name = text("AXTitleChanged");
    const auto element = accessibility.application(mail);
    const auto tell = [&](const SimulatedMac::Registration& to, CFTypeRef notification) {
        to.callback(
            nullptr, systemElement(element), static_cast<CFStringRef>(notification), to.context);
    };
    tell(late, name.get());
    EXPECT_THAT(heard, IsEmpty());
    tell(fresh, nullptr);
    fresh.callback(nullptr, nullptr, static_cast<CFStringRef>(name.get()), fresh.context);
    EXPECT_THAT(heard, IsEmpty()) << "a notification without a name or an element";
    tell(fresh, name.get());
    EXPECT_EQ(heard.size(), 1u);
    end(std::move(successor));
    EXPECT_EQ(desktop.accessibility().observersOf(mail), 0u);
}

TEST_F(MacObserverTest, aCallbackMayEndItsOwnObserver)
{
    std::unique_ptr<AXObserver> observer;
    int calls = 0;
    onThread([&] {
        auto made
            = accessibility.createObserver(mail, *thread, [&](const AXElement&, std::string_view) {
                  observer.reset();
                  ++calls; // what the callback captured is still there
              });
        observer = std::move(made.second);
        observer->addNotification(accessibility.application(mail), ax::windowMiniaturized);
    });
    desktop.minimise(inbox);
    desktop.restore(inbox);
    desktop.minimise(inbox);
    desktop.drain();

    EXPECT_EQ(calls, 1);
}

TEST_F(MacObserverTest, anObserverThatCannotBeMadeLeavesNothingBehind)
{
    desktop.application(mail).faults.failingObservers = 1;
    EXPECT_FALSE(observe(mail, AXError::cannotComplete));
    EXPECT_FALSE(observe(ProcessID{9999}, AXError::failure));

    auto observer = observe(mail);
    onThread([&] {
        EXPECT_EQ(observer->addNotification({}, ax::titleChanged), AXError::illegalArgument);
    });
    desktop.application(mail).faults.failingRegistrations = {"AXTitleChanged"};
    EXPECT_EQ(listen(*observer, ax::titleChanged), AXError::notificationUnsupported);
    desktop.crash(mail);
    EXPECT_EQ(listen(*observer, ax::windowMoved), AXError::invalidElement);
    end(std::move(observer));
}

}
