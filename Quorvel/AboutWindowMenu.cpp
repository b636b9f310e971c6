#include "Quorvel/AboutWindowMenu.h"

#include <algorithm>
#include <set>
#include <utility>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Platform/ApplicationMatching.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Text.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

AboutWindowMenu::AboutWindowMenu(const Platform& platform, const WindowStore& windowStore,
    const BarViewModel& viewModel, const PinStore& pinStore, UserSettings& settings)
    : m_platform(platform)
    , m_viewModel(viewModel)
    , m_pinStore(pinStore)
    , m_facts(platform, windowStore, viewModel)
    , m_mending(platform.workspace, settings)
{
}

Menu AboutWindowMenu::of(WindowID id) const
{
    auto window = listedWindow(m_platform.windowServer, id);
    if (!window)
        return {};
    Menu menu;
    for (auto& fact : m_facts.of(*window)) {
        if (!fact.told.empty())
            menu.push_back({fact.told, false, {}});
    }
    auto* matching = m_platform.applicationMatching;
    auto match = matching ? matching->match(id) : std::nullopt;
    if (!match || !MatchMending::canMend(*match))
        return menu;
    menu.push_back({});
    menu.push_back({tr("Belongs To"), true, {}, false, choices(*match)});
    return menu;
}

std::vector<AboutWindowMenu::Candidate> AboutWindowMenu::candidates(
    const std::string& current) const
{
    std::set<std::string> identifiers{current};
    for (auto& [space, chips] : m_viewModel.chipsBySpace.value()) {
        for (auto& chip : chips)
            identifiers.insert(chip.bundleIdentifier.value_or(current));
    }
    for (auto& pin : m_pinStore.pinnedApps().value())
        identifiers.insert(pin.id);
    std::vector<Candidate> found;
    for (auto& identifier : identifiers) {
        if (identifier == current || m_platform.workspace.applicationURL(identifier))
            found.push_back({m_viewModel.appName(identifier), identifier});
    }
    std::ranges::stable_sort(found, [this](auto& first, auto& second) {
        return m_platform.text.compare(first.name, second.name) < 0;
    });
    return found;
}

Menu AboutWindowMenu::choices(const ApplicationMatch& match) const
{
    Menu menu;
    if (m_mending.isMended(match)) {
        menu.push_back(choice(match, {}));
        menu.push_back({});
    }
    for (auto& candidate : candidates(match.bundleIdentifier)) {
        menu.push_back(choice(match, candidate));
        menu.back().kind = MenuItemKind::choice;
        menu.back().isChecked = candidate.identifier == match.bundleIdentifier;
        if (menu.back().isChecked)
            menu.back().action = {}; // it would be kept although nothing is mended
    }
    return menu;
}

MenuItem AboutWindowMenu::choice(
    const ApplicationMatch& match, const std::optional<Candidate>& candidate) const
{
    auto identifier = candidate ? std::optional{candidate->identifier} : std::nullopt;
    return {candidate ? candidate->name : tr("As Found"), true,
        [weak = m_viewModel.weakReference(), mending = m_mending, match, identifier]() mutable {
            if (weak.get())
                mending.mend(match, identifier);
        }};
}

}
