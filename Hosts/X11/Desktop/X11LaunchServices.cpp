#include "Hosts/X11/Desktop/X11LaunchServices.h"

namespace quorvel::x11 {

std::vector<AttentionRequest> X11LaunchServices::attentionRequests() const
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

}
