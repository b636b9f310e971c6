#include "Hosts/Linux/Applications/DesktopKeyFile.h"

#include "Hosts/Linux/FileReading.h"

namespace quorvel::xdg {

namespace {

std::string taken(char* text)
{
    const GText owned{text};
    return text ? std::string{text} : std::string{};
}

std::optional<std::vector<std::string>> taken(char** list)
{
    const GTexts owned{list};
    if (!list)
        return std::nullopt;
    std::vector<std::string> words;
    for (auto** word = list; *word; ++word)
        words.emplace_back(*word);
    return words;
}

}

std::optional<DesktopKeyFile> DesktopKeyFile::parse(std::string_view bytes)
{
    DesktopKeyFile file{Handle{g_key_file_new()}};
    auto* keys = file.m_file.get();
    // Without the flag that keeps them, other languages are dropped while reading.
    if (!g_key_file_load_from_data(keys, bytes.data(), bytes.size(), G_KEY_FILE_NONE, nullptr))
        return std::nullopt;
    const GText first{g_key_file_get_start_group(keys)};
    if (!first || std::string_view{first.get()} != kEntryGroup
        || file.text("Type") != "Application")
        return std::nullopt;
    return file;
}

std::optional<DesktopKeyFile> DesktopKeyFile::read(const std::string& path)
{
    const auto bytes = readFile(path, kLargestEntryFile);
    return bytes ? parse(*bytes) : std::nullopt;
}

std::string DesktopKeyFile::text(const char* group, const char* key) const
{
    return taken(g_key_file_get_string(m_file.get(), group, key, nullptr));
}

std::string DesktopKeyFile::localText(const char* group, const char* key) const
{
    return taken(g_key_file_get_locale_string(m_file.get(), group, key, nullptr, nullptr));
}

std::optional<std::vector<std::string>> DesktopKeyFile::list(const char* key) const
{
    return taken(g_key_file_get_string_list(m_file.get(), kEntryGroup, key, nullptr, nullptr));
}

std::optional<std::vector<std::string>> DesktopKeyFile::localList(const char* key) const
{
    return taken(g_key_file_get_locale_string_list(
        m_file.get(), kEntryGroup, key, nullptr, nullptr, nullptr));
}

std::optional<bool> DesktopKeyFile::flag(const char* key) const
{
    GError* error = nullptr;
    const bool value = g_key_file_get_boolean(m_file.get(), kEntryGroup, key, &error);
    const bool isThere = !error;
    g_clear_error(&error);
    return isThere ? std::optional{value} : std::nullopt;
}

std::string actionGroup(std::string_view action)
{
    return "Desktop Action " + std::string{action};
}

}
