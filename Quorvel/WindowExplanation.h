#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/MatchMending.h"
#include "Quorvel/Platform/ControlChannel.h"
#include "Quorvel/WindowFacts.h"

namespace quorvel {

class BarViewModel;
class UserSettings;
class WindowStore;
struct Platform;

/// Says why a window has a chip, or none, and to which application it was matched; and keeps a
/// match that the user mends. For scripts and people: a line for each fact, "name: value". Main
/// thread.
class WindowExplanation {
public:
    /// All it is given outlives it.
    WindowExplanation(const Platform&, const WindowStore&, const BarViewModel&, UserSettings&);

    static bool isRequest(const std::vector<std::string>& arguments);
    /// Of "--explain WINDOW" and "--match WINDOW [APPLICATION]". A window is given by its number,
    /// by its number for other programs (decimal, or after "0x"), or as "focused".
    ControlReply answer(const std::vector<std::string>& arguments);

private:
    std::optional<CGWindowInfo> find(const std::string& window) const;
    std::string explain(const CGWindowInfo&) const;
    ControlReply mend(const CGWindowInfo&, const std::optional<std::string>& application);

    const Platform& m_platform;
    const BarViewModel& m_viewModel;
    WindowFacts m_facts;
    MatchMending m_mending;
};

}
