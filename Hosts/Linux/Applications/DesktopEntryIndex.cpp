#include "Hosts/Linux/Applications/DesktopEntryIndex.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <tuple>
#include <utility>

namespace quorvel::xdg {
namespace {

// Enough for any system.
constexpr std::size_t kMostEntries = 20000;
constexpr std::size_t kMostFolders = 500;
constexpr std::string_view kEnding = ".desktop";
/// In bytes: a shorter name says too little to identify an application.
constexpr std::size_t kShortestCompactName = 3;

char similarLetter(char letter)
{
    if (letter == ' ')
        return '-';
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

bool isSeparator(char letter)
{
    return letter == '-' || letter == '_' || letter == ' ';
}

/// "2.10", "v1.0.3".
bool isVersion(std::string_view word)
{
    if (word.starts_with('v'))
        word.remove_prefix(1);
    return !word.empty() && isDigit(word.front()) && word.find('.') != std::string_view::npos
        && word.find_first_not_of("0123456789.") == std::string_view::npos;
}

/// Applications write their name in one word, in several, or with a version behind it.
std::string compactName(std::string_view name)
{
    auto compact = similarName(withoutVersion(name));
    std::erase_if(compact, [](char letter) {
        return (letter >= 0 && letter < '0') || (letter > '9' && letter < 'a')
            || (letter > 'z' && letter <= '~');
    });
    return compact;
}

}

std::string_view withoutVersion(std::string_view name)
{
    for (std::size_t i = 1; i < name.size(); ++i) {
        if (!isSeparator(name[i]))
            continue;
        const auto word = name.substr(i + 1);
        if (isVersion(word.substr(0, word.find_first_of("-_ "))))
            return name.substr(0, i);
    }
    return name;
}

std::string_view lastPart(std::string_view name)
{
    constexpr std::array<std::string_view, 6> generic{
        "app", "application", "client", "desktop", "devel", "main"};
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos)
        return {};
    const auto part = name.substr(dot + 1);
    return std::ranges::count(generic, similarName(part)) > 0 ? std::string_view{} : part;
}

std::string similarName(std::string_view name)
{
    std::string result{name};
    std::transform(result.begin(), result.end(), result.begin(), similarLetter);
    return result;
}

const DesktopEntryFile* DesktopEntryIndex::Entry::read() const
{
    if (!std::exchange(m_isRead, true)) {
        m_file = DesktopEntryFile::read(m_path);
        if (m_file && m_file->isHidden)
            m_file.reset();
    }
    return m_file ? &*m_file : nullptr;
}

DesktopEntryIndex::DesktopEntryIndex(std::span<const std::string> folders)
{
    for (const auto& folder : folders) {
        list(folder, {}, 0);
        ++m_listedFolder;
    }
}

void DesktopEntryIndex::list(const std::string& folder, const std::string& idPrefix, int depth)
{
    std::error_code error;
    std::filesystem::directory_iterator files{folder, error};
    if (error || m_folders >= kMostFolders)
        return;
    ++m_folders;
    for (; !error && files != std::filesystem::directory_iterator{}; files.increment(error)) {
        auto path = files->path().string();
        auto name = path.substr(folder.size() + 1);
        std::error_code unknown;
        if (name.size() > kEnding.size() && name.ends_with(kEnding))
            add(idPrefix + name.substr(0, name.size() - kEnding.size()), std::move(path));
        else if (depth < kDeepestFolder && files->is_directory(unknown))
            list(path, idPrefix + name + '-', depth + 1);
    }
}

void DesktopEntryIndex::add(std::string id, std::string path)
{
    if (m_entries.size() >= kMostEntries || m_entries.contains(id))
        return;
    const auto position = m_entries.emplace(std::move(id), Entry{{}, {}, 0}).first;
    const auto& key = position->first;
    position->second = Entry{key, std::move(path), m_listedFolder};

    const auto similar = similarName(key);
    m_bySimilarId[similar].push_back(&position->second);
    const std::string part{lastPart(similar)};
    if (!part.empty())
        m_byLastPart[part].push_back(&position->second);
    for (const auto& name : std::set{compactName(key), compactName(part)}) {
        if (name.size() >= kShortestCompactName)
            m_byCompactName[name].push_back(&position->second);
    }
}

void DesktopEntryIndex::readAll() const
{
    if (std::exchange(m_areAllRead, true))
        return;
    for (const auto& [id, entry] : m_entries) {
        const auto* file = entry.read();
        if (!file)
            continue;
        if (!file->startupWMClass.empty())
            m_byClass[similarName(file->startupWMClass)].push_back(&entry);
        if (const auto command = similarName(commandName(file->exec)); !command.empty())
            m_byCommand[command].push_back(&entry);
    }
}

const DesktopEntryIndex::Entry* DesktopEntryIndex::withId(std::string_view id) const
{
    const auto found = m_entries.find(id);
    return found != m_entries.end() && found->second.read() ? &found->second : nullptr;
}

const DesktopEntryIndex::Entry* DesktopEntryIndex::withPath(std::string_view path) const
{
    const auto found
        = std::ranges::find_if(m_entries, [&](auto& known) { return known.second.path() == path; });
    return found != m_entries.end() && found->second.read() ? &found->second : nullptr;
}

const DesktopEntryIndex::Entry* DesktopEntryIndex::withSimilarId(std::string_view id) const
{
    return bestOf(usable(m_bySimilarId, id), id);
}

const DesktopEntryIndex::Entry* DesktopEntryIndex::withLastPart(std::string_view name) const
{
    return onlyOf(usable(m_byLastPart, name));
}

const DesktopEntryIndex::Entry* DesktopEntryIndex::withCompactName(std::string_view name) const
{
    return onlyOf(usable(m_byCompactName, compactName(name)));
}

const DesktopEntryIndex::Entry* DesktopEntryIndex::declaringClass(
    std::string_view windowClass) const
{
    readAll();
    auto entries = usable(m_byClass, windowClass);
    std::erase_if(
        entries, [&](auto* entry) { return entry->read()->startupWMClass != windowClass; });
    return bestOf(std::move(entries), windowClass);
}

const DesktopEntryIndex::Entry* DesktopEntryIndex::declaringSimilarClass(
    std::string_view windowClass) const
{
    readAll();
    return bestOf(usable(m_byClass, windowClass), windowClass);
}

const DesktopEntryIndex::Entry* DesktopEntryIndex::startingCommand(std::string_view name) const
{
    readAll();
    return onlyOf(usable(m_byCommand, name));
}

DesktopEntryIndex::Entries DesktopEntryIndex::usable(
    const Table& table, std::string_view name) const
{
    const auto found = table.find(similarName(name));
    if (name.empty() || found == table.end())
        return {};
    auto entries = found->second;
    std::erase_if(entries, [](auto* entry) { return !entry->read(); });
    return entries;
}

/// Of several, one that menus show: the others are mostly handlers of the same program.
const DesktopEntryIndex::Entry* DesktopEntryIndex::onlyOf(Entries entries) const
{
    if (entries.size() > 1)
        std::erase_if(entries, [](auto* entry) { return entry->read()->isNoDisplay; });
    return entries.size() == 1 ? entries.front() : nullptr;
}

/// Of several that all say yes: one that menus show, of that very name, of the user's own.
const DesktopEntryIndex::Entry* DesktopEntryIndex::bestOf(
    Entries entries, std::string_view name) const
{
    if (entries.empty())
        return nullptr;
    const auto similar = similarName(name);
    const auto rank = [&](const Entry* entry) {
        return std::tuple{entry->read()->isNoDisplay, similarName(entry->id()) != similar,
            entry->folder(), entry->id()};
    };
    return *std::ranges::min_element(entries, {}, rank);
}

}
