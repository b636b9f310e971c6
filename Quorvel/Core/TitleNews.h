#pragma once

#include <map>
#include <string>
#include <string_view>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

class Text;

/// What of a title tells its reader something new when it changes: its words. Punctuation, symbols
/// and letter case are left out, and numbers count as one and the same, with the unit that follows:
/// what only ticks (a clock, a percentage, an unread count that goes from 2 to 3, a spinner, a mark
/// of unsaved changes) is no news; the first number in a title is.
std::string titleSubstance(std::string_view title, const Text&);

/// Which windows have had other titles since they were last in front. A window that has never been
/// there has nothing to be compared with. Main thread.
class TitleNews {
public:
    explicit TitleNews(const Text& text) : m_text(text) { }

    /// Call for each window whenever its title or the focus may have changed; true if there is
    /// news. It stays until the window comes to the front, even if the old title returns: some
    /// alternate.
    bool update(WindowID, const std::string& title, bool isInFront);
    /// Forgets the windows for which this is false.
    template <typename Predicate> void keepIf(Predicate&& isOpen)
    {
        std::erase_if(m_windows, [&](auto& entry) { return !isOpen(entry.first); });
    }

private:
    struct Known {
        std::string title;
        std::string substance; ///< when it was last in front
        bool wasInFront = false;
        bool hasNews = false;
    };

    const Text& m_text;
    std::map<WindowID, Known> m_windows;
};

}
