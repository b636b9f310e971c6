#include "Hosts/Linux/Gettext.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>

#include <glib.h>
#include <libintl.h>

#include "Hosts/Linux/CatalogueFile.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel::xdg {

namespace {

constexpr char kCatalogue[] = "quorvel";

std::string_view firstOf(std::string_view names)
{
    names.remove_prefix(std::min(names.size(), names.find_first_not_of(':')));
    return names.substr(0, names.find(':'));
}

/// Of those that may be read for the user. Absent ones are no fault.
bool areCataloguesWhole(const std::filesystem::path& folder)
{
    const auto* languages = g_get_language_names_with_category("LC_MESSAGES");
    for (; *languages; ++languages) {
        const auto path = folder / *languages / "LC_MESSAGES" / (std::string{kCatalogue} + ".mo");
        std::ifstream file{path, std::ios::binary};
        const std::string bytes{std::istreambuf_iterator<char>{file}, {}};
        if (file.is_open() && !isWholeCatalogue(bytes)) {
            std::fprintf(stderr, "quorvel: %s is broken\n", path.c_str());
            return false;
        }
    }
    return true;
}

}

std::filesystem::path localeFolder()
{
    std::error_code error; // without /proc
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    for (const auto* place : {"share/locale", "../share/locale"}) {
        auto folder = program.parent_path() / place;
        if (!program.empty() && std::filesystem::is_directory(folder, error))
            return folder;
    }
    return QUORVEL_LOCALE_FOLDER;
}

void useGettext(const std::filesystem::path& folder)
{
    Translator::current() = {};
    if (!areCataloguesWhole(folder))
        return;
    bindtextdomain(kCatalogue, folder.c_str());
    bind_textdomain_codeset(kCatalogue, "UTF-8");
    Translator::current() = {// The empty text would be answered with the catalogue's own header.
        [](const char* english) -> std::string {
            return *english ? dgettext(kCatalogue, english) : english;
        },
        [](const char* one, const char* many, std::size_t count) -> std::string {
            return dngettext(kCatalogue, one, many, count);
        }};
}

std::string languageOfTexts()
{
    const char* set = std::setlocale(LC_MESSAGES, nullptr);
    const std::string locale = set ? set : "C";
    // In the locale C nothing is translated, whatever LANGUAGE says.
    const char* wanted = locale == "C" || locale == "POSIX" ? nullptr : std::getenv("LANGUAGE");
    const auto first = firstOf(wanted ? wanted : "");
    return first.empty() ? locale : std::string{first};
}

}
