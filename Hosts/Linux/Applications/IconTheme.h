#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::xdg {

/// A file with an icon, and the size in device pixels that its folder is meant for.
struct IconCandidate {
    std::string path;
    int pixels = 0; ///< 0 where the folder says nothing
    int smallest = 0;
    int largest = 0;
    bool isVector = false;
};

/// The candidates for a size, best first: drawn for it, then a vector, then a larger picture,
/// nearest first, then a smaller one.
std::vector<IconCandidate> sortedForSize(std::vector<IconCandidate>, int pixels);

class IconThemeFile;

/// Looks up icon files by name in the user's theme, the themes it inherits, hicolor, Adwaita and
/// the folders without a theme. Only files with the requested name are touched. Main thread.
class IconTheme {
public:
    /// The folders are taken from the current environment, and so is the theme's name if none is
    /// given.
    explicit IconTheme(const std::string& name = {});

    /// All sizes of the icon in the first theme that has it; empty if none has. Themes' folders for
    /// applications come before all other folders: there are few of them, which makes a lookup ten
    /// times faster.
    std::vector<IconCandidate> find(std::string_view name);

private:
    /// The existing folders of one theme; the path of each candidate is the folder.
    struct Theme {
        std::vector<IconCandidate> forApplications;
        std::vector<IconCandidate> forOthers;
    };
    using Folders = std::vector<IconCandidate> Theme::*;

    std::vector<IconCandidate> findNamed(const std::string& name) const;
    void loadThemes();
    void addTheme(const std::string& name);
    Theme existingFolders(const std::string& name, const IconThemeFile&) const;

    const std::vector<std::string> m_bases;
    const std::vector<std::string> m_themelessFolders;
    const std::string m_name;
    std::set<std::string> m_seenThemes;
    std::vector<Theme> m_themes; ///< in lookup order; empty before the first lookup
};

}
