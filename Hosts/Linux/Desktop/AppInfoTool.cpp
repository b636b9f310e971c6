#include "Hosts/Linux/Desktop/AppInfoTool.h"

#include <algorithm>
#include <functional>
#include <set>
#include <string_view>

#include <fmt/format.h>

#include "Hosts/Linux/Applications/LauncherEntries.h"
#include "Hosts/Linux/Text.h"

namespace quorvel::xdg {

namespace {

constexpr char kFailure[] = "err=-600\n"; ///< no such process

bool isControl(unsigned char letter)
{
    return letter < 0x20 || letter == 0x7F;
}

/// Names are titles and class names of any client: nothing in them may look like the format.
std::string harmless(std::string_view name)
{
    auto text = validUtf8(name);
    std::erase_if(text, [](char letter) {
        return letter == '"' || letter == ':' || isControl(static_cast<unsigned char>(letter));
    });
    return text;
}

/// One that is not would be another application's when it is read, or spoil the whole text.
bool canBePrinted(const std::string& bundleIdentifier)
{
    return !bundleIdentifier.empty() && validUtf8(bundleIdentifier) == bundleIdentifier
        && std::ranges::none_of(bundleIdentifier, [](char letter) {
               return letter == '"' || isControl(static_cast<unsigned char>(letter));
           });
}

/// The format knows no negative numbers, and no process has one as large as these become.
std::uint32_t numberOf(ProcessID pid)
{
    return static_cast<std::uint32_t>(raw(pid)) & 0x7FFFFFFF;
}

}

/// The same for each question, whatever comes and goes between them.
std::string AppInfoTool::Listed::serial() const
{
    return number ? fmt::format("0x0-{:#x}", number)
                  : fmt::format("0x1-{:#x}", std::hash<std::string>{}(bundleIdentifier));
}

std::optional<ToolResult> AppInfoTool::run(const std::vector<std::string>& arguments) const
{
    const auto has = [&](std::size_t index, std::string_view word) {
        return index < arguments.size() && arguments[index] == word;
    };
    if (has(0, "list"))
        return list();
    if (has(0, "find") && has(1, "kLSApplicationDesiresAttentionKey=true"))
        return findAsking();
    if (has(0, "setinfo") && has(1, "-app") && has(3, "kLSApplicationDesiresAttentionKey=false"))
        return withdrawRequest(arguments[2]);
    return std::nullopt;
}

std::vector<AppInfoTool::Listed> AppInfoTool::listed() const
{
    std::vector<Listed> all;
    std::set<std::string> known;
    m_model.read([&](const DesktopModel& model) {
        for (auto& [pid, application] : model.applications) {
            known.insert(application.bundleIdentifier);
            all.push_back({application.name, application.bundleIdentifier, numberOf(pid)});
        }
    });
    for (auto& status : m_entries.statuses()) {
        if (known.insert(*status.bundleIdentifier).second)
            all.push_back({*status.bundleIdentifier, *status.bundleIdentifier, 0});
    }
    std::erase_if(all, [](const Listed& one) { return !canBePrinted(one.bundleIdentifier); });
    return all;
}

ToolResult AppInfoTool::list() const
{
    ToolResult result;
    int index = 0;
    for (auto& one : listed()) {
        result.standardOutput
            += fmt::format("{:2}) \"{}\" ASN:{}: \n    bundleID=\"{}\"\n    pid = {}\n", index,
                harmless(one.name), one.serial(), one.bundleIdentifier, one.number);
    }
    return result;
}

ToolResult AppInfoTool::findAsking() const
{
    ToolResult result;
    const auto asking = m_entries.asking();
    for (auto& one : listed()) {
        if (asking.contains(one.bundleIdentifier))
            result.standardOutput
                += fmt::format("ASN:{}-\"{}\": ", one.serial(), harmless(one.name));
    }
    return result;
}

ToolResult AppInfoTool::withdrawRequest(const std::string& application) const
{
    const auto bundleIdentifier = bundleIdentifierOf(application);
    if (!bundleIdentifier)
        return {.exitStatus = 1, .standardOutput = {}, .standardError = kFailure};
    m_entries.withdrawRequest(*bundleIdentifier);
    return {};
}

/// The application is named by its bundle identifier, or as in "pid:431".
std::optional<std::string> AppInfoTool::bundleIdentifierOf(const std::string& application) const
{
    for (auto& one : listed()) {
        const bool isNamed = application == one.bundleIdentifier
            || (one.number && application == fmt::format("pid:{}", one.number));
        if (isNamed)
            return one.bundleIdentifier;
    }
    return std::nullopt;
}

}
