#include "Hosts/MacOS/System/MacDispatch.h"

#include "Hosts/MacOS/System/CFRunLoopThread.h"

namespace quorvel {

Instant MacDispatch::now() const
{
    return Instant{Duration{static_cast<Duration::rep>(clock_gettime_nsec_np(CLOCK_UPTIME_RAW))}};
}

std::unique_ptr<Queue> MacDispatch::makeSerialQueue(
    std::string_view label, QualityOfService quality)
{
    return std::make_unique<DispatchQueue>(DispatchQueue::Kind::serial, label, quality);
}

std::unique_ptr<RunLoopThread> MacDispatch::startThread(
    std::string_view name, QualityOfService quality)
{
    return std::make_unique<CFRunLoopThread>(name, quality);
}

}
