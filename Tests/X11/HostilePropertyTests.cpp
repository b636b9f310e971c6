#include <string>
#include <vector>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

/// What a client may write and the bar reads.
const std::vector<std::string> kProperties{"WM_NAME", "WM_CLASS", "WM_HINTS", "WM_TRANSIENT_FOR",
    "WM_CLIENT_MACHINE", "WM_WINDOW_ROLE", "_NET_WM_NAME", "_NET_WM_PID", "_NET_WM_DESKTOP",
    "_NET_WM_ICON", "_NET_WM_WINDOW_OPACITY", "_NET_WM_WINDOW_TYPE", "_NET_WM_STATE",
    "_NET_WM_ALLOWED_ACTIONS", "_NET_WM_STRUT", "_NET_WM_STRUT_PARTIAL", "_NET_FRAME_EXTENTS",
    "_GTK_FRAME_EXTENTS", "_GTK_APPLICATION_ID"};

struct Value {
    std::string type;
    std::uint8_t format;
    std::uint32_t items;
};
const std::vector<Value> kWrongValues{{"STRING", 8, 0}, {"STRING", 8, 3}, {"INTEGER", 16, 3},
    {"CARDINAL", 32, 0}, {"CARDINAL", 32, 1}, {"WINDOW", 32, 5}, {"ATOM", 32, 1}};

void setWrong(
    Connection& connection, xcb_window_t window, const std::string& property, const Value& value)
{
    const std::vector<std::uint32_t> ones(value.items, 0xFFFFFFFF);
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, connection.atom(property),
        connection.atom(value.type), value.format, value.items, ones.data());
}

}

/// What the bar reads is not the manager's: one is enough.
class HostileProperties : public UnderOpenbox {
protected:
    void SetUp() override
    {
        good = client.open({.title = "good"});
        ASSERT_TRUE(bar.appears());
    }

    /// The bar still follows: it shows the good window under a title that it has not seen before.
    testing::AssertionResult goodChipIsRight()
    {
        const auto title = "good " + std::to_string(++m_titles);
        client.setTitle(good, title);
        return eventually([&]() -> testing::AssertionResult {
            const auto state = bar.state();
            const auto* const item = state.itemOf(good);
            if (!item || !state.chipOf(good))
                return testing::AssertionFailure() << "the good window has no chip";
            return item->title == title
                ? testing::AssertionSuccess()
                : testing::AssertionFailure() << "its title is " << item->title;
        });
    }

    Client client{server};
    Client hostile{server};
    Bar bar{server};
    xcb_window_t good = XCB_NONE;

private:
    int m_titles = 0;
};

// Faults: a value read without a look at its type, format or length.
TEST_F(HostileProperties, ofWrongTypeAndFormatDoNoHarm)
{
    for (const auto& property : kProperties) {
        const auto window = hostile.open({.title = "hostile"});
        for (const auto& value : kWrongValues) {
            setWrong(hostile.connection(), window, property, value);
            hostile.connection().sync();
        }
        ASSERT_TRUE(goodChipIsRight()) << property;
        hostile.destroy(window);
    }
}

// Faults: an endless walk up the parents, a look-up of a process that never was.
TEST_F(HostileProperties, thatNameWhatIsNotThereDoNoHarm)
{
    const auto first = hostile.open({.title = "first of a circle"});
    const auto second = hostile.open({.title = "second of a circle", .parent = first});
    hostile.connection().setNumbers(first, "WM_TRANSIENT_FOR", "WINDOW", {second});
    hostile.connection().sync();
    desktop.activate(first);
    ASSERT_TRUE(goodChipIsRight());

    const auto stranger = hostile.open({.title = "of no process", .pid = 0x3FFFFFFF});
    EXPECT_TRUE(getsChip(bar, stranger));
    EXPECT_TRUE(goodChipIsRight());
}

// Faults: a window that makes itself invisible is judged once and for all, or again only when
// something else happens to it.
TEST_F(HostileProperties, thatMakeAWindowInvisibleAreHeeded)
{
    for (const std::uint32_t opacity : {0U, 0xFFFFFFFFU, 0U}) {
        client.connection().setNumbers(good, "_NET_WM_WINDOW_OPACITY", "CARDINAL", {opacity});
        client.connection().sync();
        EXPECT_TRUE(eventually([&] { return !bar.state().chipOf(good) == (opacity == 0); }));
    }
}

// Fault: root properties, which any client can write, taken on trust.
TEST_F(HostileProperties, ofTheRootWindowDoNoHarm)
{
    auto& connection = hostile.connection();
    for (const auto& value : kWrongValues) {
        for (const auto* property :
            {"_NET_DESKTOP_NAMES", "RESOURCE_MANAGER", "_NET_SHOWING_DESKTOP"})
            setWrong(connection, connection.root(), property, value);
        connection.sync();
        ASSERT_TRUE(goodChipIsRight()) << value.type << ' ' << value.items;
    }

    // What the manager writes, too.
    const auto root = connection.root();
    for (const auto& value : kWrongValues) {
        for (const auto* property : {"_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW", "_NET_SUPPORTED",
                 "_NET_NUMBER_OF_DESKTOPS", "_NET_CURRENT_DESKTOP"})
            setWrong(connection, root, property, value);
        connection.sync();
        bar.state();
        ASSERT_FALSE(HasFailure()) << value.type << ' ' << value.items;
    }
    connection.setNumbers(root, "_NET_NUMBER_OF_DESKTOPS", "CARDINAL", {4});
    connection.setNumbers(root, "_NET_CURRENT_DESKTOP", "CARDINAL", {0});
    ASSERT_TRUE(getsChip(bar, hostile.open({.title = "makes the manager list its windows"})));
    ASSERT_TRUE(goodChipIsRight());

    // A check window is not listened to for long; this one is.
    connection.setNumbers(root, "_NET_SUPPORTING_WM_CHECK", "WINDOW", {root});
    connection.sync();
    ASSERT_TRUE(goodChipIsRight());
    ASSERT_TRUE(getsChip(bar, hostile.open({.title = "found with all others"})));
    EXPECT_TRUE(getsChip(bar, hostile.open({.title = "late"})));
}

}
