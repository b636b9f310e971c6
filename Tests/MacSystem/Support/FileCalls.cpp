#include "Tests/MacSystem/Support/SimulatedMac.h"

namespace quorvel::test {

namespace {

/// As the host has made it.
struct EventStream {
    FSEventStreamCallback callback = nullptr;
    void* info = nullptr;
    bool isOnMainQueue = false;
    bool isStarted = false;
};

}

void SimulatedMac::changeFiles()
{
    auto* stream = contentIf<EventStream>(m_eventStream.get());
    if (stream && stream->isStarted && stream->isOnMainQueue)
        stream->callback(nullptr, stream->info, 0, nullptr, nullptr, nullptr);
}

}

using namespace quorvel::test;

CFURLRef CFURLCreateFromFileSystemRepresentation(
    CFAllocatorRef, const UInt8* path, CFIndex length, Boolean)
{
    if (length == 0)
        return nullptr;
    const std::string text{reinterpret_cast<const char*>(path), static_cast<std::size_t>(length)};
    return create<CFURLRef>(TypeID::url, "url " + text, text);
}

CFDictionaryRef CFBundleCopyInfoDictionaryInDirectory(CFURLRef url)
{
    const auto* answer = SimulatedMac::current().answerFor(contentOf<std::string>(url));
    return answer ? static_cast<CFDictionaryRef>(CFRetain(answer->get())) : nullptr;
}

dispatch_queue_t dispatch_get_main_queue()
{
    static char queue;
    return reinterpret_cast<dispatch_queue_t>(&queue);
}

FSEventStreamRef FSEventStreamCreate(CFAllocatorRef, FSEventStreamCallback callback,
    FSEventStreamContext* context, CFArrayRef paths, FSEventStreamEventId since, double latency,
    FSEventStreamCreateFlags flags)
{
    auto& mac = SimulatedMac::current();
    if (const auto* answer = mac.answerFor("FSEventStreamCreate"); answer && !*answer)
        return nullptr;
    const auto ref = create<FSEventStreamRef>(
        TypeID::eventStream, "event stream", EventStream{callback, context->info});
    mac.watched = {Value::retain(paths), since == kFSEventStreamEventIdSinceNow, latency, flags};
    mac.setEventStream(Value::retain(ref));
    return ref;
}

void FSEventStreamSetDispatchQueue(FSEventStreamRef ref, dispatch_queue_t queue)
{
    contentOf<EventStream>(ref).isOnMainQueue = queue == dispatch_get_main_queue();
}

Boolean FSEventStreamStart(FSEventStreamRef ref)
{
    const bool canStart = !SimulatedMac::current().answerFor("FSEventStreamStart");
    contentOf<EventStream>(ref).isStarted = canStart;
    return canStart;
}

void FSEventStreamStop(FSEventStreamRef ref)
{
    if (!std::exchange(contentOf<EventStream>(ref).isStarted, false))
        Heap::shared().note("a stream was stopped that had not been started");
}

void FSEventStreamInvalidate(FSEventStreamRef ref)
{
    auto& stream = contentOf<EventStream>(ref);
    if (!std::exchange(stream.isOnMainQueue, false))
        Heap::shared().note("a stream was invalidated that had no queue");
    SimulatedMac::current().setEventStream({});
}

void FSEventStreamRelease(FSEventStreamRef ref)
{
    CFRelease(ref);
}
