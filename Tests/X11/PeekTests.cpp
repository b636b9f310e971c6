// A window that is shown alone: what becomes of the others, and that nothing of it stays.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>

#include "Hosts/X11/Desktop/FadedWindows.h"
#include "Quorvel/Platform/Peeking.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/HostServices.h"

namespace quorvel::x11tests {

class PeekFixture : public DesktopFixture {
protected:
    explicit PeekFixture(ManagerKind kind) : DesktopFixture(kind)
    {
        for (const auto& [name, value] : server.environment())
            setenv(name.c_str(), value.c_str(), 1);
        int shift = 0;
        for (auto* window : {&lower, &middle, &upper}) {
            *window
                = client.open({.title = "window", .frame = {200 + shift, 100 + shift, 300, 200}});
            shift += 20;
            EXPECT_TRUE(eventually(
                [&] { return desktop.taskbarClients().size() == client.windows().size(); }));
        }
        EXPECT_TRUE(eventually(desktop.activation(upper)));
    }

    void startHost()
    {
        host.emplace();
        for (auto window : {lower, middle, upper})
            ASSERT_TRUE(host->runUntil([&] { return idOf(window).has_value(); }));
    }
    std::optional<WindowID> idOf(xcb_window_t native)
    {
        auto& windows = host->services.windowServer();
        std::vector<WindowID> all;
        windows.enumerateWindows(kWindowListExcludeDesktopElements,
            [&](const CGWindowInfo& window) { all.push_back(*window.windowNumber); });
        for (auto id : all) {
            if (windows.nativeWindowNumber(id) == native)
                return id;
        }
        return std::nullopt;
    }
    Peeking& peeking() { return host->services.peeking(); }
    /// All the way.
    bool showAlone(xcb_window_t window)
    {
        const bool isAlone = peeking().showAlone(idOf(window).value_or(WindowID{}));
        peeking().fade(1);
        return isAlone;
    }
    void showAll()
    {
        peeking().showAll();
        peeking().fade(1);
    }
    bool runUntil(const std::function<bool()>& condition) { return host->runUntil(condition); }

    /// Rests on the card of the window, which is alone in its popup, until the condition holds.
    testing::AssertionResult peeks(
        const Bar& bar, xcb_window_t window, const std::function<bool()>& isDone)
    {
        pointer.moveTo(bar.state().chipFrame(window));
        Frame place; // a popup comes to its place, and a pointer that moves does not rest
        return eventually([&] {
            const auto cards = bar.state().cards();
            if (!cards.empty() && !(cards[0].frame == place)) {
                place = cards[0].frame;
                pointer.moveTo(place);
            }
            return isDone();
        });
    }

    Client client{server};
    xcb_window_t lower{};
    xcb_window_t middle{};
    xcb_window_t upper{};
    std::optional<HostServices> host;
};

/// With somebody who says that he composes windows.
class Fading : public testing::Test, public PeekFixture {
protected:
    Fading() : PeekFixture(ManagerKind::openbox) { setComposed(true); }

    void setComposed(bool isComposed)
    {
        auto& connection = client.connection();
        xcb_set_selection_owner(connection.get(), isComposed ? lower : XCB_NONE,
            connection.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        connection.sync();
    }
    std::vector<std::uint32_t> opacity(xcb_window_t window)
    {
        return desktop.connection().numbers(window, kOpacity);
    }
    void setOpacity(xcb_window_t window, std::uint32_t value)
    {
        client.connection().setNumbers(window, kOpacity, "CARDINAL", {value});
        client.connection().sync();
    }

    const std::string kOpacity = "_NET_WM_WINDOW_OPACITY";
    const std::string kNote = "_QUORVEL_FADED";
    const std::vector<std::uint32_t> kFaded{xdg::x11::FadedWindows::kOpacity};
    const std::vector<std::uint32_t> kNone;
};

// Faults: an opacity that the user or a program has given is lost, or one that comes meanwhile; the
// window's own dialog fades, or a panel; a window that opens meanwhile is seen.
TEST_F(Fading, leavesEachOpacityAsItWas)
{
    setOpacity(middle, 0x80000000);
    auto dialog
        = client.open({.title = "dialog", .type = "_NET_WM_WINDOW_TYPE_DIALOG", .parent = lower});
    auto panel = client.open(
        {.title = "panel", .frame = {0, 0, 200, 20}, .type = "_NET_WM_WINDOW_TYPE_DOCK"});
    startHost();
    ASSERT_TRUE(runUntil([&] { return idOf(dialog) && idOf(panel); }));

    ASSERT_TRUE(showAlone(lower));
    EXPECT_EQ(opacity(middle), kFaded);
    EXPECT_EQ(opacity(upper), kFaded);
    for (auto window : {lower, dialog, panel})
        EXPECT_EQ(opacity(window), kNone);
    auto late = client.open({.title = "late"});
    ASSERT_TRUE(runUntil([&] { return idOf(late).has_value(); }));
    ASSERT_TRUE(showAlone(lower));
    EXPECT_EQ(opacity(late), kFaded);
    ASSERT_TRUE(showAlone(middle));
    EXPECT_EQ(opacity(middle), std::vector{0x80000000U});
    EXPECT_EQ(opacity(lower), kFaded);
    EXPECT_EQ(opacity(dialog), kFaded);

    setOpacity(upper, 0x70000000);
    client.destroy(late);
    showAll();
    EXPECT_EQ(opacity(upper), std::vector{0x70000000U});
    EXPECT_EQ(opacity(middle), std::vector{0x80000000U});
    EXPECT_EQ(opacity(lower), kNone);
    EXPECT_EQ(desktop.connection().numbers(desktop.connection().root(), kNote), kNone);
}

// Faults: a window leaps, or stops half way; one that turns round loses its own opacity, or what
// its program gives it meanwhile; one that is not to be seen is written to on and on.
TEST_F(Fading, goesThereAndBackInSteps)
{
    setOpacity(middle, 0x80000000);
    startHost();
    const auto now = [&](xcb_window_t window) {
        const auto value = opacity(window);
        return value.empty() ? 0xFFFFFFFF : value[0];
    };
    ASSERT_TRUE(peeking().showAlone(*idOf(lower)));
    EXPECT_TRUE(peeking().fade(0));
    EXPECT_EQ(opacity(upper), kNone);
    EXPECT_TRUE(peeking().fade(0.5));
    EXPECT_NEAR(now(upper), 0x81000000, 0x01000000);
    EXPECT_NEAR(now(middle), 0x41000000, 0x01000000);
    const auto half = now(upper);
    const auto note = desktop.connection().numbers(desktop.connection().root(), kNote);
    EXPECT_TRUE(peeking().fade(0.2));
    EXPECT_LT(now(upper), half);
    setOpacity(middle, 0x70000000);
    EXPECT_FALSE(peeking().fade(0.4));
    EXPECT_EQ(opacity(upper), kFaded);

    peeking().showAll();
    EXPECT_TRUE(peeking().fade(0.5));
    EXPECT_EQ(now(upper), half);
    EXPECT_FALSE(peeking().fade(0.6));
    EXPECT_EQ(opacity(upper), kNone);
    EXPECT_EQ(opacity(middle), std::vector{0x70000000U});

    ASSERT_TRUE(showAlone(lower));
    desktop.minimise(upper);
    ASSERT_TRUE(runUntil([&] { return desktop.isHidden(upper); }));
    EXPECT_TRUE(runUntil([&] {
        peeking().showAlone(*idOf(lower));
        peeking().fade(0);
        return opacity(upper) == kNone;
    })) << "without a way";

    host.reset();
    // As a bar leaves it that is killed half way.
    setOpacity(upper, half);
    auto& connection = client.connection();
    connection.setNumbers(connection.root(), kNote, "CARDINAL", note);
    connection.sync();
    host.emplace();
    EXPECT_EQ(opacity(upper), kNone);
    EXPECT_EQ(opacity(middle), std::vector{0x70000000U});
}

// Faults: whoever looks at a window that cannot be seen sees an empty desktop; windows stay faint
// once nobody composes them.
TEST_F(Fading, isNothingForWhatCannotBeSeen)
{
    startHost();
    auto id = *idOf(middle);
    desktop.minimise(middle);
    ASSERT_TRUE(runUntil([&] { return desktop.isHidden(middle); }));
    ASSERT_TRUE(runUntil([&] {
        bool isShown = peeking().showAlone(id);
        return !isShown;
    }));
    EXPECT_EQ(opacity(upper), kNone);
    EXPECT_FALSE(peeking().showAlone(WindowID{9999}));
    ASSERT_TRUE(showAlone(lower));
    EXPECT_EQ(opacity(upper), kFaded);
    setComposed(false);
    ASSERT_TRUE(showAlone(lower));
    EXPECT_EQ(opacity(upper), kNone);
    setComposed(true);
    ASSERT_TRUE(showAlone(lower));
    host.reset();
    EXPECT_EQ(opacity(upper), kNone) << "the bar has ended";
}

// Faults: a bar that is killed leaves faint windows for ever; the next one undoes what a program
// has set since, or stumbles over junk.
TEST_F(Fading, isUndoneByTheNextBarIfThisOneIsKilled)
{
    setOpacity(middle, 0x80000000);
    {
        Bar bar{server};
        ASSERT_TRUE(bar.appears());
        ASSERT_TRUE(settles(bar));
        ASSERT_TRUE(peeks(
            bar, lower, [&] { return opacity(middle) == kFaded && opacity(upper) == kFaded; }));
        bar.kill();
    }
    EXPECT_EQ(opacity(upper), kFaded);
    setOpacity(upper, 0x70000000);
    pointer.moveTo(5, 5);
    {
        Bar next{server};
        ASSERT_TRUE(next.appears());
        EXPECT_EQ(opacity(middle), std::vector{0x80000000U});
        EXPECT_EQ(opacity(upper), std::vector{0x70000000U});
    }
    auto root = desktop.connection().root();
    EXPECT_EQ(desktop.connection().numbers(root, kNote), kNone);
    client.connection().setNumbers(root, kNote, "CARDINAL", {1, 2});
    client.connection().sync();
    Bar last{server};
    EXPECT_TRUE(last.appears());
}

/// Where nobody composes windows.
class Raising : public testing::TestWithParam<ManagerKind>, public PeekFixture {
protected:
    Raising() : PeekFixture(GetParam()) { }

    /// The test's windows, the uppermost last.
    std::vector<xcb_window_t> order()
    {
        auto& connection = desktop.connection();
        const auto treeOf = [&](xcb_window_t window) {
            return connection.wait(xcb_query_tree_reply, xcb_query_tree(connection.get(), window));
        };
        std::map<xcb_window_t, xcb_window_t> clients;
        for (auto window : client.windows()) {
            auto top = window;
            for (auto tree = treeOf(top); tree && tree->parent != connection.root();
                tree = treeOf(top))
                top = tree->parent;
            clients[top] = window;
        }
        const auto tree = treeOf(connection.root());
        const auto* const children = xcb_query_tree_children(tree.get());
        std::vector<xcb_window_t> order;
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            if (const auto found = clients.find(children[i]); found != clients.end())
                order.push_back(found->second);
        }
        return order;
    }
    bool isOrder(const std::vector<xcb_window_t>& wanted)
    {
        return runUntil([&] { return order() == wanted; });
    }
};

// Faults: the window gets the focus, or asks for attention; it does not come back to its place; the
// next one is put above it; a minimised one appears.
TEST_P(Raising, bringsAWindowToTheFrontAndPutsItBack)
{
    const std::vector before{lower, middle, upper};
    ASSERT_TRUE(eventually([&] { return order() == before; }));
    startHost();
    ASSERT_TRUE(showAlone(lower));
    EXPECT_TRUE(isOrder({middle, upper, lower}));
    ASSERT_TRUE(showAlone(middle));
    EXPECT_TRUE(isOrder({lower, upper, middle}));
    ASSERT_TRUE(showAlone(upper));
    EXPECT_TRUE(isOrder(before));
    ASSERT_TRUE(showAlone(lower));
    EXPECT_TRUE(isOrder({middle, upper, lower}));
    EXPECT_EQ(desktop.activeWindow(), upper);
    EXPECT_FALSE(desktop.hasState(lower, "_NET_WM_STATE_DEMANDS_ATTENTION"));
    showAll();
    EXPECT_TRUE(isOrder(before));
    EXPECT_EQ(desktop.activeWindow(), upper);

    const auto id = *idOf(middle);
    desktop.minimise(middle);
    ASSERT_TRUE(runUntil([&] {
        const bool isShown = peeking().showAlone(id);
        return !isShown;
    }));
    EXPECT_TRUE(desktop.isHidden(middle));
}

// Fault: a bar that is killed leaves a window above the others, for ever where that is a state.
TEST_P(Raising, isUndoneByTheNextBarIfThisOneIsKilled)
{
    const std::vector before{lower, middle, upper};
    ASSERT_TRUE(eventually([&] { return order() == before; }));
    {
        Bar bar{server};
        ASSERT_TRUE(bar.appears());
        ASSERT_TRUE(settles(bar));
        ASSERT_TRUE(peeks(bar, lower, [&] { return order().back() == lower; }));
        bar.kill();
    }
    pointer.moveTo(5, 5);
    Bar next{server};
    ASSERT_TRUE(next.appears());
    const bool isState = GetParam() == ManagerKind::xfwm4;
    EXPECT_TRUE(eventually([&] { return !isState || order() == before; }));
    EXPECT_FALSE(desktop.hasState(lower, "_NET_WM_STATE_ABOVE"));
    EXPECT_EQ(desktop.activeWindow(), upper);
}

// Fault: a window that the user keeps above the others is so no longer.
TEST_P(Raising, leavesAloneWhatIsKeptAbove)
{
    startHost();
    desktop.setState(middle, "ABOVE", true);
    const std::vector before{lower, upper, middle};
    ASSERT_TRUE(isOrder(before));
    ASSERT_TRUE(showAlone(middle));
    ASSERT_TRUE(showAlone(lower));
    showAll();
    EXPECT_TRUE(isOrder(before));
    EXPECT_TRUE(desktop.hasState(middle, "_NET_WM_STATE_ABOVE"));
    EXPECT_EQ(desktop.activeWindow(), upper);
}

INSTANTIATE_TEST_SUITE_P(, Raising,
    testing::Values(ManagerKind::openbox, ManagerKind::xfwm4, ManagerKind::icewm), managerName);

}
