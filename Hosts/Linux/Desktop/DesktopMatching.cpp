#include "Hosts/Linux/Desktop/DesktopMatching.h"

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/WindowMatching.h"
#include "Hosts/Linux/Desktop/DesktopTracker.h"

namespace quorvel::xdg {

DesktopMatching::DesktopMatching(DesktopTracker& tracker, DesktopEntries& entries)
    : m_tracker(tracker)
    , m_entries(entries)
{
}

std::optional<ApplicationMatch> DesktopMatching::match(WindowID window) const
{
    const auto identity = m_tracker.identityOf(window);
    if (!identity)
        return std::nullopt;
    const auto found = m_entries.match(*identity);
    ApplicationMatch match{.bundleIdentifier = found.bundleIdentifier,
        .kind = found.kind,
        .road = std::string{found.road},
        .facts = {},
        .key = matchKey(*identity)};
    const auto add = [&](MatchFact fact, const std::string& value) {
        if (!value.empty())
            match.facts.emplace_back(fact, value);
    };
    add(MatchFact::applicationID, identity->gtkApplicationId.value_or(""));
    add(MatchFact::windowClass, identity->wmClass);
    add(MatchFact::instance, identity->wmInstance);
    add(MatchFact::executable, identity->executableName.value_or(""));
    add(MatchFact::desktopFile, m_entries.path(found.bundleIdentifier).value_or(""));
    return match;
}

void DesktopMatching::setMended(const Mended& mended)
{
    if (m_entries.setMended(mended))
        m_tracker.matchAnew();
}

}
