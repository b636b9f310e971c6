#pragma once

#include "Hosts/MacOS/System/PrivateSymbols.h"
#include "Quorvel/Platform/LaunchServices.h"

namespace quorvel {

/// Badges from the information that Launch Services keeps about running applications. It knows
/// which applications ask for attention, but not which windows, and does not report changes.
class MacLaunchServices final : public LaunchServices {
public:
    static constexpr int kLSDefaultSessionID = -2;

    explicit MacLaunchServices(const PrivateSymbols& symbols) : m_symbols(symbols) { }

    bool isAvailable() const override { return true; } // the tool is part of every system
    std::vector<ApplicationStatus> runningApplications() const override;
    std::vector<AttentionRequest> attentionRequests() const override { return {}; }
    std::optional<ToolResult> runTool(
        const std::string& path, const std::vector<std::string>& arguments) override;

private:
    PrivateSymbols m_symbols;
};

}
