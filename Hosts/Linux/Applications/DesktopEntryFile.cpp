#include "Hosts/Linux/Applications/DesktopEntryFile.h"

#include <algorithm>

#include "Hosts/Linux/Applications/KeyFileReader.h"
#include "Hosts/Linux/Text.h"

namespace quorvel::xdg {
namespace {

constexpr std::string_view kEntryGroup = "Desktop Entry";

/// Keeps the name of the best language seen so far.
class LocalizedName {
public:
    explicit LocalizedName(std::span<const std::string> languages) : m_languages(languages) { }

    void offer(std::string_view language, std::string_view value)
    {
        const auto rank = rankOf(language);
        if (rank > m_bestRank)
            return;
        m_bestRank = rank;
        m_value = value;
    }
    std::string_view value() const { return m_value; }

private:
    /// The file's plain name comes after every language that was asked for.
    std::size_t rankOf(std::string_view language) const
    {
        if (language.empty())
            return m_languages.size();
        const auto found = std::find(m_languages.begin(), m_languages.end(), language);
        if (found == m_languages.end())
            return m_languages.size() + 2;
        return static_cast<std::size_t>(found - m_languages.begin());
    }

    std::span<const std::string> m_languages;
    std::size_t m_bestRank = m_languages.size() + 1;
    std::string_view m_value;
};

/// The language of "Name[language]"; absent for other keys.
std::optional<std::string_view> languageOfName(std::string_view key)
{
    if (!key.starts_with("Name"))
        return std::nullopt;
    key.remove_prefix(4);
    if (key.empty())
        return std::string_view{};
    if (key.size() < 3 || key.front() != '[' || key.back() != ']')
        return std::nullopt;
    return key.substr(1, key.size() - 2);
}

/// A value that goes into paths and comparisons: a NUL in it would cut it short elsewhere.
std::string plainValue(std::string_view value)
{
    return value.find('\0') == std::string_view::npos ? unescaped(value) : std::string{};
}

void readPlainKey(const KeyFileReader& reader, DesktopEntryFile& entry)
{
    const auto key = reader.key();
    const auto value = reader.value();
    if (key == "Icon")
        entry.icon = plainValue(value);
    else if (key == "Exec")
        entry.exec = plainValue(value);
    else if (key == "StartupWMClass")
        entry.startupWMClass = plainValue(value);
    else if (key == "Hidden")
        entry.isHidden = value == "true";
    else if (key == "NoDisplay")
        entry.isNoDisplay = value == "true";
}

/// Goes to the first entry of the group that describes the application.
bool findEntryGroup(KeyFileReader& reader)
{
    while (reader.next()) {
        if (reader.group() == kEntryGroup)
            return true;
    }
    return false;
}

}

std::optional<DesktopEntryFile> parseDesktopEntry(
    std::string_view bytes, std::span<const std::string> languages)
{
    KeyFileReader reader{bytes};
    if (!findEntryGroup(reader))
        return std::nullopt;

    DesktopEntryFile entry;
    LocalizedName name{languages};
    bool isApplication = true; // files that say "Hidden=true" often say nothing else
    do {
        if (reader.value().size() > kLongestEntryValue)
            continue;
        if (const auto language = languageOfName(reader.key()))
            name.offer(*language, reader.value());
        else if (reader.key() == "Type")
            isApplication = reader.value() == "Application";
        else
            readPlainKey(reader, entry);
    } while (reader.next() && reader.group() == kEntryGroup);

    if (!isApplication)
        return std::nullopt;
    entry.name = validUtf8(unescaped(name.value()));
    return entry;
}

}
