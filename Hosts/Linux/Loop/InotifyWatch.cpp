#include "Hosts/Linux/Loop/InotifyWatch.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

#include <sys/inotify.h>
#include <unistd.h>

#include "Hosts/Linux/Loop/FdSource.h"

namespace quorvel::xdg {

namespace {

constexpr std::uint32_t kEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO
    | IN_CLOSE_WRITE | IN_MOVE_SELF | IN_ONLYDIR | IN_EXCL_UNLINK;

InotifyWatch::Change changeOf(std::uint32_t mask)
{
    if (mask & (IN_CREATE | IN_MOVED_TO))
        return InotifyWatch::Change::appeared;
    return mask & IN_CLOSE_WRITE ? InotifyWatch::Change::written
                                 : InotifyWatch::Change::disappeared;
}

}

/// The descriptor, for as long as anything is watched.
class InotifyQueue : public std::enable_shared_from_this<InotifyQueue> {
public:
    /// Null where the kernel gives none.
    static std::shared_ptr<InotifyQueue> shared()
    {
        static std::weak_ptr<InotifyQueue> current;
        if (auto queue = current.lock())
            return queue;
        posix::UniqueFd fd{inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
        if (!fd)
            return nullptr;
        auto queue = std::make_shared<InotifyQueue>(std::move(fd));
        current = queue;
        return queue;
    }

    explicit InotifyQueue(posix::UniqueFd fd)
        : m_fd(std::move(fd))
        , m_readable(watchFd(m_fd.get(), posix::FdCondition::readable, [this] { read(); }))
    {
    }

    /// Negative if it cannot be watched.
    int begin(const std::string& folder)
    {
        return inotify_add_watch(m_fd.get(), folder.c_str(), kEvents);
    }

    void add(const InotifyWatch& watch) { m_watches[watch.m_number].push_back(watch.m_callback); }

    /// The kernel has one watch for each folder, however many ask for it.
    void remove(const InotifyWatch& watch)
    {
        const auto found = m_watches.find(watch.m_number);
        if (found == m_watches.end()) // it has ended
            return;
        std::erase_if(
            found->second, [&](const auto& entry) { return entry.lock() == watch.m_callback; });
        if (!found->second.empty())
            return;
        inotify_rm_watch(m_fd.get(), watch.m_number);
        m_watches.erase(found);
    }

private:
    using Change = InotifyWatch::Change;
    using Callbacks = std::vector<std::weak_ptr<const InotifyWatch::Callback>>;

    /// One buffer a turn, so that a flood leaves the loop time for everything else.
    void read()
    {
        const auto keep = shared_from_this();
        alignas(inotify_event) std::array<char, 8192> bytes;
        const auto count = ::read(m_fd.get(), bytes.data(), bytes.size());
        for (std::ptrdiff_t at = 0; at < count;) {
            inotify_event event;
            std::memcpy(&event, bytes.data() + at, sizeof event);
            const char* name = bytes.data() + at + sizeof event;
            deliver(event, {name, strnlen(name, event.len)});
            at += static_cast<std::ptrdiff_t>(sizeof event + event.len);
        }
    }

    void deliver(const inotify_event& event, std::string_view name)
    {
        if (event.mask & IN_Q_OVERFLOW)
            return endAll();
        const auto found = m_watches.find(event.wd);
        if (found == m_watches.end()) // dropped since
            return;
        if (event.mask & (IN_IGNORED | IN_MOVE_SELF)) {
            inotify_rm_watch(m_fd.get(), event.wd);
            const auto callbacks = std::move(found->second);
            m_watches.erase(found);
            return tell(callbacks, Change::lost, {});
        }
        if (!name.empty())
            tell(Callbacks{found->second}, changeOf(event.mask), name);
    }

    void endAll()
    {
        const auto watches = std::exchange(m_watches, {});
        for (const auto& [number, callbacks] : watches)
            inotify_rm_watch(m_fd.get(), number);
        for (const auto& [number, callbacks] : watches)
            tell(callbacks, Change::lost, {});
    }

    static void tell(const Callbacks& callbacks, Change change, std::string_view name)
    {
        for (const auto& entry : callbacks) {
            if (const auto callback = entry.lock())
                (*callback)(change, name);
        }
    }

    const posix::UniqueFd m_fd;
    std::map<int, Callbacks> m_watches; ///< by the kernel's number
    const Subscription m_readable; ///< last: ends before the descriptor closes
};

std::unique_ptr<InotifyWatch> InotifyWatch::open(const std::string& folder, Callback callback)
{
    auto queue = InotifyQueue::shared();
    const int number = queue ? queue->begin(folder) : -1;
    if (number < 0)
        return nullptr;
    return std::unique_ptr<InotifyWatch>{
        new InotifyWatch{std::move(queue), number, std::move(callback)}};
}

InotifyWatch::InotifyWatch(std::shared_ptr<InotifyQueue> queue, int number, Callback callback)
    : m_queue(std::move(queue))
    , m_number(number)
    , m_callback(std::make_shared<const Callback>(std::move(callback)))
{
    m_queue->add(*this);
}

InotifyWatch::~InotifyWatch()
{
    m_queue->remove(*this);
}

}
