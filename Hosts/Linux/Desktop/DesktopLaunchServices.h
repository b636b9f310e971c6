#pragma once

#include "Hosts/Linux/Applications/LauncherEntries.h"
#include "Hosts/Linux/Desktop/AppInfoTool.h"
#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Quorvel/Platform/LaunchServices.h"

namespace quorvel::xdg {

/// What applications want shown at their launchers, and the windows that ask for attention by their
/// state or their urgency hint. Nothing blocks.
class DesktopLaunchServices final : public LaunchServices {
public:
    explicit DesktopLaunchServices(const SharedModel& model) : m_model(model) { }

    LauncherEntries& entries() { return m_entries; }

    bool isAvailable() const override { return true; }
    std::vector<ApplicationStatus> runningApplications() const override
    {
        return m_entries.statuses();
    }
    std::vector<AttentionRequest> attentionRequests() const override;
    std::optional<ToolResult> runTool(
        const std::string& path, const std::vector<std::string>& arguments) override;

private:
    const SharedModel& m_model;
    LauncherEntries m_entries;
    AppInfoTool m_tool{m_model, m_entries};
};

}
