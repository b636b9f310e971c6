#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

enum class FolderWatch {
    never,
    whileItExists, ///< it must exist when the watch begins
    always, ///< it may also be created later
};

/// A folder with applications.
struct ApplicationFolder {
    std::string path; ///< absolute
    int maximumDepth = 0; ///< how far below it folders are listed; 0: only its own entries
    FolderWatch watch = FolderWatch::never;

    friend bool operator==(const ApplicationFolder&, const ApplicationFolder&) = default;
};

/// Where this system stores applications.
struct ApplicationSources {
    std::vector<ApplicationFolder> folders; ///< of two with the same identity, the first wins
    std::vector<ApplicationURL> extras; ///< single applications elsewhere; they come last
    std::string extension; ///< of an application's path, without the dot
};

struct FolderEntry {
    std::string name;
    bool isFolder = false;
    bool isHidden = false; ///< from the user

    friend bool operator==(const FolderEntry&, const FolderEntry&) = default;
};

/// What a stored application says of itself, as UTF-8; anything it does not say is absent.
struct BundleDescription {
    std::optional<std::string> identifier{};
    std::optional<std::string> displayName{}; ///< what users see, in their language
    std::optional<std::string> name{}; ///< where there is no display name
    std::string genericName{}; ///< what kind of program it is, in the user's language
    std::vector<std::string> keywords{}; ///< in the user's language
    std::string executable{}; ///< the program's name without its folder
    /// False if it is not meant for the user's lists, such as a helper of another program. It still
    /// takes the place of an application with the same identity in a later folder.
    bool isOffered = true;

    friend bool operator==(const BundleDescription&, const BundleDescription&) = default;
};

/// The stored applications. A bundle is a folder on the Mac; elsewhere it is a desktop file. From
/// any thread; calls block for as long as the disk takes.
class Bundles {
public:
    virtual ~Bundles() = default;

    virtual ApplicationSources applicationSources() const = 0;
    /// In any order; absent if the folder cannot be listed.
    virtual std::optional<std::vector<FolderEntry>> list(const std::string& folder) const = 0;
    /// Absent if nothing exists at the path. What cannot be read as a bundle says nothing of
    /// itself.
    virtual std::optional<BundleDescription> describe(const ApplicationURL&) const = 0;
};

}
