#include <cstdlib>
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

/// In the C locale, no language is asked for.
const bool asksForLanguages
    = setenv("LC_ALL", "C.UTF-8", 1) == 0 && setenv("LANGUAGE", "de_AT:fr", 1) == 0;

/// What GLib says of the whole file, with the lines that are not for this user.
void compareWithWhole(std::string_view bytes, const quorvel::xdg::DesktopKeyFile* ours)
{
    using namespace quorvel::xdg;
    expect(asksForLanguages);
    GKeyFile* whole = g_key_file_new();
    if (g_key_file_load_from_data(whole, bytes.data(), bytes.size(), G_KEY_FILE_NONE, nullptr)) {
        for (const auto* key : {"Name", "Icon", "Comment"}) {
            const GText text{
                g_key_file_get_locale_string(whole, kEntryGroup, key, nullptr, nullptr)};
            expect(!ours || ours->localText(key) == (text ? text.get() : ""));
        }
    } else {
        expect(!ours);
    }
    g_key_file_unref(whole);
}

void readAsEntry(std::string_view bytes)
{
    using namespace quorvel::xdg;
    const auto file = DesktopKeyFile::parse(bytes);
    compareWithWhole(bytes, file ? &*file : nullptr);
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
