#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

/// Looks are the same under every manager.
class DesktopLooks : public UnderOpenbox {
protected:
    static void put(std::string& bytes, std::uint32_t value, int size)
    {
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(value >> 8 * i);
    }
    static void putText(std::string& bytes, const std::string& text)
    {
        bytes += text;
        bytes.resize((bytes.size() + 3) / 4 * 4);
    }
    /// What a settings daemon writes, and then tells everybody that it is there.
    void say(const std::string& theme, std::uint32_t dotsPerInch)
    {
        std::string bytes(8, '\0');
        put(bytes, 2, 4);
        put(bytes, 1, 2);
        put(bytes, 13, 2);
        putText(bytes, "Net/ThemeName");
        put(bytes, 0, 4);
        put(bytes, static_cast<std::uint32_t>(theme.size()), 4);
        putText(bytes, theme);
        put(bytes, 0, 2);
        put(bytes, 7, 2);
        putText(bytes, "Xft/DPI");
        put(bytes, 0, 4);
        put(bytes, dotsPerInch * 1024, 4);
        daemon.connection().setText(window, "_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", bytes);
        daemon.connection().sync();
    }
    void becomeDaemon()
    {
        auto& connection = daemon.connection();
        xcb_set_selection_owner(
            connection.get(), window, connection.atom("_XSETTINGS_S0"), XCB_CURRENT_TIME);
        connection.send(connection.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY, connection.root(),
            "MANAGER", {XCB_CURRENT_TIME, connection.atom("_XSETTINGS_S0"), window});
    }
    int height(const Bar& bar) { return bar.state().panel().frame.height; }
    /// Of the bar's ground, somewhere without a chip.
    bool isDark()
    {
        const auto pixel = desktop.picture({900, 780, 1, 1});
        return !pixel.empty() && static_cast<unsigned char>(pixel[0]) < 128;
    }

    Client daemon{server};
    xcb_window_t window = daemon.open({.title = "daemon", .frame = {0, 0, 60, 60}});
};

// Faults: a bar that is dark for ever, that follows only what was said before it came, or that lays
// itself out anew for each of many changes in a row.
TEST_F(DesktopLooks, followTheSettingsDaemonThatComesLaterAndChangesItsMind)
{
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(eventually([&] { return isDark(); }));
    const auto normal = height(bar);

    say("Adwaita", 96);
    becomeDaemon();
    EXPECT_TRUE(eventually([&] { return !isDark(); }));
    say("Adwaita-dark", 144);
    EXPECT_TRUE(eventually([&] { return isDark() && height(bar) == normal * 3 / 2; }));

    // While it changes without a pause, it is followed once a second at most.
    int followed = 0;
    int last = height(bar);
    auto longestPause = 0ns;
    const auto start = std::chrono::steady_clock::now();
    for (auto before = start; before < start + 900ms;) {
        say("Adwaita-dark", 100 + static_cast<std::uint32_t>((before - start) / 10ms));
        const auto now = height(bar);
        followed += std::exchange(last, now) != now ? 1 : 0;
        longestPause = std::max(
            longestPause, std::chrono::nanoseconds{std::chrono::steady_clock::now() - before});
        before = std::chrono::steady_clock::now();
    }
    EXPECT_TRUE(followed <= 1 || longestPause > 150ms) << followed;
    say("Adwaita", 96);
    EXPECT_TRUE(eventually([&] { return !isDark() && height(bar) == normal; }));

    daemon.connection().setText(window, "_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", "junk");
    daemon.connection().sync();
    EXPECT_TRUE(eventually([&] { return isDark(); })) << "what is broken says nothing";
}

}
