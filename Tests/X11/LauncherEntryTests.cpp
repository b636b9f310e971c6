#include <memory>

#include <nlohmann/json.hpp>

#include "Tests/Support/LauncherSender.h"
#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

class LauncherEntryChips : public UnderOpenbox {
protected:
    /// The first chip of the first space, as the bar describes it.
    nlohmann::json chip()
    {
        const auto result = run({"--state"});
        const auto state = nlohmann::json::parse(result.output, nullptr, false);
        return state.is_object() ? state["spaces"][0]["items"][0] : nlohmann::json{};
    }
    testing::AssertionResult shows(const char* what, const nlohmann::json& value)
    {
        return eventually([&] { return chip()[what] == value; });
    }
};

// Faults: nobody listens; an entry that outlives its sender; a window that asks for attention and
// is not seen.
TEST_F(LauncherEntryChips, showWhatApplicationsSayAsLongAsTheyAreThere)
{
    Client client{server};
    const auto window = client.open({.title = "one"});
    Client other{server};
    const auto focused = other.open({.title = "two", .applicationClass = "Other"});
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(eventually(desktop.activation(focused)));
    ASSERT_TRUE(settles(bar));

    auto sender = std::make_unique<test::LauncherSender>(
        server.environment().at("DBUS_SESSION_BUS_ADDRESS"));
    const auto* update = "('application://Sample.desktop', {'count': <int64 7>, 'count-visible':"
                         "<true>, 'progress': <0.5>, 'progress-visible': <true>})";
    // The bar may not have come to the bus yet.
    ASSERT_TRUE(eventually([&] {
        sender->say(update);
        return chip()["badge"] == "7";
    }));
    EXPECT_EQ(chip()["progress"], 0.5);
    sender->say("('application://Sample.desktop', {'count': <int64 8>})");
    EXPECT_TRUE(shows("badge", "8"));
    sender.reset();
    EXPECT_TRUE(shows("badge", nullptr));
    EXPECT_TRUE(shows("progress", nullptr));

    constexpr std::uint32_t kUrgent = 256;
    client.connection().setNumbers(
        window, "WM_HINTS", "WM_HINTS", {kUrgent, 0, 0, 0, 0, 0, 0, 0, 0});
    client.connection().sync();
    EXPECT_TRUE(shows("attention", true));
}

}
