#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gio/gio.h>

namespace quorvel::xdg {

/// Reports files that appear, disappear or change in some folders. Main thread.
///
/// A folder that does not exist is not watched itself, since GIO would look for it every few
/// seconds for ever and an idle program should sleep. Its parent is watched instead, if there is
/// one.
class DirectoryMonitors {
public:
    using Callback = std::function<void(std::string_view path)>;

    explicit DirectoryMonitors(Callback);
    DirectoryMonitors(const DirectoryMonitors&) = delete;
    DirectoryMonitors& operator=(const DirectoryMonitors&) = delete;

    /// Watches exactly these folders from now on.
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
