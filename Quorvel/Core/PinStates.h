#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Core/WindowFinder.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class BadgeService;

/// What a pin says of its application, which has no window on the pin's space.
struct PinState {
    bool isOpenElsewhere = false; ///< it has windows on other spaces
    std::optional<std::string> badge;
    std::optional<double> progress; ///< from 0 to 1
    bool wantsAttention = false;

    friend bool operator==(const PinState&, const PinState&) = default;
};

/// Knows of the applications behind pins, by bundle identifier. Main thread.
class PinStates {
public:
    /// Both outlive it.
    PinStates(const WindowFinder&, const BadgeService&);

    PinState state(const std::string& bundleID) const;
    /// The application's windows in the order of coming to them: those that ask for attention
    /// first, then the one that was last in front.
    std::vector<FoundWindow> windows(const std::string& bundleID) const;

    /// Some application's state may be another one.
    Signal<> didChange;

private:
    bool wantsAttention(const std::string& bundleID) const;

    const WindowFinder& m_windowFinder;
    const BadgeService& m_badgeService;
    std::vector<Subscription> m_subscriptions;
};

}
