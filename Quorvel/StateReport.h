#pragma once

#include <string>

namespace quorvel {

class BarManager;
class BarViews;
class HotkeyManager;
class NumberKeys;
class WindowStore;
struct Platform;

/// The shortcuts of the lists of applications and of windows, of the bar, and those by number.
struct ReportedHotkeys {
    const HotkeyManager& applications;
    const HotkeyManager& windows;
    const HotkeyManager& bar;
    const NumberKeys& numberKeys;
};

/// The state of the running bar as JSON, for scripts and tests. Frames are global, origin top left,
/// in what other programs of the system count in; what is absent is null. Main thread.
std::string stateReport(const Platform&, const WindowStore&, const BarManager&, const BarViews&,
    const ReportedHotkeys&);

}
