#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Quorvel/Platform/LaunchServices.h"

namespace quorvel::xdg {

class LauncherEntries;

/// Answers like the Mac's tool that lists running applications and their requests for attention,
/// which this system does not have. The requests are those of launcher entries. Any thread.
class AppInfoTool {
public:
    AppInfoTool(const SharedModel& model, LauncherEntries& entries)
        : m_model(model)
        , m_entries(entries)
    {
    }

    /// Absent for an unknown request.
    std::optional<ToolResult> run(const std::vector<std::string>& arguments) const;

private:
    struct Listed {
        std::string name;
        std::string bundleIdentifier;
        std::uint32_t number = 0; ///< 0 for an application without a window

        std::string serial() const;
    };

    std::vector<Listed> listed() const;
    ToolResult list() const;
    ToolResult findAsking() const;
    ToolResult withdrawRequest(const std::string& application) const;
    std::optional<std::string> bundleIdentifierOf(const std::string& application) const;

    const SharedModel& m_model;
    LauncherEntries& m_entries;
};

}
