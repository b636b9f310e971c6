#include "Quorvel/Views/SpaceCells.h"

#include <algorithm>

#include "Quorvel/Platform/Spaces.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

void count(SpaceCellData& cell, const BarViewModel::Summaries& summaries)
{
    auto found = summaries.find(cell.id);
    if (found == summaries.end())
        return;
    cell.windowCount = found->second.windowCount;
    cell.wantsAttention = !cell.isCurrent && found->second.wantsAttention;
}

}

std::vector<SpaceCellData> spaceCells(
    const BarViewModel& viewModel, const Spaces& platformSpaces, SpaceID current)
{
    auto& spaces = viewModel.spaces.value();
    auto own = std::ranges::find(spaces, current, &SpaceWindows::Info::spaceID);
    std::vector<SpaceCellData> cells;
    if (own == spaces.end())
        return cells;
    int number = 0;
    for (auto& space : spaces) {
        bool isFullscreen = space.spaceType == kFullscreenSpaceType;
        number += isFullscreen ? 0 : 1; // over all displays, as the system's own shortcuts count
        if (space.displayIdentifier != own->displayIdentifier)
            continue;
        SpaceCellData cell;
        cell.id = space.spaceID;
        cell.label = isFullscreen ? "\u25A2" : std::to_string(number);
        cell.name = isFullscreen ? tr("Full Screen") : trFormat("Desktop {}", number);
        if (auto name = platformSpaces.spaceName(space.spaceID); name && !name->empty())
            cell.name = *name;
        cell.isFullscreen = isFullscreen;
        cell.isCurrent = space.spaceID == current;
        count(cell, viewModel.summaries.value());
        cells.push_back(std::move(cell));
    }
    return cells;
}

}
