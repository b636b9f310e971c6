#include <algorithm>
#include <optional>

#include <gtest/gtest.h>

#include "Hosts/Linux/Applications/DesktopBundles.h"
#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/DirectoryEvents.h"
#include "Hosts/Linux/Applications/IconPictures.h"
#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/Linux/Drawing/PixelPicture.h"
#include "Hosts/Linux/Loop/GLibDispatch.h"
#include "Hosts/Linux/Pictures/PictureDecoding.h"
#include "Quorvel/Core/AppLauncher.h"
#include "Tests/Host/MainLoop.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::xdg::x11 {
namespace {

constexpr std::size_t kApps = 60;
constexpr std::string_view kPicture = "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 9 "
                                      "9'><rect width='9' height='9'/></svg>";

/// The catalogue on this host's files and threads; the rest of the desktop is in memory.
struct CatalogueTest : testing::Test {
    CatalogueTest()
    {
        const auto picture = installed.write("picture.svg", kPicture);
        for (std::size_t i = 0; i < kApps; ++i)
            installed.install("program" + std::to_string(i), "Exec=sh\nIcon=" + picture + '\n');
        installed.install("helper", "Exec=sh\nNoDisplay=true\n");
        installed.write("system/applications/helper.desktop",
            "[Desktop Entry]\nType=Application\nName=Helper\nExec=sh\n");
        installed.write("system/applications/kde/editor.desktop",
            "[Desktop Entry]\nType=Application\nName=Editor\nExec=sh\n");
        installed.write("system/applications/noise.desktop", std::string(5000, '\xFE'));
        launcher = std::make_unique<AppLauncher>(platform());
    }
    Platform platform()
    {
        const auto other = desktop.platform();
        return {dispatch, other.accessibility, other.windowServer, other.displays, other.workspace,
            bundles, fileEvents, other.screenCapture, other.application, other.surfaces, other.text,
            other.control, other.files, other.loginItem, other.launchServices, other.trace};
    }
    const std::vector<AppInfo>& apps() const { return launcher->allApps().value(); }
    const AppInfo* app(std::string_view id) const
    {
        const auto found = std::ranges::find(apps(), id, &AppInfo::id);
        return found == apps().end() ? nullptr : &*found;
    }

    test::FakeDesktop desktop;
    test::InstalledApplications installed;
    GLibDispatch dispatch;
    DesktopEntries entries{dispatch};
    DesktopBundles bundles{entries};
    DirectoryEvents fileEvents{dispatch};
    std::unique_ptr<AppLauncher> launcher;
};

}

// Faults: a race between the discovery and what the main thread does with the list meanwhile.
TEST_F(CatalogueTest, isSearchedWhileItIsMadeAnew)
{
    ASSERT_TRUE(eventually([&] { return apps().size() == kApps + 1; }));
    EXPECT_TRUE(app("kde-editor"));
    EXPECT_FALSE(app("helper")) << "one that is not offered hides the other";

    installed.install("late", "Exec=sh\n");
    launcher->refresh();
    launcher->refresh();
    EXPECT_TRUE(eventually([&] {
        EXPECT_GE(launcher->searchResults(apps(), "program").size(), kApps);
        return app("late") != nullptr;
    }));
    launcher->refresh();
    launcher.reset(); // while it is looking
}

TEST_F(CatalogueTest, iconsAreDrawnOnOtherThreadsWhileTheThemeChanges)
{
    ASSERT_TRUE(eventually([&] { return app("program0") != nullptr; }));
    IconPictures pictures{dispatch, {QUORVEL_PROGRAM, kDecodePictures}};
    Icons icons{entries, pictures};
    const auto path = app("program0")->path().path;
    std::optional<IconPicture> picture;
    const auto queue = dispatch.makeSerialQueue("icons", QualityOfService::userInitiated);
    queue->async([&] {
        for (int i = 0; i < 50; ++i)
            picture = icons.render(path, 32);
    });
    Published<DesktopLooks> looks;
    icons.follow(looks);
    for (int i = 0; i < 50; ++i) {
        DesktopLooks other;
        other.iconTheme = "theme " + std::to_string(i);
        looks.set(other);
        EXPECT_TRUE(icons.forEntry(path));
    }
    queue->sync([] { });
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->bytes, 32U * 32 * 4);
    const auto* pixels = dynamic_cast<const PixelPicture*>(picture->image.get());
    ASSERT_TRUE(pixels);
    EXPECT_EQ(pixels->width(), 32);
    EXPECT_FALSE(icons.render(installed.path("user/applications/helper.desktop"), 32)) << "no icon";
    EXPECT_FALSE(icons.render(path, 100'000));
}

}
