#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::xdg {

/// A file that shows an icon, with the sizes in device pixels for which its folder is meant.
struct IconCandidate {
    std::string path;
    int pixels = 0; ///< 0 where the folder says nothing
    int smallest = 0;
    int largest = 0;
    bool isVector = false;
};

/// The candidates in the order in which they suit a size: drawn for it, then a vector, then a
/// larger picture, nearest first, then a smaller one.
std::vector<IconCandidate> sortedForSize(std::vector<IconCandidate>, int pixels);

class IconThemeFile;

/// Looks up icon files by name in the user's theme, those it inherits, hicolor, Adwaita and the
/// folders without a theme. Only files of the asked name are looked at. Main thread.
class IconTheme {
public:
    /// The folders come from the environment as it is now, and so does the theme's name where none
    /// is given.
    explicit IconTheme(const std::string& name = {});

    /// All sizes of the icon in the first theme that has it; empty where none has. A theme's
    /// folders for applications come before any theme's folders for other things: they are few, so
    /// that looking costs a tenth.
    std::vector<IconCandidate> find(std::string_view name);

private:
    /// One theme's folders that exist; the path of each candidate is the folder.
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
    std::vector<Theme> m_themes; ///< in the order of looking; empty before the first look
};

}
