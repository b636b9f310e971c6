#pragma once

#include <string>
#include <variant>

namespace quorvel {

/// A domain of stored preferences of another program. Main thread.
class Preferences {
public:
    struct Missing { };
    struct OtherType { };
    using Value = std::variant<Missing, OtherType, bool, double>;

    virtual ~Preferences() = default;

    virtual Value value(const std::string& key) const = 0;
    virtual void setDouble(const std::string& key, double) = 0;
    virtual void setBool(const std::string& key, bool) = 0;
    /// What was set is stored once this returns, and other programs read it.
    virtual void synchronise() = 0;
};

/// The system's own Dock. Main thread, but for `restart`.
class DockControl {
public:
    virtual ~DockControl() = default;

    virtual bool isAutoHideEnabled() const = 0;
    /// Takes effect at once and is stored among the Dock's preferences.
    virtual void setAutoHideEnabled(bool) = 0;
    /// Whether it lies along the bottom of its screen; false too if the system does not say.
    virtual bool isAtBottom() const = 0;
    /// Null if they cannot be opened. The Dock reads them when it starts.
    virtual Preferences* preferences() = 0;
    /// Ends the Dock and returns when it has been told; the system starts it anew by itself. It may
    /// take as long as the host lets a tool run. From any thread.
    virtual void restart() = 0;
};

}
