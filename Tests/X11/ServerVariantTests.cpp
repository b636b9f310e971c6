#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

std::string withoutSigns(std::string name)
{
    std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
    return name;
}

}

/// A server that lacks an extension.
class WithoutExtension : public testing::TestWithParam<std::string>, public DesktopFixture {
protected:
    WithoutExtension() : DesktopFixture(ManagerKind::openbox, {"-extension", GetParam()}) { }

    /// A popup, a click and a menu.
    void use(const Bar& bar, xcb_window_t first, xcb_window_t second)
    {
        pointer.moveTo(bar.state().chipFrame(first));
        EXPECT_TRUE(eventually([&] { return !bar.state().cards().empty(); }));
        clickChip(bar, first);
        EXPECT_TRUE(becomesActive(first));
        clickChip(bar, second, Button::secondary);
        EXPECT_TRUE(eventually([&] { return bar.state().entryTitled("Close") != nullptr; }));
        pointer.click({600, 60, 2, 2});
    }
};

// Fault: a request that the server does not know cuts the connection, and the bar has gone.
TEST_P(WithoutExtension, theBarDoesWhatItCan)
{
    Client client{server};
    const auto first = client.open({.title = "first"});
    const auto second = client.open({.title = "second"});
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(settles(bar));

    if (GetParam() != "XFIXES") // without it, the server ends itself when the pointer moves
        use(bar, first, second);
    client.setTitle(second, "renamed");
    EXPECT_TRUE(settles(bar));
    EXPECT_EQ(run({"--focus"}).status, 0);
    EXPECT_TRUE(bar.isRunning());
}

INSTANTIATE_TEST_SUITE_P(, WithoutExtension,
    testing::Values("XFIXES", "RENDER", "SHAPE", "Composite", "DAMAGE", "RANDR", "MIT-SHM", "SYNC"),
    [](auto& variant) { return withoutSigns(variant.param); });

/// A screen whose pixels are not those of cairo.
class Depth : public testing::TestWithParam<int>, public DesktopFixture {
protected:
    Depth() : DesktopFixture(ManagerKind::openbox, {}, GetParam()) { }

    /// Whether the screen shows this pixel in the middle of the frame.
    testing::AssertionResult shows(const Frame& frame, std::uint32_t pixel)
    {
        const std::string bytes{
            reinterpret_cast<const char*>(&pixel), GetParam() == 16 ? std::size_t{2} : 4};
        const auto found
            = desktop.picture({frame.x + frame.width / 2, frame.y + frame.height / 2, 1, 1});
        if (found.starts_with(bytes.substr(0, found.size())) && !found.empty())
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << testing::PrintToString(found);
    }
};

// Faults: no pictures of windows but at depth 24; colours mixed up where a pixel has 16 or 30 bits.
TEST_P(Depth, picturesOfWindowsAndIconsHaveTheirColours)
{
    const std::uint32_t red = GetParam() == 16 ? 0xF800 : 0x3FF00000;
    Client client{server};
    auto* const raw = client.connection().get();
    const auto pixmap = xcb_generate_id(raw);
    const auto context = xcb_generate_id(raw);
    xcb_create_pixmap(
        raw, static_cast<std::uint8_t>(GetParam()), pixmap, client.connection().root(), 48, 48);
    xcb_create_gc(raw, context, pixmap, XCB_GC_FOREGROUND, &red);
    const xcb_rectangle_t all{0, 0, 48, 48};
    xcb_poly_fill_rectangle(raw, pixmap, context, 1, &all);
    const auto window = client.open({.title = "red", .icon = pixmap});
    xcb_change_window_attributes(raw, window, XCB_CW_BACK_PIXEL, &red);
    xcb_clear_area(raw, 0, window, 0, 0, 0, 0);
    client.connection().sync();

    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(settles(bar));
    const auto chip = bar.state().chipFrame(window);
    EXPECT_TRUE(eventually([&] {
        return shows({chip.x, chip.y, 2 * (chip.height * 11 / 20), chip.height}, red);
    })) << "the icon";

    pointer.moveTo(chip);
    EXPECT_TRUE(eventually([&] {
        const auto cards = bar.state().cards();
        return cards.empty() ? testing::AssertionFailure() : shows(cards[0].frame, red);
    })) << "the picture";
}

INSTANTIATE_TEST_SUITE_P(
    , Depth, testing::Values(16, 30), [](auto& variant) { return std::to_string(variant.param); });

}
