#include "Hosts/X11/TurnPace.h"

#include <gtest/gtest.h>

namespace quorvel::xdg::x11 {
namespace {

constexpr xcb_window_t kRoot = 1;
constexpr xcb_window_t kOurs = 2;
constexpr xcb_window_t kWindow = 7;
using Events = TurnPace::Events;

bool concernsUs(xcb_window_t window)
{
    return window == kRoot || window == kOurs;
}

Events kindOf(std::uint8_t type, xcb_window_t window, bool isDeleted = false)
{
    xcb_generic_event_t event{};
    event.response_type = type;
    auto& change = reinterpret_cast<xcb_property_notify_event_t&>(event);
    if (type == XCB_CONFIGURE_NOTIFY)
        reinterpret_cast<xcb_configure_notify_event_t&>(event).window = window;
    else
        change.window = window;
    if (isDeleted)
        change.state = XCB_PROPERTY_DELETE;
    return TurnPace{concernsUs}.kindOf(event);
}

// Faults: a window that comes, or a text that is pasted, waits behind a title that counts; input
// that is not known for what it is.
TEST(TurnPace, onlyOtherProgramsWindowsMayWait)
{
    EXPECT_EQ(kindOf(XCB_PROPERTY_NOTIFY, kWindow), Events::patient);
    EXPECT_EQ(kindOf(XCB_PROPERTY_NOTIFY | 0x80, kWindow), Events::patient) << "sent by a client";
    EXPECT_EQ(kindOf(XCB_CONFIGURE_NOTIFY, kWindow), Events::patient);
    EXPECT_EQ(kindOf(XCB_PROPERTY_NOTIFY, kRoot), Events::urgent);
    EXPECT_EQ(kindOf(XCB_CONFIGURE_NOTIFY, kRoot), Events::urgent);
    EXPECT_EQ(kindOf(XCB_PROPERTY_NOTIFY, kOurs), Events::urgent);
    EXPECT_EQ(kindOf(XCB_CONFIGURE_NOTIFY, kOurs), Events::urgent);
    EXPECT_EQ(kindOf(XCB_PROPERTY_NOTIFY, kWindow, true), Events::urgent) << "read by its owner";
    for (auto type : {XCB_EXPOSE, XCB_MAP_NOTIFY, XCB_DESTROY_NOTIFY, XCB_CLIENT_MESSAGE})
        EXPECT_EQ(kindOf(static_cast<std::uint8_t>(type), kWindow), Events::urgent) << type;
    for (auto type :
        {XCB_KEY_PRESS, XCB_BUTTON_PRESS, XCB_MOTION_NOTIFY, XCB_LEAVE_NOTIFY, XCB_GE_GENERIC})
        EXPECT_EQ(kindOf(static_cast<std::uint8_t>(type), kOurs), Events::input) << type;
}

// Faults: each of a hundred titles in a row wakes the bar; a single one is late; the bar goes on
// waking after the last; what a user drags stutters beside a flood.
TEST(TurnPace, aFloodGathersAndNothingElseDoes)
{
    TurnPace pace{concernsUs};
    Instant now{std::chrono::seconds{5}};
    const auto turn = [&](Events events) {
        now += std::chrono::microseconds{100};
        return pace.restAfter(now, events);
    };
    for (int i = 0; i < TurnPace::kAtOnce; ++i)
        EXPECT_EQ(turn(Events::patient), Duration::zero()) << i;
    int turns = 0;
    for (const auto end = now + std::chrono::seconds{1}; now < end; ++turns) {
        const auto rest = turn(Events::patient);
        EXPECT_LE(rest, TurnPace::kInterval);
        now += rest;
    }
    EXPECT_LE(turns, std::chrono::seconds{1} / TurnPace::kInterval + 1);
    EXPECT_EQ(turn(Events::urgent), Duration::zero());
    EXPECT_EQ(turn(Events::none), Duration::zero());

    EXPECT_GT(turn(Events::patient), Duration::zero());
    EXPECT_EQ(turn(Events::input), Duration::zero());
    EXPECT_EQ(turn(Events::patient), Duration::zero());
    now += TurnPace::kInputLasts;
    for (int i = 0; i <= TurnPace::kAtOnce; ++i)
        turn(Events::patient);
    EXPECT_GT(turn(Events::patient), Duration::zero());

    now += std::chrono::milliseconds{40};
    EXPECT_EQ(turn(Events::patient), Duration::zero());
}

}
}
