#pragma once

#include <optional>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg {

/// The answer of a GLib source's `prepare`: true if the source is due; else `timeout` is how long
/// the loop may sleep, in milliseconds and never too short, -1 for any length.
///
/// Sources use this instead of setting a ready time, because GLib wakes the loop on each such
/// setting, even from the loop's own thread, for one needless iteration.
bool isDueOrSleeps(std::optional<Instant> due, int& timeout);

}
