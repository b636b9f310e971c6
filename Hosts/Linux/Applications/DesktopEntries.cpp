#include "Hosts/Linux/Applications/DesktopEntries.h"

#include <algorithm>
#include <utility>

#include "Hosts/Linux/Applications/DesktopEntryIndex.h"
#include "Hosts/Linux/Applications/WindowMatching.h"
#include "Hosts/Linux/Applications/XdgFolders.h"
#include "Hosts/Linux/Loop/FolderMonitors.h"

namespace quorvel::xdg {
namespace {

/// Caches of other programs lie in these folders too. A name without a dot may be a subfolder.
bool concernsApplications(std::string_view path)
{
    return path.ends_with(".desktop")
        || path.find('.', path.rfind('/') + 1) == std::string_view::npos;
}

std::optional<std::string> unlessEmpty(const std::string& text)
{
    return text.empty() ? std::nullopt : std::optional{text};
}

}

DesktopEntries::DesktopEntries(Dispatch& dispatch)
    : m_dispatch(dispatch)
    , m_folders(dataFolders("applications"))
    , m_fileDidChange([this](std::string_view path) { fileDidChange(path); })
{
}

DesktopEntries::~DesktopEntries() = default;

DesktopEntries::Match DesktopEntries::match(const WindowIdentity& window) const
{
    if (!m_mended.empty()) {
        const auto mended = m_mended.find(matchKey(window));
        const auto* entry = mended == m_mended.end() ? nullptr : index().withId(mended->second);
        if (entry)
            return {std::string{entry->id()}, MatchKind::userChoice, "the user's own match"};
    }
    const auto found = matchEntry(index(), window);
    return {found.entry ? std::string{found.entry->id()} : identifierWithoutEntry(window),
        found.kind, found.road};
}

bool DesktopEntries::setMended(std::map<std::string, std::string> mended)
{
    mended.erase(""); // of windows that have nothing in common
    return std::exchange(m_mended, mended) != mended;
}

std::optional<std::string> DesktopEntries::path(std::string_view bundleIdentifier) const
{
    const auto* entry = index().withId(bundleIdentifier);
    return entry ? std::optional{entry->path()} : std::nullopt;
}

std::optional<std::string> DesktopEntries::identifier(std::string_view desktopFilePath) const
{
    const auto* entry = index().withPath(desktopFilePath);
    return entry ? std::optional<std::string>{entry->id()} : std::nullopt;
}

std::optional<std::string> DesktopEntries::name(std::string_view bundleIdentifier) const
{
    const auto* entry = index().withId(bundleIdentifier);
    return entry ? unlessEmpty(entry->read()->name) : std::nullopt;
}

std::optional<std::string> DesktopEntries::nameInFile(std::string_view desktopFilePath) const
{
    const auto file = DesktopEntryFile::read(std::string{desktopFilePath});
    return file ? unlessEmpty(file->name) : std::nullopt;
}

std::optional<std::string> DesktopEntries::icon(std::string_view desktopFilePath) const
{
    const auto file = DesktopEntryFile::read(std::string{desktopFilePath});
    return file ? unlessEmpty(file->icon) : std::nullopt;
}

DesktopEntryIndex& DesktopEntries::index() const
{
    if (m_index)
        return *m_index;
    if (!m_watch) {
        m_watch = std::make_unique<FolderMonitors>(
            m_folders, DesktopEntryIndex::kDeepestFolder, m_fileDidChange);
    }
    m_index = std::make_unique<DesktopEntryIndex>(m_folders);
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

void DesktopEntries::refresh()
{
    m_changingSince.reset();
    m_index.reset();
    changed.emit();
}

}
