#include "Quorvel/Views/SpaceCells.h"

#include <algorithm>

#include "Quorvel/Platform/Spaces.h"

namespace quorvel {

namespace {

void count(SpaceCellData& cell, const BarViewModel::ChipsBySpace& chips)
{
    auto found = chips.find(cell.id);
    bool isEmpty = found == chips.end();
    cell.windowCount = isEmpty ? 0 : static_cast<int>(found->second.size());
    cell.wantsAttention = !isEmpty && !cell.isCurrent
        && std::ranges::any_of(found->second, &ChipData::wantsAttention);
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
        cell.name = isFullscreen ? "Full Screen" : "Desktop " + std::to_string(number);
        if (auto name = platformSpaces.spaceName(space.spaceID); name && !name->empty())
            cell.name = *name;
        cell.isFullscreen = isFullscreen;
        cell.isCurrent = space.spaceID == current;
        count(cell, viewModel.chipsBySpace.value());
        cells.push_back(std::move(cell));
    }
    return cells;
}

bool areCurrent(const std::vector<SpaceCellData>& cells, const BarViewModel::ChipsBySpace& chips)
{
    return std::ranges::all_of(cells, [&](const SpaceCellData& cell) {
        SpaceCellData now;
        now.id = cell.id;
        now.isCurrent = cell.isCurrent;
        count(now, chips);
        return now.windowCount == cell.windowCount && now.wantsAttention == cell.wantsAttention;
    });
}

}
