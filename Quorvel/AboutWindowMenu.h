#pragma once

#include "Quorvel/MatchMending.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Menu.h"
#include "Quorvel/WindowFacts.h"

namespace quorvel {

class BarViewModel;
class PinStore;
class UserSettings;
class WindowStore;
struct Platform;

/// The menu that tells a user why a window is on the bar and to which application it was matched,
/// and lets them choose another one where the system does not say itself which it is. Main thread.
class AboutWindowMenu {
public:
    /// All it is given outlives it, and the settings outlive the model.
    AboutWindowMenu(
        const Platform&, const WindowStore&, const BarViewModel&, const PinStore&, UserSettings&);

    /// Its actions do nothing once the model is gone. Empty for a window that is not there.
    Menu of(WindowID) const;

private:
    struct Candidate {
        std::string name;
        std::string identifier;
    };

    /// With windows or pins, in the order of their names.
    std::vector<Candidate> candidates(const std::string& current) const;
    Menu choices(const ApplicationMatch&) const;
    MenuItem choice(const ApplicationMatch&, const std::optional<Candidate>&) const;

    const Platform& m_platform;
    const BarViewModel& m_viewModel;
    const PinStore& m_pinStore;
    WindowFacts m_facts;
    MatchMending m_mending;
};

}
