#include "Hosts/Linux/Desktop/SettingsProgram.h"

#include <optional>
#include <utility>

#include <fmt/format.h>

#include "Hosts/Linux/Applications/AutostartItem.h"
#include "Hosts/Linux/Applications/ProgramStart.h"
#include "Hosts/Linux/Applications/TerminalProgram.h"
#include "Hosts/Linux/Applications/XdgFolders.h"
#include "Hosts/Linux/Desktop/LaunchTokens.h"
#include "Hosts/Posix/StandardStreams.h"

namespace quorvel::xdg {

namespace {

constexpr char kProgram[] = "quorvel-settings";
/// The toolkit's own: the program takes over the name under which the other one runs, which ends as
/// soon as it hears of that.
constexpr char kReplace[] = "--gapplication-replace";

}

/// A program whose end is waited for.
struct SettingsProgram::Started {
    SettingsProgram* owner;
    guint watch = 0;
};

SettingsProgram::SettingsProgram(LaunchTokens& tokens, Dispatch& dispatch, std::string folder)
    : m_tokens(tokens)
    , m_dispatch(dispatch)
    , m_folder(std::move(folder))
{
}

SettingsProgram::~SettingsProgram()
{
    for (const auto watch : m_watches)
        g_source_remove(watch);
}

std::string SettingsProgram::ownFolder()
{
    const auto program = AutostartItem::runningProgram();
    return program.substr(0, program.rfind('/'));
}

bool SettingsProgram::replace(SettingsSource&)
{
    posix::tell(fmt::format("{} does not answer: another one is started", kProgram));
    return launch({kReplace});
}

bool SettingsProgram::launch(const std::vector<std::string>& arguments)
{
    if (m_start.isPending())
        return true;
    auto program = programPath(m_folder + "/" + kProgram);
    if (!program)
        program = programPath(kProgram);
    if (!program) {
        fail("it is not installed");
        return false;
    }
    m_start = m_dispatch.main().after(kStartLimit, [] { });
    std::vector<std::string> command{*program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    m_tokens.request([this, command](const std::string& token) { start(command, token); });
    return true;
}

void SettingsProgram::start(const std::vector<std::string>& command, const std::string& token)
{
    const auto outcome = ProgramStart{command, homeFolder(), token}.run();
    if (const auto* reason = std::get_if<std::string>(&outcome))
        return fail(*reason);
    auto* started = new Started{this};
    const auto onEnd = [](GPid, gint status, gpointer data) {
        auto& ended = *static_cast<Started*>(data);
        ended.owner->m_watches.erase(ended.watch);
        ended.owner->didEnd(status);
    };
    started->watch = g_child_watch_add_full(G_PRIORITY_DEFAULT, std::get<GPid>(outcome), onEnd,
        started, [](gpointer data) { delete static_cast<Started*>(data); });
    m_watches.insert(started->watch);
}

void SettingsProgram::didEnd(int waitStatus)
{
    if (waitStatus == 0) {
        m_start = {};
        return;
    }
    if (neverStarted(waitStatus))
        return fail("a program or library that it needs is missing");
    if (m_start.isPending())
        return fail("it ended with an error");
    posix::tell(fmt::format("{} ended with an error", kProgram));
}

void SettingsProgram::fail(const std::string& reason)
{
    m_start = {};
    posix::tell(fmt::format("cannot start {}: {}", kProgram, reason));
    didFail.emit();
}

}
