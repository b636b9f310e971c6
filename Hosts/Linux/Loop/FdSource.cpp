#include "Hosts/Linux/Loop/FdSource.h"

#include <memory>
#include <utility>

#include <glib-unix.h>
#include <glib.h>

namespace quorvel::xdg {

Subscription watchFd(int fd, posix::FdCondition condition, std::function<void()> onReady)
{
    auto events = condition == posix::FdCondition::readable ? G_IO_IN : G_IO_OUT;
    auto* source
        = g_unix_fd_source_new(fd, static_cast<GIOCondition>(events | G_IO_HUP | G_IO_ERR));
    // GLib keeps the callback alive while it runs, so it may drop its own watch.
    auto* callback = new std::function<void()>(std::move(onReady));
    GUnixFDSourceFunc call = [](gint, GIOCondition, gpointer function) -> gboolean {
        (*static_cast<std::function<void()>*>(function))();
        return G_SOURCE_CONTINUE;
    };
    g_source_set_callback(source, G_SOURCE_FUNC(call), callback,
        [](gpointer function) { delete static_cast<std::function<void()>*>(function); });
    g_source_attach(source, nullptr);
    return Subscription{std::shared_ptr<void>{source, [](void* dropped) {
                                                  g_source_destroy(static_cast<GSource*>(dropped));
                                                  g_source_unref(static_cast<GSource*>(dropped));
                                              }}};
}

}
