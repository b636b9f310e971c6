#include "Hosts/Linux/Desktop/DesktopLaunchServices.h"

namespace quorvel::xdg {

std::vector<AttentionRequest> DesktopLaunchServices::attentionRequests() const
{
    return m_model.read([](const DesktopModel& model) {
        std::vector<AttentionRequest> requests;
        for (auto& [id, window] : model.windows) {
            auto* application = model.application(window.owner);
            if (window.asksForAttention && application)
                requests.push_back({id, application->bundleIdentifier});
        }
        return requests;
    });
}

std::optional<ToolResult> DesktopLaunchServices::runTool(
    const std::string& path, const std::vector<std::string>& arguments)
{
    return path.ends_with("/lsappinfo") ? m_tool.run(arguments) : std::nullopt;
}

}
