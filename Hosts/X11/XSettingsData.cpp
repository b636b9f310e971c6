#include "Hosts/X11/XSettingsData.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>

#include <glib.h>

namespace quorvel::xdg::x11 {

namespace {

constexpr std::size_t kMostSettings = 4096;
constexpr std::size_t kLongestText = 256;
constexpr double kUnscaledDotsPerInch = 96;
constexpr int kDotFractions = 1024; ///< in which the daemon counts dots per inch
constexpr int kLargestFactor = 16;

enum class Type : std::uint8_t { integer, text, color };

/// Reads from the front; once something is missing, all that follows is.
class Reader {
public:
    Reader(std::span<const std::byte> rest, bool isBigEndian)
        : m_rest(rest)
        , m_isBigEndian(isBigEndian)
    {
    }

    std::uint32_t number(std::size_t size)
    {
        const auto bytes = take(size);
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const auto at = m_isBigEndian ? i : bytes.size() - 1 - i;
            value = value << 8 | std::to_integer<std::uint32_t>(bytes[at]);
        }
        return value;
    }

    /// With what fills it up to a multiple of four bytes.
    std::string_view text(std::size_t size)
    {
        const auto bytes = take(size);
        take((4 - size % 4) % 4);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    void skip(std::size_t size) { take(size); }
    bool isComplete() const { return m_isComplete; }

private:
    std::span<const std::byte> take(std::size_t size)
    {
        m_isComplete &= size <= m_rest.size();
        if (!m_isComplete)
            return {};
        const auto taken = m_rest.first(size);
        m_rest = m_rest.subspan(size);
        return taken;
    }

    std::span<const std::byte> m_rest;
    bool m_isBigEndian;
    bool m_isComplete = true;
};

using Value = std::variant<std::monostate, std::int32_t, std::string_view>;
using Values = std::map<std::string_view, Value>;

/// False when something is missing or of no known type.
bool readSetting(Reader& reader, Values& values)
{
    const auto type = static_cast<Type>(reader.number(1));
    reader.skip(1);
    const auto name = reader.text(reader.number(2));
    reader.skip(4); // when it was last changed
    Value value;
    switch (type) {
    case Type::integer:
        value = static_cast<std::int32_t>(reader.number(4));
        break;
    case Type::text:
        value = reader.text(reader.number(4));
        break;
    case Type::color:
        reader.skip(8);
        break;
    default:
        return false;
    }
    if (reader.isComplete())
        values[name] = value;
    return reader.isComplete();
}

std::optional<std::int32_t> integer(const Values& values, std::string_view name)
{
    const auto found = values.find(name);
    const auto* value = found == values.end() ? nullptr : std::get_if<std::int32_t>(&found->second);
    return value ? std::optional{*value} : std::nullopt;
}

/// Empty where it cannot be the name of anything.
std::string text(const Values& values, std::string_view name)
{
    const auto found = values.find(name);
    const auto* value
        = found == values.end() ? nullptr : std::get_if<std::string_view>(&found->second);
    const bool isSane = value && value->size() <= kLongestText
        && g_utf8_validate(value->data(), static_cast<gssize>(value->size()), nullptr)
        && std::ranges::none_of(*value, [](unsigned char c) { return c < 0x20 || c == 0x7F; });
    return isSane ? std::string{*value} : std::string{};
}

/// In small letters.
std::string themeName(const Values& values)
{
    auto theme = text(values, "Net/ThemeName");
    std::ranges::transform(theme, theme.begin(), [](char c) { return g_ascii_tolower(c); });
    return theme;
}

std::optional<bool> isDark(const Values& values)
{
    if (const auto wish = integer(values, "Gtk/ApplicationPreferDarkTheme"); wish && *wish != 0)
        return true;
    auto theme = themeName(values);
    if (theme.empty())
        return std::nullopt;
    return theme.find("dark") != std::string::npos || theme == "highcontrastinverse";
}

/// The themes of GNOME, MATE and Xfce are called "HighContrast" and "HighContrastInverse".
std::optional<bool> isHighContrast(const Values& values)
{
    auto theme = themeName(values);
    return theme.empty() ? std::nullopt : std::optional{theme.starts_with("highcontrast")};
}

/// Some daemons say the whole of it in dots, others only the factor of whole pixels.
std::optional<double> scale(const Values& values)
{
    std::optional<double> scale;
    if (const auto dots = integer(values, "Xft/DPI"); dots && *dots > 0)
        scale = *dots / (kDotFractions * kUnscaledDotsPerInch);
    const auto factor = integer(values, "Gdk/WindowScalingFactor");
    if (factor && *factor > 0 && *factor <= kLargestFactor)
        scale = std::max(scale.value_or(0), double(*factor));
    return scale;
}

}

std::optional<DesktopLooks> decodeXSettings(std::span<const std::byte> bytes)
{
    if (bytes.empty() || std::to_integer<int>(bytes[0]) > 1)
        return std::nullopt;
    Reader reader{bytes, std::to_integer<int>(bytes[0]) == 1};
    reader.skip(8); // the byte order and the number of the last change
    const auto count = reader.number(4);
    if (!reader.isComplete() || count > kMostSettings)
        return std::nullopt;
    Values values;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!readSetting(reader, values))
            return std::nullopt;
    }
    return DesktopLooks{isDark(values), isHighContrast(values), text(values, "Net/IconThemeName"),
        text(values, "Gtk/FontName"), scale(values)};
}

}
