#include <string>
#include <vector>

#include <glib.h>

#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Hosts/Linux/Applications/IconThemeFile.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

void readAsEntry(std::string_view bytes)
{
    using namespace quorvel::xdg;
    static const std::vector<std::string> languages{"de_DE", "de"};
    const auto entry = parseDesktopEntry(bytes, languages);
    if (!entry)
        return;
    expect(g_utf8_validate(entry->name.data(), static_cast<gssize>(entry->name.size()), nullptr));
    for (const auto* value : {&entry->icon, &entry->exec, &entry->startupWMClass}) {
        expect(value->size() <= kLongestEntryValue);
        expect(value->find('\0') == std::string::npos);
    }
    expect(commandName(entry->exec).find('/') == std::string::npos);
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
