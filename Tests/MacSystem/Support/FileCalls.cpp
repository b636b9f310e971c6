#include "Tests/MacSystem/Support/SimulatedMac.h"

namespace quorvel::test {

namespace {

struct URL final : Object {
    explicit URL(std::string value) : Object(TypeID::url), path(std::move(value)) { }
    std::string description() const override { return "url " + path; }

    std::string path;
};

}

/// A stream as the host has made it.
struct EventStreamObject final : Object {
    EventStreamObject() : Object(TypeID::eventStream) { }
    std::string description() const override { return "event stream"; }

    FSEventStreamCallback callback = nullptr;
    void* info = nullptr;
    bool isOnMainQueue = false;
    bool isStarted = false;
};

void SimulatedMac::changeFiles()
{
    auto* stream = objectAs<EventStreamObject>(m_eventStream.get());
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
    return create<CFURLRef, URL>(
        std::string{reinterpret_cast<const char*>(path), static_cast<std::size_t>(length)});
}

CFDictionaryRef CFBundleCopyInfoDictionaryInDirectory(CFURLRef url)
{
    const auto* answer = SimulatedMac::current().answerFor(expectObject<URL>(url).path);
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
    const auto ref = create<FSEventStreamRef, EventStreamObject>();
    auto& stream = expectObject<EventStreamObject>(ref);
    stream.callback = callback;
    stream.info = context->info;
    mac.watched = {Value::retain(paths), since == kFSEventStreamEventIdSinceNow, latency, flags};
    mac.setEventStream(Value::retain(ref));
    return ref;
}

void FSEventStreamSetDispatchQueue(FSEventStreamRef ref, dispatch_queue_t queue)
{
    expectObject<EventStreamObject>(ref).isOnMainQueue = queue == dispatch_get_main_queue();
}

Boolean FSEventStreamStart(FSEventStreamRef ref)
{
    const bool canStart = !SimulatedMac::current().answerFor("FSEventStreamStart");
    expectObject<EventStreamObject>(ref).isStarted = canStart;
    return canStart;
}

void FSEventStreamStop(FSEventStreamRef ref)
{
    if (!std::exchange(expectObject<EventStreamObject>(ref).isStarted, false))
        Heap::shared().note("a stream was stopped that had not been started");
}

void FSEventStreamInvalidate(FSEventStreamRef ref)
{
    auto& stream = expectObject<EventStreamObject>(ref);
    if (!std::exchange(stream.isOnMainQueue, false))
        Heap::shared().note("a stream was invalidated that had no queue");
    SimulatedMac::current().setEventStream({});
}

void FSEventStreamRelease(FSEventStreamRef ref)
{
    CFRelease(ref);
}
