#include "Hosts/Linux/Desktop/SettingsProgram.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Hosts/Linux/Desktop/LaunchTokens.h"
#include "Hosts/Linux/Loop/GLibDispatch.h"
#include "Tests/Host/MainLoop.h"
#include "Tests/Host/fixtures/InstalledApplications.h"

namespace quorvel::xdg::x11 {
namespace {

struct OneToken final : LaunchTokens {
    void request(std::function<void(const std::string&)> then) override { then("token_TIME7"); }
};

struct NoSource final : SettingsSource {
    const Published<SettingsDescription>& description() const override { return m_description; }
    std::optional<SettingsRefusal> apply(const SettingsChange&) override { return {}; }
    const Published<std::string>& recordingRow() const override { return m_recordingRow; }
    void setRecordingRow(const std::string&) override { }
    bool keyPressed(std::uint32_t, std::uint64_t) override { return false; }

    Published<SettingsDescription> m_description;
    Published<std::string> m_recordingRow;
};

struct SettingsProgramTest : testing::Test {
    SettingsProgramTest()
    {
        ::setenv("PATH", (installed.path("bin") + ":/bin:/usr/bin").c_str(), 1);
        std::filesystem::create_directories(installed.path("started"));
        failures = program.didFail.subscribe([this] { ++failed; });
    }
    ~SettingsProgramTest() override
    {
        for (auto& started : starts())
            ::kill(std::stoi(started), SIGKILL);
        ::setenv("PATH", searchPath.c_str(), 1);
    }

    /// It says that it was started, and does then what is said here.
    void install(const std::string& folder, const std::string& then)
    {
        auto file = installed.write(folder + "/quorvel-settings",
            "#!/bin/sh\necho \"" + folder + " $XDG_ACTIVATION_TOKEN\" > \"$HOME/started/$$\"\n"
                + then + "\n");
        ::chmod(file.c_str(), 0700);
    }
    std::vector<std::string> starts() const
    {
        std::vector<std::string> processes;
        for (auto& file : std::filesystem::directory_iterator{installed.path("started")})
            processes.push_back(file.path().filename());
        return processes;
    }
    std::string said(const std::string& process) const
    {
        std::string line;
        std::ifstream file{installed.path("started/" + process)};
        std::getline(file, line);
        return line;
    }
    bool isStarted(const std::string& words)
    {
        return eventually([&] {
            auto processes = starts();
            return std::ranges::any_of(
                processes, [&](auto& process) { return said(process) == words; });
        });
    }

    const std::string searchPath = std::getenv("PATH");
    test::InstalledApplications installed;
    OneToken tokens;
    GLibDispatch dispatch;
    NoSource source;
    SettingsProgram program{tokens, dispatch, installed.path("own")};
    int failed = 0;
    Subscription failures;
};

}

// Faults: the program of another version, one that comes up behind other windows, two windows for
// two clicks, none ever again after the first.
TEST_F(SettingsProgramTest, isStartedOnceFromBesideTheBarOrTheUsersPrograms)
{
    install("bin", "exec sleep 600");
    EXPECT_TRUE(program.show(source));
    EXPECT_TRUE(program.show(source));
    EXPECT_TRUE(isStarted("bin token_TIME7"));

    SettingsProgram another{tokens, dispatch, installed.path("own")};
    install("own", "exit 0");
    EXPECT_TRUE(another.show(source));
    EXPECT_TRUE(isStarted("own token_TIME7"));
    EXPECT_TRUE(eventually([&] { return another.show(source) && starts().size() > 2; }))
        << "it has ended";
    EXPECT_EQ(std::ranges::count(
                  starts(), "bin token_TIME7", [&](auto& process) { return said(process); }),
        1);
    EXPECT_EQ(failed, 0);
}

// Faults: a click that does nothing and says nothing; one failure that keeps the next from trying.
TEST_F(SettingsProgramTest, aProgramThatDoesNotComeUpIsReported)
{
    testing::internal::CaptureStderr();
    EXPECT_FALSE(program.show(source));
    EXPECT_EQ(failed, 1);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("quorvel-settings: it is not installed"),
        std::string::npos);

    for (auto* then : {"exit 1", "kill -SEGV $$", "exec missing-program"}) {
        SCOPED_TRACE(then);
        install("own", then);
        failed = 0;
        testing::internal::CaptureStderr();
        EXPECT_TRUE(program.show(source));
        EXPECT_TRUE(eventually([&] { return failed == 1; }));
        EXPECT_NE(testing::internal::GetCapturedStderr().find("cannot start quorvel-settings"),
            std::string::npos);
    }
}

}
