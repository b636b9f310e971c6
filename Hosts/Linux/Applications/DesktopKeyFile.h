#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

/// Larger files are taken for no desktop files.
inline constexpr std::size_t kLargestEntryFile = 1 << 20;
/// The group that describes the application itself.
inline constexpr const char* kEntryGroup = "Desktop Entry";

/// The desktop file of an application, read by GLib: every program that starts applications through
/// GIO refuses the same files and understands the same of the others. Any thread.
///
/// Of a key that occurs twice the last one counts, also in a later group of the same name. A value
/// that is not valid UTF-8 is missing.
class DesktopKeyFile {
public:
    /// Absent for bytes that GIO does not take for an application's.
    static std::optional<DesktopKeyFile> parse(std::string_view bytes);
    /// Absent for anything but a regular file of an application.
    static std::optional<DesktopKeyFile> read(const std::string& path);

    /// The value with its escapes resolved; empty if it is missing.
    std::string text(const char* key) const { return text(kEntryGroup, key); }
    /// In the best of the user's languages.
    std::string localText(const char* key) const { return localText(kEntryGroup, key); }
    std::string text(const char* group, const char* key) const;
    std::string localText(const char* group, const char* key) const;
    /// Absent if the key is missing; a key without a value is an empty list.
    std::optional<std::vector<std::string>> list(const char* key) const;
    std::optional<std::vector<std::string>> localList(const char* key) const;
    /// Absent if it is missing, or neither true nor false.
    std::optional<bool> flag(const char* key) const;

private:
    using Handle = std::unique_ptr<GKeyFile, FreeWith<g_key_file_unref>>;

    explicit DesktopKeyFile(Handle file) : m_file(std::move(file)) { }

    Handle m_file;
};

/// "Desktop Action new-window" and the like: where a desktop file describes one of its actions.
std::string actionGroup(std::string_view action);

}
