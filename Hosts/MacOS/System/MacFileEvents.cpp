#include "Hosts/MacOS/System/MacFileEvents.h"

#include <memory>
#include <utility>

#include "Hosts/MacOS/System/CFValues.h"

namespace quorvel {

namespace {

/// With file events a change of a file inside is told of as well, not only of its folder.
constexpr FSEventStreamCreateFlags kFlags
    = kFSEventStreamCreateFlagUseCFTypes | kFSEventStreamCreateFlagFileEvents;

CFRef<CFArrayRef> makeTexts(const std::vector<std::string>& texts)
{
    const auto array = CFRef<CFMutableArrayRef>::adopt(
        CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    for (const auto& each : texts) {
        if (const auto text = makeString(each))
            CFArrayAppendValue(array.get(), text.get());
    }
    return CFRef<CFArrayRef>::retain(array.get());
}

class EventStream {
public:
    explicit EventStream(std::function<void()> handler) : m_handler(std::move(handler)) { }
    EventStream(const EventStream&) = delete;
    EventStream& operator=(const EventStream&) = delete;
    ~EventStream()
    {
        if (!m_stream)
            return;
        if (m_isStarted)
            FSEventStreamStop(m_stream);
        FSEventStreamInvalidate(m_stream); // no callback comes after it
        FSEventStreamRelease(m_stream);
    }

    bool start(const std::vector<std::string>& folders, Duration latency)
    {
        FSEventStreamContext context{0, this, nullptr, nullptr, nullptr};
        const auto paths = makeTexts(folders);
        m_stream = FSEventStreamCreate(kCFAllocatorDefault, &EventStream::didChange, &context,
            paths.get(), kFSEventStreamEventIdSinceNow,
            std::chrono::duration<double>(latency).count(), kFlags);
        if (!m_stream)
            return false;
        FSEventStreamSetDispatchQueue(m_stream, dispatch_get_main_queue());
        m_isStarted = FSEventStreamStart(m_stream);
        return m_isStarted;
    }

private:
    static void didChange(ConstFSEventStreamRef, void* stream, size_t, void*,
        const FSEventStreamEventFlags*, const FSEventStreamEventId*)
    {
        static_cast<EventStream*>(stream)->m_handler();
    }

    const std::function<void()> m_handler;
    FSEventStreamRef m_stream = nullptr;
    bool m_isStarted = false;
};

}

std::optional<Subscription> MacFileEvents::watch(
    const std::vector<std::string>& folders, Duration latency, std::function<void()> handler)
{
    auto stream = std::make_shared<EventStream>(std::move(handler));
    if (!stream->start(folders, latency))
        return std::nullopt;
    return Subscription{std::move(stream)};
}

}
