#pragma once

#include <memory>
#include <string>

#include "Quorvel/Core/UserSettings.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

/// The store of the user's settings over a disk in memory.
struct SettingsFixture : testing::Test {
    static constexpr auto kFile = FakeFiles::kSettingsFile;

    FakeDesktop desktop;
    std::unique_ptr<UserSettings> settings;
    int published = 0;
    Subscription subscription;

    /// As the program starts, with this in the file.
    UserSettings& start(const std::string& file)
    {
        desktop.files().put(kFile, file);
        return start();
    }
    UserSettings& start()
    {
        subscription = {};
        settings.reset();
        auto platform = desktop.platform();
        settings = std::make_unique<UserSettings>(platform.files, platform.loginItem,
            platform.application, platform.dispatch, platform.trace);
        published = 0;
        subscription = settings->data().subscribe([this](auto&) { ++published; });
        return *settings;
    }
    /// Past every save.
    void settle() { desktop.advance(seconds(1)); }
    std::string file() { return desktop.files().bytes(kFile).value_or("no file"); }
};

}
