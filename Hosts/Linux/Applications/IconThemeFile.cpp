#include "Hosts/Linux/Applications/IconThemeFile.h"

#include <charconv>
#include <optional>

#include "Hosts/Linux/Applications/KeyFileReader.h"

namespace quorvel::xdg {
namespace {

constexpr int kLargestSize = 4096;
constexpr int kLargestScale = 8;
constexpr int kDefaultThreshold = 2;

/// A folder's group as it is written.
struct FolderGroup {
    std::string_view type = "Threshold";
    std::string_view context;
    std::optional<int> size;
    std::optional<int> smallest;
    std::optional<int> largest;
    std::optional<int> threshold;
    std::optional<int> scale;
};

std::optional<int> number(std::string_view text, int limit)
{
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc{} || value < 0 || value > limit)
        return std::nullopt;
    return value;
}

void readKey(const KeyFileReader& reader, FolderGroup& folder)
{
    const auto key = reader.key();
    if (key == "Size")
        folder.size = number(reader.value(), kLargestSize);
    else if (key == "MinSize")
        folder.smallest = number(reader.value(), kLargestSize);
    else if (key == "MaxSize")
        folder.largest = number(reader.value(), kLargestSize);
    else if (key == "Threshold")
        folder.threshold = number(reader.value(), kLargestSize);
    else if (key == "Scale")
        folder.scale = number(reader.value(), kLargestScale);
    else if (key == "Type")
        folder.type = reader.value();
    else if (key == "Context")
        folder.context = reader.value();
}

std::vector<std::string> listOf(std::string_view text)
{
    std::vector<std::string> items;
    while (!text.empty() && items.size() < IconThemeFile::kMostFolders) {
        const auto end = text.find(',');
        auto item = text.substr(0, end);
        while (item.starts_with(' '))
            item.remove_prefix(1);
        while (item.ends_with(' ') || item.ends_with('/'))
            item.remove_suffix(1);
        if (!item.empty())
            items.emplace_back(item);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return items;
}

std::optional<IconThemeFile::Folder> folderFrom(const std::string& path, const FolderGroup& group)
{
    const int size = group.size.value_or(0);
    if (size == 0)
        return std::nullopt;
    const int scale = std::max(group.scale.value_or(1), 1);

    int smallest = size;
    int largest = size;
    if (group.type == "Scalable") {
        smallest = group.smallest.value_or(size);
        largest = group.largest.value_or(size);
    } else if (group.type == "Threshold") {
        const int threshold = group.threshold.value_or(kDefaultThreshold);
        smallest = size - threshold;
        largest = size + threshold;
    }
    return IconThemeFile::Folder{
        path, size * scale, smallest * scale, largest * scale, group.context == "Applications"};
}

}

IconThemeFile IconThemeFile::parse(std::string_view bytes)
{
    IconThemeFile theme;
    std::vector<std::string> paths;
    std::map<std::string_view, FolderGroup> groups;
    KeyFileReader reader{bytes};
    while (reader.next()) {
        if (reader.group() != "Icon Theme") {
            if (groups.size() < kMostFolders || groups.contains(reader.group()))
                readKey(reader, groups[reader.group()]);
        } else if (reader.key() == "Inherits") {
            theme.m_parents = listOf(reader.value());
        } else if (reader.key() == "Directories" || reader.key() == "ScaledDirectories") {
            const auto more = listOf(reader.value());
            paths.insert(paths.end(), more.begin(), more.end());
        }
    }
    for (const auto& path : paths) {
        const auto group = groups.find(path);
        const auto folder = group == groups.end() ? std::nullopt : folderFrom(path, group->second);
        if (folder && theme.m_folders.size() < kMostFolders)
            theme.m_folders.push_back(*folder);
    }
    return theme;
}

}
