#include "Quorvel/MatchMending.h"

#include <string_view>

#include <fmt/format.h>

#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/ApplicationMatching.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/WindowFacts.h"

namespace quorvel {

namespace {

/// Of an identifier or a key in the settings.
constexpr std::size_t kLongestText = 1024;

}

bool MatchMending::canMend(const ApplicationMatch& match)
{
    return !match.key.empty() && match.key.size() <= kLongestText;
}

bool MatchMending::isMended(const ApplicationMatch& match) const
{
    return m_settings.mendedMatches().contains(match.key);
}

std::string MatchMending::mend(
    const ApplicationMatch& match, const std::optional<std::string>& application)
{
    if (!canMend(match))
        return "the window says nothing of itself that a match could be kept for";
    auto mended = m_settings.mendedMatches();
    if (!application) {
        mended.erase(match.key);
    } else {
        std::string_view identifier = *application;
        if (identifier.ends_with(".desktop"))
            identifier.remove_suffix(std::string_view{".desktop"}.size());
        if (identifier.size() > kLongestText || !m_workspace.applicationURL(identifier))
            return fmt::format("no application '{}' is installed", withoutControls(identifier));
        mended[match.key] = identifier;
        if (mended.size() > kMost)
            return "too many matches are kept already; --match WINDOW removes one";
    }
    m_settings.setMendedMatches(std::move(mended));
    return {};
}

}
