#pragma once

#include "Hosts/X11/Desktop/DesktopModel.h"
#include "Quorvel/Platform/LaunchServices.h"

namespace quorvel::x11 {

/// The windows that ask for attention, by their state or their urgency hint. Neither badges nor
/// progress are known here, and no tool lists applications.
class X11LaunchServices final : public LaunchServices {
public:
    explicit X11LaunchServices(const SharedModel& model) : m_model(model) { }

    bool isAvailable() const override { return true; }
    std::vector<ApplicationStatus> runningApplications() const override { return {}; }
    std::vector<AttentionRequest> attentionRequests() const override;
    std::optional<ToolResult> runTool(const std::string&, const std::vector<std::string>&) override
    {
        return std::nullopt;
    }

private:
    const SharedModel& m_model;
};

}
