#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Hosts/Linux/Applications/DesktopEntryFile.h"

namespace quorvel::xdg {

/// The desktop files at one moment, each read only when needed. A file hides those with the same id
/// in later folders; one that is marked hidden, or is no application, is treated as absent.
class DesktopEntryIndex {
public:
    /// Enough for any system; a folder that links to itself ends here.
    static constexpr int kDeepestFolder = 6;

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
        /// Index of its folder; the user's own comes first.
        int folder() const { return m_folder; }
        /// Null when it is treated as absent.
        const DesktopEntryFile* read() const;

    private:
        std::string_view m_id; ///< its key in the index
        std::string m_path;
        int m_folder;
        mutable bool m_isRead = false;
        mutable std::optional<DesktopEntryFile> m_file;
    };

    /// Lists the folders and reads no file.
    explicit DesktopEntryIndex(std::span<const std::string> folders);

    const Entry* withId(std::string_view id) const;
    /// The one that is this file.
    const Entry* withPath(std::string_view path) const;
    /// The same, ignoring letter case.
    const Entry* withSimilarId(std::string_view id) const;
    /// The only entry whose reverse domain name ends in this.
    const Entry* withLastPart(std::string_view name) const;
    /// The only entry whose id, or the end of it, has these letters and digits, ignoring versions.
    const Entry* withCompactName(std::string_view name) const;
    /// An entry that declares this class for its windows.
    const Entry* declaringClass(std::string_view windowClass) const;
    const Entry* declaringSimilarClass(std::string_view windowClass) const;
    /// The only entry that starts this program.
    const Entry* startingCommand(std::string_view name) const;

private:
    using Entries = std::vector<const Entry*>;
    using Table = std::unordered_map<std::string, Entries>;

    void list(const std::string& folder, const std::string& idPrefix, int depth);
    void add(std::string id, std::string path);
    void readAll() const;
    Entries usable(const Table&, std::string_view name) const;
    const Entry* onlyOf(Entries) const;
    const Entry* bestOf(Entries, std::string_view name) const;

    int m_listedFolder = 0;
    std::size_t m_folders = 0; ///< that were listed
    std::map<std::string, Entry, std::less<>> m_entries; ///< by id
    Table m_bySimilarId;
    Table m_byLastPart;
    Table m_byCompactName;
    mutable bool m_areAllRead = false;
    mutable Table m_byClass;
    mutable Table m_byCommand;
};

/// One spelling for names that differ only in letter case, or in blanks instead of hyphens.
std::string similarName(std::string_view name);

/// The name without a version such as "-2.10"; a number without a dot may be part of the name.
std::string_view withoutVersion(std::string_view name);

/// The part behind the last dot of a reverse domain name, if it is specific: in
/// "org.example.desktop" it is not. Else empty.
std::string_view lastPart(std::string_view name);

}
