#include "Quorvel/Skylight/SpaceWindows.h"

#include <algorithm>

#include "Quorvel/Skylight/ScreenLog.h"

namespace quorvel {

namespace {

constexpr std::size_t kMaximumDisplays = 32;

std::string displayIdentifier(const ManagedDisplay& display, int fallbackIndex)
{
    if (auto* text = std::get_if<std::string>(&display.identifier))
        return *text;
    if (auto* number = std::get_if<std::int64_t>(&display.identifier))
        return std::to_string(*number);
    return "Display " + std::to_string(fallbackIndex);
}

std::optional<SpaceID> spaceID(const ManagedSpace& space)
{
    if (space.id64)
        return SpaceID{*space.id64};
    if (space.managedSpaceID)
        return SpaceID{*space.managedSpaceID};
    return {};
}

bool isMainAlias(std::string_view normalized)
{
    return normalized == "MAIN" || normalized == "PRIMARY";
}

}

std::string normalizedDisplayIdentifier(std::string_view identifier)
{
    std::string normalized{identifier};
    // Identifiers are ASCII; the locale's idea of upper case must not matter.
    for (char& character : normalized) {
        if (character >= 'a' && character <= 'z')
            character = static_cast<char>(character - 'a' + 'A');
    }
    return normalized;
}

SpaceWindows::Answer SpaceWindows::ask() const
{
    Answer answer;
    auto displays = m_windowServer.managedDisplaySpaces();
    if (!displays)
        return answer;
    int displayIndex = 0;
    for (auto& display : *displays) {
        auto identifier = displayIdentifier(display, displayIndex);
        int spaceIndex = 0;
        for (auto& space : display.spaces) {
            // A space without a readable id is left out, but keeps its place in the count.
            if (auto id = spaceID(space))
                answer.spaces.push_back({displayIndex, identifier, spaceIndex, *id,
                    space.type.value_or(0), space.uuid.value_or("")});
            ++spaceIndex;
        }
        auto shown = display.currentSpace ? spaceID(*display.currentSpace) : std::nullopt;
        if (shown)
            answer.shown.push_back(*shown);
        ++displayIndex;
    }
    return answer;
}

void SpaceWindows::moveWindowExclusively(WindowID window, SpaceID target) const
{
    m_windowServer.addWindowsToSpaces({window}, {target});
    auto spaces = m_windowServer.spacesOfWindows(kAllSpacesMask, {window});
    if (!spaces)
        return;
    std::erase(*spaces, target);
    if (!spaces->empty())
        m_windowServer.removeWindowsFromSpaces({window}, *spaces);
}

bool SpaceWindows::setBottomEdgeReservation(SpaceID space, double height, ScreenLog& log) const
{
    bool isTaken = m_windowServer.setEdgeReservation(space, ScreenEdge::bottom, height);
    log.writeSoon();
    return isTaken;
}

std::optional<DisplayNumber> SpaceWindows::displayNumber(std::string_view identifier) const
{
    auto wanted = normalizedDisplayIdentifier(identifier);
    if (isMainAlias(wanted))
        return m_displays.mainDisplay();
    for (auto number : m_displays.activeDisplays(kMaximumDisplays)) {
        auto known = m_displays.identifier(number);
        if (known && normalizedDisplayIdentifier(*known) == wanted)
            return number;
    }
    return {};
}

std::optional<Screen> SpaceWindows::screen(
    std::string_view identifier, const std::vector<Screen>& screens) const
{
    auto number = displayNumber(identifier);
    if (!number)
        return {};
    auto found = std::find_if(screens.begin(), screens.end(),
        [&](const Screen& screen) { return screen.number == number; });
    if (found == screens.end())
        return {};
    return *found;
}

double SpaceWindows::primaryScreenMaxY(const std::vector<Screen>& screens) const
{
    auto main = screen("MAIN", screens);
    return main ? main->frame.maxY() : 0;
}

bool isShown(SpaceID space, const std::vector<SpaceID>& shown)
{
    return std::ranges::find(shown, space) != shown.end();
}

}
