#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Hosts/Linux/Bus/SessionBus.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel::xdg {

struct LaunchEntry;
struct LaunchRequest;

/// Starts installed applications as their desktop files say: by a message on the session bus, or as
/// a program, in a terminal where it needs one. What is started outlives the bar. Main thread.
class ApplicationLauncher {
public:
    /// The file that could not be started. It has been reported on standard error by then.
    using Failed = std::function<void(const std::string& desktopFile)>;

    explicit ApplicationLauncher(Failed);
    ~ApplicationLauncher();
    ApplicationLauncher(const ApplicationLauncher&) = delete;
    ApplicationLauncher& operator=(const ApplicationLauncher&) = delete;

    void start(const LaunchRequest&);
    /// Opens the file with the user's application for such files.
    void openFile(const std::string& path, const std::string& token);
    /// The desktop file of the user's application for such addresses; absent if there is none, or
    /// the text is no address.
    static std::optional<std::string> handlerOf(const std::string& url);

    /// While it is not, applications that start by a message are run as programs.
    bool isOnTheBus() const { return m_bus.connection() != nullptr; }

    /// True unless the desktop file says that there is only ever one window.
    static bool opensManyWindows(const std::string& desktopFile);
    /// The actions that the desktop file offers besides starting and that can be started, in the
    /// user's language.
    static std::vector<ApplicationAction> actions(const std::string& desktopFile);

private:
    struct BusCall;
    struct Opening;
    struct Started;

    void startByMessage(LaunchRequest, LaunchEntry);
    void startAsProgram(const LaunchRequest&, const LaunchEntry&);
    void watch(GPid, const LaunchRequest&, const LaunchEntry&);
    void fail(const LaunchRequest&, const std::string& name, const std::string& reason);

    static void onAnswered(GObject*, GAsyncResult*, gpointer call);
    static void onHandlerFound(GObject*, GAsyncResult*, gpointer opening);

    const Failed m_failed;
    GCancellation m_cancellable;
    std::set<guint> m_watches; ///< of the programs that still run
    SessionBus m_bus;
};

}
