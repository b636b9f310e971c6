#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

struct Appearance {
    bool isDark = false;
    bool reduceTransparency = false;
    bool reduceMotion = false;
    bool increaseContrast = false;
    bool isRightToLeft = false;
    std::optional<Color> accent = {}; ///< of the system; absent: the bar uses its own
    std::string font = {}; ///< of the interface, in the host's terms; on a change, measure again

    friend bool operator==(const Appearance&, const Appearance&) = default;
};

/// The program itself, as the system sees it. Main thread.
class Application {
public:
    virtual ~Application() = default;

    virtual void setActivationPolicy(ActivationPolicy) = 0;
    virtual ProcessID processID() const = 0;
    /// The identifier by which the system knows the program; absent where programs have none, and
    /// for one that was started outside its bundle.
    virtual std::optional<std::string> bundleIdentifier() const = 0;
    /// Absent where the system's look does not depend on its version.
    virtual std::optional<int> operatingSystemMajorVersion() const = 0;
    /// Prints one line to standard error, for whoever started the program.
    virtual void warn(std::string_view) = 0;
    /// Runs the event loop until `terminate`; returns the exit status.
    virtual int run() = 0;
    /// Emits `willTerminate` and ends the loop.
    virtual void terminate() = 0;

    virtual const Published<Appearance>& appearance() const = 0;
    Signal<> willTerminate;
};

}
