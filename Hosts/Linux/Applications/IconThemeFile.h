#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::xdg {

/// The content of a theme's index: which themes it builds on and which sizes its folders hold.
class IconThemeFile {
public:
    struct Folder {
        std::string path; ///< relative to the theme's own folder
        int pixels = 0; ///< size times scale, as are the next two
        int smallest = 0;
        int largest = 0;
        bool isForApplications = false;

        friend bool operator==(const Folder&, const Folder&) = default;
    };

    static constexpr std::size_t kMostFolders = 2000;

    /// Folders without a sensible size are left out.
    static IconThemeFile parse(std::string_view bytes);

    const std::vector<std::string>& parents() const { return m_parents; }
    const std::vector<Folder>& folders() const { return m_folders; }

private:
    std::vector<std::string> m_parents;
    std::vector<Folder> m_folders;
};

}
