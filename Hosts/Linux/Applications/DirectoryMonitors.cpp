#include "Hosts/Linux/Applications/DirectoryMonitors.h"

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

DirectoryMonitors::DirectoryMonitors(Callback callback) : m_callback(std::move(callback))
{
}

void DirectoryMonitors::Release::operator()(GFileMonitor* monitor) const
{
    g_signal_handlers_disconnect_matched(monitor, G_SIGNAL_MATCH_FUNC, 0, 0, nullptr,
        reinterpret_cast<gpointer>(&DirectoryMonitors::didChange), nullptr);
    g_file_monitor_cancel(monitor);
    g_object_unref(monitor);
}

void DirectoryMonitors::watchOnly(const std::set<std::string>& folders)
{
    m_monitors.clear();
    for (const auto& folder : folders)
        watch(folder);
}

void DirectoryMonitors::watch(const std::string& folder)
{
    const auto isFolder = [](const std::string& path) {
        return !path.empty() && g_file_test(path.c_str(), G_FILE_TEST_IS_DIR);
    };
    const auto path = isFolder(folder) ? folder : folder.substr(0, folder.rfind('/'));
    if (!isFolder(path))
        return;

    const GObjectHandle<GFile> file{g_file_new_for_path(path.c_str())};
    GFileMonitor* monitor = g_file_monitor_directory(
        file.get(), G_FILE_MONITOR_NONE, nullptr, nullptr); // null: no watches left
    if (!monitor)
        return;
    g_signal_connect(monitor, "changed", G_CALLBACK(&DirectoryMonitors::didChange), this);
    m_monitors.emplace_back(monitor);
}

void DirectoryMonitors::didChange(
    GFileMonitor*, GFile* file, GFile*, GFileMonitorEvent event, gpointer monitors)
{
    if (event == G_FILE_MONITOR_EVENT_ATTRIBUTE_CHANGED)
        return;
    if (const GText path{g_file_get_path(file)})
        static_cast<DirectoryMonitors*>(monitors)->m_callback(path.get());
}

}
