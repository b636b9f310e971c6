#include <filesystem>
#include <fstream>
#include <optional>
#include <set>

#include <gtest/gtest.h>

#include "Hosts/Linux/Loop/FolderMonitors.h"
#include "Tests/Host/MainLoop.h"
#include "Tests/Support/TemporaryFolder.h"

namespace quorvel::xdg::x11 {
namespace {

namespace fs = std::filesystem;

class FolderMonitorsTest : public testing::Test {
protected:
    FolderMonitorsTest() { fs::create_directories(folder); }

    FolderMonitors::Callback hearing()
    {
        return [this](std::string_view path) { heard.emplace(path); };
    }

    /// Whether writing the file is heard of.
    bool hears(const std::string& path)
    {
        heard.clear();
        std::ofstream{path} << "x";
        return eventually([&] { return heard.contains(path); });
    }

    const test::TemporaryFolder root;
    const std::string folder = root.path() / "folder";
    std::set<std::string> heard;
};

// Faults: the kernel's one watch of a folder ends with the first who no longer needs it; a watcher
// that drops itself or another in its call is used after that.
TEST_F(FolderMonitorsTest, letsEachWatcherOfTheSameFolderGoAlone)
{
    int ended = 0;
    std::optional<FolderMonitors> first, second;
    first.emplace(std::vector{folder}, 0, [&](std::string_view) {
        ++ended;
        first.reset();
        second.reset();
    });
    second.emplace(std::vector{folder}, 0, [&](std::string_view) { ++ended; });
    std::optional<FolderMonitors> third{std::in_place, std::vector{folder}, 0, hearing()};

    EXPECT_TRUE(hears(folder + "/one"));
    EXPECT_TRUE(hears(folder + "/two"));
    EXPECT_EQ(ended, 1);

    third.reset();
    first.emplace(std::vector{folder}, 0, [&](std::string_view) { first.reset(); });
    std::ofstream{folder + "/three"} << "x";
    EXPECT_TRUE(eventually([&] { return !first; })) << "the last one, in its own call";

    const auto later = folder + "/later";
    ended = 0;
    first.emplace(std::vector{later + "/a", later + "/b"}, 0, [&](std::string_view) {
        ++ended;
        first.reset();
    });
    fs::create_directories(later + "/a");
    fs::create_directories(later + "/b");
    EXPECT_TRUE(eventually([&] { return !first; }));
    EXPECT_EQ(ended, 1) << "both came at once";
}

// Fault: what comes to lie at the path of a watched folder is taken for the old folder.
TEST_F(FolderMonitorsTest, followsThePathAndNotTheFolder)
{
    const auto below = folder + "/a/b";
    const auto aside = (root.path() / "aside").string();
    fs::create_directories(below);
    const FolderMonitors monitors{{folder}, 6, hearing()};

    fs::rename(folder, aside);
    fs::create_directories(below);
    EXPECT_TRUE(eventually([&] { return heard.contains(folder); }));
    std::ofstream{aside + "/a/b/old"} << "x";
    EXPECT_TRUE(hears(below + "/new"));
    EXPECT_FALSE(heard.contains(below + "/old"));

    fs::rename(folder + "/a", folder + "/moved");
    EXPECT_TRUE(eventually([&] { return heard.contains(folder + "/moved"); }));
    EXPECT_TRUE(hears(folder + "/moved/b/file"));

    fs::remove_all(folder + "/moved/b");
    fs::create_directories(folder + "/moved/b");
    EXPECT_TRUE(eventually([&] { return heard.contains(folder + "/moved/b"); }));
    EXPECT_TRUE(hears(folder + "/moved/b/file"));
}

// Faults: a folder that was made while the kernel dropped events stays unheard for ever; a flood
// is read whole, and meanwhile nothing else happens.
TEST_F(FolderMonitorsTest, looksAnewWhenTheKernelHasDroppedEvents)
{
    int most = 0;
    std::ifstream{"/proc/sys/fs/inotify/max_queued_events"} >> most;
    if (most <= 0 || most > 100'000)
        GTEST_SKIP() << "this system keeps " << most << " events";
    int calls = 0;
    const FolderMonitors monitors{{folder}, 6, [&](std::string_view path) {
                                      ++calls;
                                      heard.emplace(path);
                                  }};
    // A folder's going would have some file systems write to the disk each time.
    const std::string names[] = {folder + "/low", folder + "/high"};
    std::ofstream{names[0]}.close();
    for (int event = 0; event <= most; event += 4) {
        fs::rename(names[0], names[1]);
        fs::rename(names[1], names[0]);
    }
    fs::create_directory(folder + "/unseen");

    g_main_context_iteration(nullptr, true);
    EXPECT_LT(calls, most / 2);
    EXPECT_TRUE(eventually([&] { return heard.contains(folder); }));
    EXPECT_TRUE(hears(folder + "/unseen/file"));
}

}
}
