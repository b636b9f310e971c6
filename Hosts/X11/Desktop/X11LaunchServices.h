#pragma once

#include "Hosts/X11/Applications/LauncherEntries.h"
#include "Hosts/X11/Desktop/AppInfoTool.h"
#include "Hosts/X11/Desktop/DesktopModel.h"
#include "Quorvel/Platform/LaunchServices.h"

namespace quorvel::x11 {

/// What applications say at their launchers, and the windows that ask for attention by their state
/// or their urgency hint. Nothing blocks.
class X11LaunchServices final : public LaunchServices {
public:
    explicit X11LaunchServices(const SharedModel& model) : m_model(model) { }

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
