#include <string>
#include <vector>

#include <glib.h>

#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Hosts/Linux/Applications/DesktopKeyFile.h"
#include "Hosts/Linux/Applications/EntryRules.h"
#include "Hosts/Linux/Applications/IconThemeFile.h"
#include "Hosts/Linux/Applications/LaunchEntry.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

bool isText(const std::string& value)
{
    return g_utf8_validate(value.data(), static_cast<gssize>(value.size()), nullptr);
}

void readAsEntry(std::string_view bytes)
{
    using namespace quorvel::xdg;
    const auto file = DesktopKeyFile::parse(bytes);
    if (!file)
        return;
    const auto entry = DesktopEntryFile::of(*file);
    for (const auto* value : {&entry.name, &entry.icon, &entry.exec, &entry.startupWMClass})
        expect(isText(*value));
    for (const auto& keyword : file->localList("Keywords").value_or(std::vector<std::string>{}))
        expect(isText(keyword));
    expect(commandName(entry.exec).find('/') == std::string::npos);
    isForMenus(*file);
    const auto start = LaunchEntry::of(*file, "/applications/org.example.App.desktop", "");
    expect(start && !start->name.empty() && !start->folder.empty());
}

void readAsTheme(std::string_view bytes)
{
    using quorvel::xdg::IconThemeFile;
    const auto theme = IconThemeFile::parse(bytes);
    expect(theme.folders().size() <= IconThemeFile::kMostFolders);
    for (const auto& folder : theme.folders())
        expect(folder.pixels > 0);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    readAsEntry(bytes);
    readAsTheme(bytes);
    return 0;
}
