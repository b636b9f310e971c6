#include "Quorvel/Views/LaunchMarks.h"

#include <algorithm>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

LaunchMarks::LaunchMarks(const BarViewModel& viewModel, const Workspace& workspace, Queue& main)
    : m_viewModel(viewModel)
    , m_workspace(workspace)
    , m_main(main)
{
}

void LaunchMarks::mark(const std::string& bundleID)
{
    if (m_viewModel.hasWindows(bundleID) || !m_workspace.applicationURL(bundleID))
        return;
    m_launching[bundleID] = m_main.after(kPatience, [this, bundleID] {
        m_launching.erase(bundleID);
        onChanged();
    });
    onChanged();
}

bool LaunchMarks::isStale() const
{
    return std::ranges::any_of(
        m_launching, [this](auto& entry) { return m_viewModel.hasWindows(entry.first); });
}

void LaunchMarks::keepOnly(const std::vector<std::string>& pins)
{
    std::erase_if(m_launching, [&](auto& entry) {
        return std::ranges::find(pins, entry.first) == pins.end()
            || m_viewModel.hasWindows(entry.first);
    });
}

}
