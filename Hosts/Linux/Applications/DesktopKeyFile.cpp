#include "Hosts/Linux/Applications/DesktopKeyFile.h"

#include <algorithm>
#include <span>

#include "Hosts/Linux/FileReading.h"

namespace quorvel::xdg {

namespace {

using Languages = std::span<const char* const>;

/// The user's, the preferred one first.
Languages userLanguages()
{
    const auto* names = g_get_language_names();
    return {names, g_strv_length(const_cast<char**>(names))};
}

bool consistsOf(std::string_view text, std::string_view alsoAllowed)
{
    return !text.empty() && std::ranges::all_of(text, [&](char letter) {
        return g_ascii_isalnum(letter) || alsoAllowed.find(letter) != std::string_view::npos;
    });
}

/// "de" of "Name[de]=Editor"; empty where a line is for everybody, or such that the parser has to
/// judge it.
std::string_view languageOf(std::string_view line)
{
    const auto key = line.substr(0, line.find('='));
    const auto open = key.find('[');
    if (key.size() == line.size() || open == std::string_view::npos || !key.ends_with(']'))
        return {};
    const auto language = key.substr(open + 1, key.size() - open - 2);
    return consistsOf(key.substr(0, open), "-") && consistsOf(language, "-_.@")
        ? language
        : std::string_view{};
}

/// The parser drops other languages too, but takes nearly all of its time for them: they are most
/// of a file.
std::string withoutOtherLanguages(std::string_view bytes)
{
    const auto languages = userLanguages();
    std::string rest;
    rest.reserve(bytes.size());
    bool isInGroup = false;
    while (!bytes.empty()) {
        const auto end = bytes.find('\n');
        const auto line = bytes.substr(0, end == std::string_view::npos ? end : end + 1);
        isInGroup |= line.starts_with('[');
        const auto language = isInGroup ? languageOf(line) : std::string_view{};
        if (language.empty() || std::ranges::find(languages, language) != languages.end())
            rest += line;
        bytes.remove_prefix(line.size());
    }
    return rest;
}

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
    const auto lines = withoutOtherLanguages(bytes);
    if (!g_key_file_load_from_data(keys, lines.data(), lines.size(), G_KEY_FILE_NONE, nullptr))
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
