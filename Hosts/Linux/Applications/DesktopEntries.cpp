#include "Hosts/Linux/Applications/DesktopEntries.h"

#include <algorithm>

#include <glib.h>

#include "Hosts/Linux/Applications/DesktopEntryIndex.h"
#include "Hosts/Linux/Applications/DirectoryMonitors.h"
#include "Hosts/Linux/Applications/FileReading.h"
#include "Hosts/Linux/Applications/WindowMatching.h"
#include "Hosts/Linux/Applications/XdgFolders.h"

namespace quorvel::xdg {
namespace {

std::vector<std::string> userLanguages()
{
    std::vector<std::string> languages;
    for (const auto* name = g_get_language_names(); *name; ++name)
        languages.emplace_back(*name);
    return languages;
}

std::optional<std::string> unlessEmpty(const std::string& text)
{
    return text.empty() ? std::nullopt : std::optional{text};
}

}

DesktopEntries::DesktopEntries(Dispatch& dispatch)
    : m_dispatch(dispatch)
    , m_folders(dataFolders("applications"))
    , m_languages(userLanguages())
    , m_monitors(std::make_unique<DirectoryMonitors>(
          [this](std::string_view path) { fileDidChange(path); }))
{
}

DesktopEntries::~DesktopEntries() = default;

std::string DesktopEntries::bundleIdentifier(const WindowIdentity& window) const
{
    const auto* entry = matchingEntry(index(), window);
    return entry ? std::string{entry->id()} : identifierWithoutEntry(window);
}

std::optional<std::string> DesktopEntries::path(std::string_view bundleIdentifier) const
{
    const auto* entry = index().withId(bundleIdentifier);
    return entry ? std::optional{entry->path()} : std::nullopt;
}

std::optional<std::string> DesktopEntries::name(std::string_view bundleIdentifier) const
{
    const auto* entry = index().withId(bundleIdentifier);
    return entry ? unlessEmpty(index().read(*entry)->name) : std::nullopt;
}

std::optional<std::string> DesktopEntries::icon(std::string_view desktopFilePath) const
{
    const auto file = this->file(desktopFilePath);
    return file ? unlessEmpty(file->icon) : std::nullopt;
}

std::optional<DesktopEntryFile> DesktopEntries::file(std::string_view path) const
{
    const auto bytes = readFile(std::string{path}, kLargestEntryFile);
    return bytes ? parseDesktopEntry(*bytes, m_languages) : std::nullopt;
}

DesktopEntryIndex& DesktopEntries::index() const
{
    if (m_index)
        return *m_index;
    m_index = std::make_unique<DesktopEntryIndex>(m_folders, m_languages);

    auto watched = m_index->folders();
    watched.insert(m_folders.begin(), m_folders.end()); // those that may come to exist
    m_monitors->watchOnly(watched);
    return *m_index;
}

void DesktopEntries::fileDidChange(std::string_view path)
{
    if (!concernsApplications(path))
        return;
    const auto now = m_dispatch.now();
    if (!m_changingSince)
        m_changingSince = now;
    const auto wait = std::min(kSettleTime, *m_changingSince + kLongestWait - now);
    m_refresh = m_dispatch.main().after(std::max(wait, Duration::zero()), [this] { refresh(); });
}

/// Caches of other programs lie in these folders too. A name without a dot may be a subfolder.
bool DesktopEntries::concernsApplications(std::string_view path) const
{
    if (path.ends_with(".desktop"))
        return true;
    if (std::find(m_folders.begin(), m_folders.end(), path) != m_folders.end())
        return true;
    const auto slash = path.rfind('/');
    return path.find('.', slash) == std::string_view::npos && m_index
        && m_index->folders().contains(std::string{path.substr(0, slash)});
}

void DesktopEntries::refresh()
{
    m_changingSince.reset();
    m_index.reset(); // the monitors stay until somebody asks
    changed.emit();
}

}
