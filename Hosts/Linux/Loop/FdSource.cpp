#include "Hosts/Linux/Loop/FdSource.h"

#include <memory>
#include <utility>

#include <glib-unix.h>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/Linux/Loop/FolderMonitors.h"

namespace quorvel::xdg {

namespace {

using Callback = std::function<void()>;

// GLib keeps a callback alive while it runs, so it may drop its own subscription.

void deleteCallback(gpointer callback)
{
    delete static_cast<Callback*>(callback);
}

Subscription attached(GSource* source, GSourceFunc call, Callback callback)
{
    g_source_set_callback(source, call, new Callback(std::move(callback)), deleteCallback);
    g_source_attach(source, nullptr);
    return Subscription{std::shared_ptr<GSource>{source, destroySource}};
}

Subscription watchFolder(const std::string& folder, Callback onChange)
{
    return Subscription{std::make_shared<FolderMonitors>(std::vector{folder}, 0,
        [onChange = std::move(onChange)](std::string_view) { onChange(); })};
}

Subscription callAfter(std::chrono::milliseconds time, Callback callback)
{
    GSourceFunc call = [](gpointer function) -> gboolean {
        (*static_cast<Callback*>(function))();
        return G_SOURCE_REMOVE;
    };
    return attached(
        g_timeout_source_new(static_cast<guint>(time.count())), call, std::move(callback));
}

}

Subscription watchFd(int fd, posix::FdCondition condition, std::function<void()> onReady)
{
    auto events = condition == posix::FdCondition::readable ? G_IO_IN : G_IO_OUT;
    auto* source
        = g_unix_fd_source_new(fd, static_cast<GIOCondition>(events | G_IO_HUP | G_IO_ERR));
    GUnixFDSourceFunc call = [](gint, GIOCondition, gpointer function) -> gboolean {
        (*static_cast<Callback*>(function))();
        return G_SOURCE_CONTINUE;
    };
    return attached(source, G_SOURCE_FUNC(call), std::move(onReady));
}

posix::HostLoop hostLoop()
{
    return {watchFd, watchFolder, callAfter};
}

}
