#pragma once

#include <optional>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg {

/// What the `prepare` of a source of GLib's loop says: true if the source is due, else how long the
/// loop may sleep, in milliseconds and never too short; -1 for as long as it likes.
///
/// Sources ask this instead of setting a ready time, for GLib wakes the loop on each such setting,
/// even of the thread that runs it, and it goes round once more for nothing.
bool isDueOrSleeps(std::optional<Instant> due, int& timeout);

}
