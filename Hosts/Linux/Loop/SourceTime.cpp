#include "Hosts/Linux/Loop/SourceTime.h"

#include <algorithm>
#include <chrono>
#include <limits>

#include "Hosts/Linux/Loop/WorkSchedule.h"

namespace quorvel::xdg {

bool isDueOrSleeps(std::optional<Instant> due, int& timeout)
{
    timeout = -1;
    if (!due)
        return false;
    if (*due == Instant::min())
        return true;
    auto now = WorkSchedule::now();
    if (*due <= now)
        return true;
    auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - now).count();
    timeout = static_cast<int>(std::min<std::int64_t>(wait, std::numeric_limits<int>::max()));
    return false;
}

}
