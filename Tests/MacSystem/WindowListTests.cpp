#include <cmath>

#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

namespace {

struct MacWindowListTest : MacFixture {
    void answerWindows(std::vector<Value> entries)
    {
        mac.answer("CGWindowListCopyWindowInfo", array(std::move(entries)));
    }
    CGWindowInfo onlyWindow() const
    {
        const auto windows = windowsOf(makeWindowServer());
        EXPECT_EQ(windows.size(), 1u);
        return windows.empty() ? CGWindowInfo{} : windows.front();
    }
};

}

// Faults: a value of the wrong type, or half of a number that does not fit, is believed; what is no
// dictionary is a window; half of a surrogate pair loses the title.
TEST_F(MacWindowListTest, whatIsMissingOrWrongIsAbsent)
{
    answerWindows({dictionary({}), null(), number(7), array({}),
        dictionary({{"kCGWindowNumber", text("7")}, {"kCGWindowOwnerPID", truth(true)},
            {"kCGWindowLayer", truth(false)}, {"kCGWindowAlpha", real(NAN)},
            {"kCGWindowBounds", array({number(1), number(2), number(3), number(4)})},
            {"kCGWindowOwnerName", number(5)}, {"kCGWindowName", dictionary({})}}),
        dictionary({{"kCGWindowBounds", rectangle(0, NAN, 800, 600)}}),
        dictionary({{"kCGWindowOwnerPID", number(std::int64_t{1} << 32 | 501)},
            {"kCGWindowLayer", real(0.5)},
            {"kCGWindowBounds",
                dictionary({{"X", real(0)}, {"Y", real(0)}, {"Width", text("800")},
                    {"Height", real(600)}})}})});
    EXPECT_THAT(
        windowsOf(makeWindowServer()), testing::AllOf(SizeIs(4), testing::Each(CGWindowInfo{})));
    answerWindows({dictionary({{"kCGWindowName", utf16({0xD83D, u'b'})}})});
    EXPECT_EQ(onlyWindow().windowName, "?b");
    mac.answer("CGWindowListCopyWindowInfo", dictionary({}));
    EXPECT_EQ(makeWindowServer().enumerateWindows(0, [](auto&) { FAIL(); }), Listing::failed);
}

}
