#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/WindowList.h"

namespace quorvel {

class BarViewModel;
class WindowStore;
struct Platform;

/// One thing that is known of a window, in one line.
struct WindowFact {
    std::string name; ///< in English, for scripts
    std::string value;
    std::string told{}; ///< in the user's language; empty: too much for a menu
};

/// Without anything that a line, or a terminal, would act on.
std::string withoutControls(std::string_view);

/// Why a window has a chip, or none, and to which application it was matched. Main thread.
class WindowFacts {
public:
    /// All it is given outlives it.
    WindowFacts(const Platform&, const WindowStore&, const BarViewModel&);

    std::vector<WindowFact> of(const CGWindowInfo&) const;

private:
    void addRules(std::vector<WindowFact>&, const CGWindowInfo&) const;
    void addMatch(std::vector<WindowFact>&, const CGWindowInfo&) const;
    std::string chipText(WindowID, bool isTracked) const;

    const Platform& m_platform;
    const WindowStore& m_windowStore;
    const BarViewModel& m_viewModel;
};

/// The window as the system lists it; absent if it does not.
std::optional<CGWindowInfo> listedWindow(const WindowList&, WindowID);

}
