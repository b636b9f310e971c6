#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Core/SearchTerms.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class BarViewModel;
class Text;
class WindowServer;
struct Platform;

/// A window as a search shows it.
struct FoundWindow {
    ChipData chip;
    /// Absent if it is on several spaces, of which one is shown.
    std::optional<SpaceID> space;

    friend bool operator==(const FoundWindow&, const FoundWindow&) = default;
};

/// The windows of all spaces in the order in which they were last in front, and the search in them.
/// Main thread.
class WindowFinder {
public:
    /// The model outlives it.
    WindowFinder(BarViewModel&, const Platform&);

    /// The window that is in front comes first. Those that have not been in front since the program
    /// started follow in the order in which they cover each other.
    std::vector<FoundWindow> windows() const;
    /// Those of which each word of the query is in the title or in the application's name, wherever
    /// it stands. Where all words begin one, the window comes before the others.
    std::vector<FoundWindow> search(const std::vector<FoundWindow>&, std::string_view query);

    /// Whether the window is on another space and can come to this one.
    bool canBring(const FoundWindow&, SpaceID to) const;

    BarViewModel& viewModel() const { return m_viewModel; }

private:
    struct Terms {
        std::string source;
        SearchText text;
        SearchWords words;
    };

    void noteFocus(const std::optional<WindowID>&);
    std::vector<WindowID> order() const;
    const Terms& terms(const ChipData&);

    BarViewModel& m_viewModel;
    WindowServer& m_windowServer;
    const Text& m_text;
    std::vector<WindowID> m_lastInFront; ///< the last one first
    std::map<WindowID, Terms> m_terms; ///< of windows that were searched, some gone since
    Subscription m_focusChange;
};

}
