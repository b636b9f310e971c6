#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/Applications/WindowIdentity.h"
#include "Quorvel/Platform/ApplicationMatching.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

class DesktopEntryIndex;
class FolderMonitors;

/// The applications installed on this system, and which of them a window belongs to. An application
/// is named by the id of its desktop file without ".desktop". Main thread.
/// Nothing is read before the first question. A question that a file name answers reads only that
/// file; any other reads all of them once.
class DesktopEntries {
public:
    static constexpr Duration kSettleTime = seconds(0.5);
    static constexpr Duration kLongestWait = seconds(5);

    /// The folders are taken from the current environment.
    explicit DesktopEntries(Dispatch&);
    ~DesktopEntries();
    DesktopEntries(const DesktopEntries&) = delete;
    DesktopEntries& operator=(const DesktopEntries&) = delete;

    /// Which application a window belongs to, and by what that was found.
    struct Match {
        std::string bundleIdentifier; ///< of an installed one, else derived from the window
        MatchKind kind{};
        std::string_view road; ///< the same exactly
    };
    Match match(const WindowIdentity&) const;
    /// The same without the road; never empty.
    std::string bundleIdentifier(const WindowIdentity& window) const
    {
        return match(window).bundleIdentifier;
    }
    /// Applications that the user has chosen, by the key of the windows. They come before all other
    /// roads where they are installed. False if nothing changes.
    bool setMended(std::map<std::string, std::string>);

    /// The desktop file; absent for an application that has none.
    std::optional<std::string> path(std::string_view bundleIdentifier) const;
    /// Of the application that the desktop file describes; absent for files elsewhere.
    std::optional<std::string> identifier(std::string_view desktopFilePath) const;
    /// In the user's language.
    std::optional<std::string> name(std::string_view bundleIdentifier) const;
    /// In the user's language. Works for files elsewhere too. From any thread.
    std::optional<std::string> nameInFile(std::string_view desktopFilePath) const;
    /// Those with desktop files, highest priority first. From any thread.
    const std::vector<std::string>& folders() const { return m_folders; }
    /// The icon that the file names: a name to look up, or a path. Works for files elsewhere too.
    /// From any thread.
    std::optional<std::string> icon(std::string_view desktopFilePath) const;

    /// Emitted when applications were installed, removed or edited, and things have settled.
    Signal<> changed;

private:
    DesktopEntryIndex& index() const;
    void fileDidChange(std::string_view path);
    void refresh();

    Dispatch& m_dispatch;
    const std::vector<std::string> m_folders;
    const std::function<void(std::string_view path)> m_fileDidChange;
    mutable std::unique_ptr<DesktopEntryIndex> m_index; ///< null until needed, or outdated
    mutable std::unique_ptr<FolderMonitors> m_watch; ///< null until something was asked
    std::map<std::string, std::string> m_mended;
    std::optional<Instant> m_changingSince;
    WorkItem m_refresh;
};

}
