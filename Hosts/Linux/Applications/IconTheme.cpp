#include "Hosts/Linux/Applications/IconTheme.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <tuple>

#include <sys/stat.h>
#include <unistd.h>

#include "Hosts/Linux/Applications/IconFile.h"
#include "Hosts/Linux/Applications/IconThemeFile.h"
#include "Hosts/Linux/Applications/KeyFileReader.h"
#include "Hosts/Linux/Applications/XdgFolders.h"
#include "Hosts/Linux/FileReading.h"

namespace quorvel::xdg {
namespace {

constexpr std::size_t kLargestThemeFile = 4 << 20;
constexpr std::size_t kMostThemes = 32;
constexpr std::size_t kLongestIconName = 255;
constexpr const char* kFallbackTheme = "hicolor";
constexpr const char* kStandardTheme = "Adwaita";

std::vector<std::string> iconFolders()
{
    auto folders = dataFolders("icons");
    folders.insert(folders.begin(), homeFolder() + "/.icons");
    return folders;
}

/// Older programs put one picture, in no particular size, straight into such a folder.
std::vector<std::string> themelessFolders(std::vector<std::string> bases)
{
    for (auto& folder : dataFolders("pixmaps"))
        bases.push_back(std::move(folder));
    return bases;
}

std::string userThemeName()
{
    for (const auto* folder : {"/gtk-3.0", "/gtk-4.0"}) {
        const auto path = configurationFolder() + folder + "/settings.ini";
        const auto bytes = readFile(path, kLargestThemeFile);
        KeyFileReader reader{bytes ? std::string_view{*bytes} : std::string_view{}};
        while (reader.next()) {
            if (reader.group() == "Settings" && reader.key() == "gtk-icon-theme-name")
                return std::string{reader.value()};
        }
    }
    return kStandardTheme;
}

bool isThemeFolder(const std::string& path)
{
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// A name goes into paths: it must not leave the folder.
bool isPlainName(std::string_view name)
{
    return !name.empty() && name.size() <= kLongestIconName && name != "." && name != ".."
        && name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

/// Some files name a picture with its ending.
std::string withoutIconEnding(std::string_view name)
{
    if (isIconFileName(name) || name.ends_with(".xpm"))
        name.remove_suffix(4);
    return std::string{name};
}

void addIfPresent(
    std::vector<IconCandidate>& found, const IconCandidate& folder, const std::string& name)
{
    for (const auto* ending : {".png", ".svg"}) {
        auto candidate = folder;
        candidate.path += '/' + name + ending;
        candidate.isVector = isVectorFileName(ending);
        if (::access(candidate.path.c_str(), R_OK) == 0)
            found.push_back(std::move(candidate));
    }
}

/// Lower is better. A bitmap is used as it is only at its very size, whatever tolerance its folder
/// claims: stretched by two pixels it blurs.
std::pair<int, int> unsuitability(const IconCandidate& candidate, int pixels)
{
    const int distance = std::abs(candidate.pixels - pixels);
    if (candidate.isVector)
        return {candidate.smallest <= pixels && pixels <= candidate.largest ? 0 : 1, distance};
    if (distance == 0)
        return {0, 0};
    return {candidate.pixels == 0 || candidate.pixels > pixels ? 2 : 3, distance};
}

}

std::vector<IconCandidate> sortedForSize(std::vector<IconCandidate> candidates, int pixels)
{
    std::stable_sort(candidates.begin(), candidates.end(), [pixels](const auto& a, const auto& b) {
        return unsuitability(a, pixels) < unsuitability(b, pixels);
    });
    return candidates;
}

IconTheme::IconTheme(const std::string& name)
    : m_bases(iconFolders())
    , m_themelessFolders(themelessFolders(m_bases))
    , m_name(name.empty() ? userThemeName() : name)
{
}

std::vector<IconCandidate> IconTheme::find(std::string_view asked)
{
    if (!isPlainName(asked))
        return {};
    loadThemes();
    std::vector<std::string> names{std::string{asked}};
    if (auto shorter = withoutIconEnding(asked); shorter != asked)
        names.push_back(std::move(shorter));

    for (const auto& name : names) {
        if (auto found = findNamed(name); !found.empty())
            return found;
    }
    return {};
}

std::vector<IconCandidate> IconTheme::findNamed(const std::string& name) const
{
    std::vector<IconCandidate> found;
    for (const Folders folders : {&Theme::forApplications, &Theme::forOthers}) {
        for (const auto& theme : m_themes) {
            for (const auto& folder : theme.*folders)
                addIfPresent(found, folder, name);
            if (!found.empty())
                return found;
        }
    }
    for (const auto& folder : m_themelessFolders)
        addIfPresent(found, IconCandidate{folder}, name);
    return found;
}

void IconTheme::loadThemes()
{
    if (!m_seenThemes.empty())
        return;
    for (const auto& name : {m_name, std::string{kFallbackTheme}, std::string{kStandardTheme}})
        addTheme(name);
}

void IconTheme::addTheme(const std::string& name)
{
    if (!isPlainName(name) || m_seenThemes.size() >= kMostThemes
        || !m_seenThemes.insert(name).second)
        return;
    for (const auto& base : m_bases) {
        const auto bytes = readFile(base + '/' + name + "/index.theme", kLargestThemeFile);
        if (!bytes)
            continue;
        const auto file = IconThemeFile::parse(*bytes);
        m_themes.push_back(existingFolders(name, file));
        for (const auto& parent : file.parents())
            addTheme(parent);
        return;
    }
}

/// A theme is the sum of the folders of its name; only the first index counts.
IconTheme::Theme IconTheme::existingFolders(
    const std::string& name, const IconThemeFile& file) const
{
    Theme theme;
    for (const auto& base : m_bases) {
        const auto root = base + '/' + name;
        if (!isThemeFolder(root))
            continue;
        for (const auto& folder : file.folders()) {
            auto path = root + '/' + folder.path;
            if (!isThemeFolder(path))
                continue;
            auto& folders = folder.isForApplications ? theme.forApplications : theme.forOthers;
            folders.push_back(
                {std::move(path), folder.pixels, folder.smallest, folder.largest, false});
        }
    }
    return theme;
}

}
