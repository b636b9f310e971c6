#include <atomic>
#include <fstream>
#include <random>
#include <set>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "Hosts/Linux/Applications/DesktopBundles.h"
#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/DirectoryEvents.h"
#include "Hosts/Linux/Drawing/TextShaper.h"
#include "Hosts/Linux/Loop/FolderMonitors.h"
#include "Quorvel/Core/AppDiscovery.h"
#include "Quorvel/Core/AppLauncher.h"
#include "Tests/Host/MainLoop.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/Seed.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg::x11 {
namespace {

using testing::ElementsAre;

/// The catalogue's source on Linux, on folders of its own.
class StoredApplicationsTest : public testing::Test {
protected:
    StoredApplicationsTest()
    {
        ::setenv("PATH", installed.path("bin").c_str(), 1);
        ::setenv("XDG_CURRENT_DESKTOP", "X-Test", 1);
        ::chmod(installed.write("bin/tool", "#!/bin/sh\n").c_str(), 0700);
    }

public:
    ~StoredApplicationsTest() override
    {
        ::setenv("PATH", searchPath.c_str(), 1);
        ::unsetenv("XDG_CURRENT_DESKTOP");
    }

protected:
    std::vector<std::string> discovered()
    {
        const DesktopEntries entries{dispatch};
        const DesktopBundles bundles{entries};
        const std::atomic_bool isCancelled = false;
        std::vector<std::string> ids;
        for (const auto& app : AppDiscovery{bundles, text, isCancelled}.discoverApplications())
            ids.push_back(app.id());
        return ids;
    }

    const std::string searchPath = std::getenv("PATH");
    test::InstalledApplications installed;
    test::VirtualDispatch dispatch;
    const double scale = 1;
    TextShaper shaper;
    PangoText text{shaper, scale};
};

// Faults: a helper, another desktop's tool or what cannot be started is offered; one that the user
// has hidden comes back from a later folder.
TEST_F(StoredApplicationsTest, offersWhatThisDesktopsMenusOffer)
{
    const std::string lines = "Exec=tool\n";
    installed.install("plain", lines);
    installed.install("helper", lines + "NoDisplay=true\n");
    installed.install("hidden", lines + "Hidden=true\n");
    installed.install("other-desktop", lines + "OnlyShowIn=X-Other;\n");
    installed.install("this-desktop", lines + "OnlyShowIn=X-Test;\n");
    installed.install("not-here", lines + "NotShowIn=X-Test;\n");
    installed.install("missing", "Exec=missing\n");
    installed.install("missing-part", lines + "TryExec=missing\n");
    installed.install("message", "DBusActivatable=true\n");
    installed.write("user/applications/broken.desktop", "no group\n");
    for (const auto* id : {"plain", "hidden", "broken", "system", "vendor/tool"})
        installed.write("system/applications/" + std::string{id} + ".desktop",
            "[Desktop Entry]\nType=Application\nName=" + std::string{id} + "\n" + lines);

    EXPECT_THAT(
        discovered(), ElementsAre("message", "plain", "system", "this-desktop", "vendor-tool"));
}

TEST_F(StoredApplicationsTest, saysWhatTheFileSaysInTheUsersLanguage)
{
    ::setenv("LANGUAGE", "de", 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    const auto path = installed.install("web",
        "Exec=env A=1 /usr/bin/tool %U\nName[de]=Netz\n"
        "GenericName=Web Browser\nGenericName[de]=Browser\n"
        "Keywords=internet;www;\n");
    const DesktopEntries entries{dispatch};
    const auto said = DesktopBundles{entries}.describe({path});
    ::unsetenv("LANGUAGE");
    ::unsetenv("LC_ALL");

    ASSERT_TRUE(said);
    EXPECT_EQ(said->displayName, "Netz");
    EXPECT_EQ(said->identifier, "web");
    EXPECT_EQ(said->genericName, "Browser");
    EXPECT_THAT(said->keywords, ElementsAre("internet", "www"));
    EXPECT_EQ(said->executable, "tool");
    EXPECT_EQ(DesktopBundles{entries}.describe({installed.path("absent.desktop")}), std::nullopt);
}

/// A desktop file with some of its bytes changed, cut off or repeated.
std::string malformed(std::mt19937& random)
{
    std::string bytes = "[Desktop Entry]\nType=Application\nName=Bad\nName[de]=Schlecht\n"
                        "Exec=\"tool\" '%U' \\\\ %%\nTryExec=tool\nOnlyShowIn=X-Test;\n"
                        "Keywords=a;b\\;c\nActions=new;\n[Desktop Action new]\nName=New\n";
    const auto below = [&](std::size_t limit) { return random() % limit; };
    for (auto changes = 1 + below(12); changes > 0; --changes) {
        const auto at = below(bytes.size());
        switch (below(4)) {
        case 0:
            bytes[at] = static_cast<char>(below(256));
            break;
        case 1:
            bytes.erase(at, 1 + below(9));
            break;
        case 2:
            bytes.insert(at, bytes.substr(below(bytes.size()), below(40)));
            break;
        default:
            bytes.insert(at, 1, "[]=;\\\"'%\n\0"[below(10)]);
        }
        if (bytes.empty())
            bytes = "=";
    }
    return bytes;
}

// Faults: a file that ends the program, takes for ever or takes the good ones with it.
TEST_F(StoredApplicationsTest, findsTheGoodAmongTenThousandMalformedFiles)
{
    std::mt19937 random{test::seed()};
    const auto folder = installed.path("user/applications");
    std::filesystem::create_directories(folder);
    for (int number = 0; number < 10'000; ++number)
        std::ofstream{folder + "/bad-" + std::to_string(number) + ".desktop"} << malformed(random);
    std::ofstream{folder + "/huge.desktop"} << "[Desktop Entry]\n" << std::string(4 << 20, 'x');
    ASSERT_EQ(::mkfifo((folder + "/pipe.desktop").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", folder + "/zero.desktop");
    std::filesystem::create_symlink("nowhere", folder + "/dangling.desktop");
    std::filesystem::create_directory_symlink(folder, folder + "/loop");
    std::filesystem::create_directories(folder + "/folder.desktop");
    installed.write("system/applications/good.desktop",
        "[Desktop Entry]\nType=Application\nName=Good\nExec=tool\n");

    EXPECT_THAT(discovered(), testing::Contains("good"));
}

// Faults: what is installed into a new subfolder, or into the first folder of all, is never seen;
// everything beside the way to a folder that may come wakes the bar.
TEST_F(StoredApplicationsTest, hearsOfWhatIsInstalledWhereverItComes)
{
    const auto system = installed.path("system/applications");
    const auto user = installed.path("user/applications");
    std::filesystem::create_directories(system);
    std::set<std::string> heard;
    const FolderMonitors monitors{
        {user, system}, 6, [&](std::string_view path) { heard.emplace(path); }};
    const auto isHeard = [&](const std::string& path, const std::function<void()>& act) {
        heard.clear();
        act();
        return eventually([&] { return heard.contains(path); });
    };
    const auto tool = system + "/vendor/a/b/tool.desktop";

    EXPECT_TRUE(isHeard(user, [&] {
        installed.write("user/beside", "x");
        installed.install("first", "Exec=tool\n");
    }));
    EXPECT_FALSE(heard.contains(installed.path("user/beside")));
    EXPECT_TRUE(isHeard(user + "/second.desktop", [&] { installed.install("second", ""); }));

    EXPECT_TRUE(isHeard(system + "/vendor",
        [&] { installed.write("system/applications/vendor/a/b/tool.desktop", "x"); }));
    EXPECT_TRUE(isHeard(tool, [&] { std::ofstream{tool} << "changed"; }));
    EXPECT_TRUE(isHeard(tool, [&] { std::filesystem::remove(tool); }));

    EXPECT_TRUE(isHeard(user, [&] { std::filesystem::remove_all(installed.path("user")); }));
    EXPECT_TRUE(isHeard(user, [&] { installed.install("again", ""); }));
    EXPECT_TRUE(isHeard(
        user + "/again.desktop", [&] { std::filesystem::remove(user + "/again.desktop"); }));
}

TEST_F(StoredApplicationsTest, tellsOnceOfWhatHappensWithinTheLatency)
{
    std::filesystem::create_directories(installed.path("user/applications"));
    DirectoryEvents events{dispatch};
    int changes = 0;
    auto watch
        = events.watch({installed.path("user/applications")}, seconds(1), [&] { ++changes; });
    ASSERT_TRUE(watch);
    installed.install("one", "");
    installed.install("two", "");
    ASSERT_TRUE(eventually([&] { return dispatch.pendingTimers() > 0; }));
    dispatch.advance(seconds(0.9));
    EXPECT_EQ(changes, 0);
    dispatch.advance(seconds(0.1));
    EXPECT_EQ(changes, 1);

    installed.install("three", "");
    ASSERT_TRUE(eventually([&] { return dispatch.pendingTimers() > 0; }));
    watch.reset();
    dispatch.advance(seconds(5));
    EXPECT_EQ(changes, 1) << "nobody listens any more";
    EXPECT_FALSE(events.watch({}, seconds(1), [] { }));
}

/// A fake desktop whose applications are those on the disk.
Platform withRealApplications(const Platform& fake, Bundles& bundles, FileEvents& events)
{
    return {fake.dispatch, fake.accessibility, fake.windowServer, fake.displays, fake.workspace,
        bundles, events, fake.screenCapture, fake.application, fake.surfaces, fake.text,
        fake.control, fake.files, fake.loginItem, fake.launchServices, fake.trace};
}

// Fault: the user installs an application and has to start the bar anew to find it.
TEST_F(StoredApplicationsTest, showsWithinFourSecondsWhatWasInstalledOrRemoved)
{
    test::FakeDesktop desktop;
    auto& time = desktop.dispatch();
    installed.install("old", "Exec=tool\n");
    const DesktopEntries entries{time};
    DesktopBundles bundles{entries};
    DirectoryEvents events{time};
    AppLauncher launcher{withRealApplications(desktop.platform(), bundles, events)};
    time.drain();
    const auto shown = [&] {
        std::vector<std::string> ids;
        for (const auto& app : launcher.allApps().value())
            ids.push_back(app.id());
        return ids;
    };
    EXPECT_THAT(shown(), ElementsAre("old"));

    const auto idle = time.pendingTimers();
    const auto file = installed.install("vendor/new", "Exec=tool\n");
    ASSERT_TRUE(eventually([&] { return time.pendingTimers() > idle; }));
    time.advance(seconds(4));
    EXPECT_THAT(shown(), ElementsAre("old", "vendor-new"));

    std::filesystem::remove(file);
    EXPECT_TRUE(eventually([&] {
        time.advance(time.pendingTimers() > idle ? seconds(4) : Duration::zero());
        return shown() == std::vector<std::string>{"old"};
    }));
}

}
}
