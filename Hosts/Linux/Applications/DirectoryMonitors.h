#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gio/gio.h>

namespace quorvel::xdg {

/// Tells of files that come, go or change in some folders, while it lives. Main thread.
///
/// A folder that does not exist is not watched itself: GIO would look for it every few seconds for
/// ever, and an idle program sleeps. Its parent is, if there is one.
class DirectoryMonitors {
public:
    using Callback = std::function<void(std::string_view path)>;

    explicit DirectoryMonitors(Callback);
    DirectoryMonitors(const DirectoryMonitors&) = delete;
    DirectoryMonitors& operator=(const DirectoryMonitors&) = delete;

    /// These folders from now on and no others.
    void watchOnly(const std::set<std::string>& folders);

private:
    struct Release {
        void operator()(GFileMonitor*) const;
    };

    void watch(const std::string& folder);
    static void didChange(
        GFileMonitor*, GFile*, GFile* other, GFileMonitorEvent, gpointer monitors);

    Callback m_callback;
    std::vector<std::unique_ptr<GFileMonitor, Release>> m_monitors;
};

}
