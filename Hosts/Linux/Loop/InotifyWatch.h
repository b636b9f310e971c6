#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quorvel::xdg {

class InotifyQueue;

/// Reports what appears in one folder, disappears from it or is written there, from inotify(7).
/// Main thread.
///
/// All watches share one descriptor on GLib's loop. GIO's monitors do the same with a thread, and
/// with GIO's file systems, which are more memory than everything else that the bar has of GIO.
class InotifyWatch {
public:
    enum class Change {
        appeared, ///< or took the place of another
        disappeared,
        written, ///< and closed: half a file is of no use, and a log would report each line
        lost, ///< the folder is gone, or events were dropped: this watch has ended with the call
    };
    /// `name` is empty for `lost`. The call may drop this watch, and others.
    using Callback = std::function<void(Change, std::string_view name)>;

    /// Null if it is no folder, or there are no watches left.
    static std::unique_ptr<InotifyWatch> open(const std::string& folder, Callback);
    ~InotifyWatch();
    InotifyWatch(const InotifyWatch&) = delete;
    InotifyWatch& operator=(const InotifyWatch&) = delete;

private:
    friend class InotifyQueue;

    InotifyWatch(std::shared_ptr<InotifyQueue>, int number, Callback);

    const std::shared_ptr<InotifyQueue> m_queue;
    const int m_number; ///< the kernel's, shared by all who watch the same folder
    const std::shared_ptr<const Callback> m_callback; ///< shared with a call that is under way
};

}
