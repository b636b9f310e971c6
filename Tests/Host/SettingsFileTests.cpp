#include "Hosts/Posix/PosixFiles.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "Hosts/Posix/FdWatch.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Core/UserSettingsCoding.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/Sanitized.h"
#include "Tests/Support/Seed.h"
#include "Tests/Support/TemporaryFolder.h"

namespace quorvel::posix {

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsSubsetOf;

constexpr std::size_t kLimit = 1 << 22;

class SettingsFileTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return root + "/" + name; }
    std::string text(const std::string& name) const
    {
        return files->read(path(name), kLimit).value_or("unreadable");
    }

    test::TemporaryFolder folder;
    std::string root = folder.path();
    std::unique_ptr<PosixFiles> files
        = std::make_unique<PosixFiles>(DiskConventions{root, root, true});
};

/// Counts up in the settings, and says on the pipe which numbers are saved, until it is killed.
[[noreturn]] void changeSettingsForever(PosixFiles& files, int pipe)
{
    test::FakeDesktop desktop;
    auto platform = desktop.platform();
    UserSettings settings(
        files, platform.loginItem, platform.application, platform.dispatch, platform.trace);
    for (auto number = settings.hotkeyKeyCode().value_or(0) + 1;; ++number) {
        settings.setHotkeyKeyCode(number);
        settings.setHideDock(number % 2 == 0);
        desktop.advance(UserSettings::saveDebounceInterval);
        if (::write(pipe, &number, sizeof number) != sizeof number)
            _exit(1);
    }
}

/// The last number that a child said before it was killed at a random moment.
std::uint32_t lastSavedBeforeTheKill(PosixFiles& files, std::chrono::microseconds moment)
{
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    UniqueFd reading{ends[0]};
    UniqueFd writing{ends[1]};
    pid_t child = fork();
    if (child == 0)
        changeSettingsForever(files, writing.get());
    writing = UniqueFd{};
    std::uint32_t number = 0;
    EXPECT_EQ(read(reading.get(), &number, sizeof number), sizeof number) << "it never saves";
    std::this_thread::sleep_for(moment);
    kill(child, SIGKILL);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status)) << "it ended by itself";
    while (read(reading.get(), &number, sizeof number) == sizeof number) { }
    return number;
}

}

// Faults: a file written in place, renamed before it is whole, or taken for rejected after a crash.
TEST_F(SettingsFileTest, aKillAtAnyMomentLosesNoFinishedSave)
{
    UserSettingsData data;
    for (int i = 0; i < 400; ++i) // large enough to be killed in
        data.pinnedApps.push_back({"com.example.application-" + std::to_string(i), 3});
    ASSERT_FALSE(files->createFolder(path("Quorvel")));
    ASSERT_FALSE(files->writeAtomically(path("Quorvel/settings.json"), encodeUserSettings(data)));

    const auto seed = test::seed();
    SCOPED_TRACE("QUORVEL_TEST_SEED=" + std::to_string(seed));
    std::mt19937 random{seed};
    std::uniform_int_distribution<int> moment{0, 12'000};
    std::uint32_t lastSaved = 0;
    const int rounds = test::kIsSanitized ? 20 : 60;
    for (int round = std::getenv("QUORVEL_TEST_FULL") ? 500 : rounds; round > 0; --round) {
        auto said = lastSavedBeforeTheKill(*files, std::chrono::microseconds{moment(random)});
        ASSERT_GT(said, lastSaved);
        lastSaved = said;

        auto found = decodeUserSettings(text("Quorvel/settings.json"), {});
        ASSERT_TRUE(found) << "after " << lastSaved;
        ASSERT_EQ(found->pinnedApps, data.pinnedApps);
        auto number = found->hotkeyKeyCode.value_or(0);
        ASSERT_GE(number, lastSaved);
        ASSERT_LE(number, lastSaved + 1) << "never said to be saved";
        lastSaved = number;
        EXPECT_THAT(
            files->list(path("Quorvel")), IsSubsetOf({"settings.json", "settings.json.new"}));
    }
}

// Faults: half a file after a full disk, a left-over in the folder, a message of success.
TEST_F(SettingsFileTest, aFailedWriteLeavesTheOldFile)
{
    ASSERT_FALSE(files->writeAtomically(path("file"), "old"));
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = before;
    small.rlim_cur = 10'000;
    setrlimit(RLIMIT_FSIZE, &small);
    auto error = files->writeAtomically(path("file"), std::string(20'000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);

    EXPECT_EQ(error, std::errc::file_too_large);
    EXPECT_EQ(text("file"), "old");
    EXPECT_THAT(files->list(root), ElementsAre("file"));

    EXPECT_TRUE(files->writeAtomically(path("none/file"), "x"));
    EXPECT_TRUE(files->writeAtomically(path("file/file"), "x"));
    EXPECT_TRUE(files->createFolder(path("file/folder")));
    EXPECT_TRUE(files->createFolder(path("file")));
    EXPECT_FALSE(files->createFolder(path("a/b/c")));
    EXPECT_FALSE(files->createFolder(path("a/b/c")));
    EXPECT_TRUE(files->writeAtomically(path("a/b"), "x"));
}

TEST_F(SettingsFileTest, aLinkIsFollowedAndPermissionsAreKept)
{
    ASSERT_FALSE(files->createFolder(path("dotfiles")));
    std::ofstream(path("dotfiles/settings")) << "old";
    fs::permissions(path("dotfiles/settings"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(path("dotfiles/settings"), path("settings.json"));
    ASSERT_FALSE(files->writeAtomically(path("settings.json"), "new"));

    EXPECT_TRUE(fs::is_symlink(path("settings.json")));
    EXPECT_EQ(text("dotfiles/settings"), "new");
    EXPECT_EQ(fs::status(path("dotfiles/settings")).permissions(),
        fs::perms::owner_read | fs::perms::owner_write);

    // To a file that is not there yet; in a circle.
    fs::create_symlink("dotfiles/later", path("ahead"));
    ASSERT_FALSE(files->writeAtomically(path("ahead"), "new"));
    EXPECT_TRUE(fs::is_symlink(path("ahead")));
    EXPECT_EQ(text("dotfiles/later"), "new");
    fs::create_symlink("circle", path("circle"));
    EXPECT_TRUE(files->writeAtomically(path("circle"), "new"));
    EXPECT_TRUE(fs::is_symlink(path("circle")));
}

// Two bars of one user on two displays save at the same moment. Faults: half a file, an addition
// that another writer did not see.
TEST_F(SettingsFileTest, writersOfOneFileTakeTurns)
{
    const std::string part(5'000, 'a');
    auto addOften = [&] {
        for (int i = 0; i < 40; ++i)
            EXPECT_FALSE(files->revise(
                path("file"), kLimit, [&](auto& found) { return found.value_or("") + part; }));
    };
    addOften();
    std::atomic<int> running = 2;
    std::thread first{[&] { addOften(), --running; }};
    std::thread second{[&] { addOften(), --running; }};
    while (running > 0)
        EXPECT_EQ(text("file").size() % part.size(), 0U);
    first.join();
    second.join();
    EXPECT_EQ(text("file").size(), 120 * part.size());
    EXPECT_EQ(files->revise(path("file"), kLimit, [](auto&) { return std::nullopt; }),
        std::errc::operation_canceled);
    EXPECT_THAT(files->list(root), ElementsAre("file"));
}

TEST_F(SettingsFileTest, onlyRegularFilesWithinTheLimitAreReadAndNothingIsReplacedByRename)
{
    std::ofstream(path("file")) << "12345";
    EXPECT_EQ(files->read(path("file"), 5), "12345");
    EXPECT_FALSE(files->read(path("file"), 4));
    EXPECT_FALSE(files->read(root, kLimit));
    EXPECT_FALSE(files->read("/dev/zero", kLimit));
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(files->read(path("pipe"), kLimit)); // and does not wait for a writer
    EXPECT_TRUE(files->exists(path("pipe")));

    std::ofstream(path("older")) << "older";
    EXPECT_EQ(files->rename(path("file"), path("older")), std::errc::file_exists);
    EXPECT_EQ(text("older"), "older");
    EXPECT_FALSE(files->rename(path("file"), path("kept")));
    EXPECT_EQ(text("kept"), "12345");
    EXPECT_FALSE(files->exists(path("file")));
    EXPECT_EQ(files->rename(path("file"), path("other")), std::errc::no_such_file_or_directory);
    ASSERT_FALSE(files->createFolder(path("folder")));
    EXPECT_EQ(files->rename(path("folder"), path("kept")), std::errc::file_exists);
    EXPECT_FALSE(files->rename(path("folder"), path("moved")));
    EXPECT_FALSE(files->remove(path("kept")));
    EXPECT_THAT(files->list(root), ElementsAre("moved", "older", "pipe"));
}

}
