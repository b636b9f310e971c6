#pragma once

#include <set>
#include <string>
#include <vector>

#include <glib.h>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/SettingsWindow.h"

namespace quorvel::xdg {

class LaunchTokens;

/// The settings as a program of its own, `quorvel-settings`, so that the bar loads no toolkit and
/// loses nothing when that one fails. Main thread.
class SettingsProgram final : public SettingsWindow {
public:
    /// How long a program that was started may take to connect; until then no other is started.
    static constexpr Duration kStartLimit = seconds(10);

    /// The program is looked for in the folder first, then where the user's programs are.
    SettingsProgram(LaunchTokens&, Dispatch&, std::string folder);
    ~SettingsProgram() override;
    SettingsProgram(const SettingsProgram&) = delete;
    SettingsProgram& operator=(const SettingsProgram&) = delete;

    /// The folder of the running program.
    static std::string ownFolder();

    bool show(SettingsSource&) override { return launch({}); }
    bool replace(SettingsSource&) override;
    /// The program hears of the bar's end by its connection.
    void close() override { }

private:
    struct Started;

    bool launch(const std::vector<std::string>& arguments);
    void start(const std::vector<std::string>& command, const std::string& token);
    void didEnd(int waitStatus);
    void fail(const std::string& reason);

    LaunchTokens& m_tokens;
    Dispatch& m_dispatch;
    const std::string m_folder;
    std::set<guint> m_watches; ///< of the programs that still run
    WorkItem m_start; ///< pending while one is starting
};

}
