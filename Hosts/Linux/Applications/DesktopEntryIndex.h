#pragma once

#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Hosts/Linux/Applications/DesktopEntryFile.h"

namespace quorvel::xdg {

/// The desktop files of one moment, read no earlier than needed. A file hides those of the same id
/// in later folders; one that is hidden itself, or is no application, counts as absent.
class DesktopEntryIndex {
public:
    class Entry {
    public:
        Entry(std::string_view id, std::string path, int folder)
            : m_id(id)
            , m_path(std::move(path))
            , m_folder(folder)
        {
        }

        std::string_view id() const { return m_id; }
        const std::string& path() const { return m_path; }
        /// Which of the folders it is in; the user's own comes first.
        int folder() const { return m_folder; }
        /// Null when it counts as absent.
        const DesktopEntryFile* read(std::span<const std::string> languages) const;

    private:
        std::string_view m_id; ///< the key under which the index has it
        std::string m_path;
        int m_folder;
        mutable bool m_isRead = false;
        mutable std::optional<DesktopEntryFile> m_file;
    };

    /// Lists the folders and reads no file.
    DesktopEntryIndex(std::span<const std::string> folders, std::span<const std::string> languages);

    const Entry* withId(std::string_view id) const;
    /// The same in any letter case.
    const Entry* withSimilarId(std::string_view id) const;
    /// The only one whose reverse domain name ends in this.
    const Entry* withLastPart(std::string_view name) const;
    /// The only one whose id, or the end of it, has these letters and digits, versions aside.
    const Entry* withCompactName(std::string_view name) const;
    /// One that declares this class for its windows.
    const Entry* declaringClass(std::string_view windowClass) const;
    const Entry* declaringSimilarClass(std::string_view windowClass) const;
    /// The only one that starts this program.
    const Entry* startingCommand(std::string_view name) const;

    const DesktopEntryFile* read(const Entry& entry) const { return entry.read(m_languages); }
    /// Every folder that was listed.
    const std::set<std::string>& folders() const { return m_folders; }

private:
    using Entries = std::vector<const Entry*>;
    using Table = std::unordered_map<std::string, Entries>;

    void list(const std::string& folder, const std::string& idPrefix, int depth);
    void add(std::string id, std::string path);
    void readAll() const;
    Entries usable(const Table&, std::string_view name) const;
    const Entry* onlyOf(Entries) const;
    const Entry* bestOf(Entries, std::string_view name) const;

    std::span<const std::string> m_languages;
    int m_listedFolder = 0;
    std::set<std::string> m_folders;
    std::map<std::string, Entry, std::less<>> m_entries; ///< by id
    Table m_bySimilarId;
    Table m_byLastPart;
    Table m_byCompactName;
    mutable bool m_areAllRead = false;
    mutable Table m_byClass;
    mutable Table m_byCommand;
};

/// One spelling of names that differ in letter case, or in blanks for hyphens.
std::string similarName(std::string_view name);

/// The name up to a version such as "-2.10"; a number without a dot may be part of the name.
std::string_view withoutVersion(std::string_view name);

/// What stands behind the last dot, where a name is a reverse domain name that says something
/// there: "org.example.desktop" does not. Else empty.
std::string_view lastPart(std::string_view name);

}
