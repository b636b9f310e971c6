#include "Hosts/X11/XSettingsData.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

namespace quorvel::xdg::x11 {
namespace {

/// A property as a daemon writes it.
class Property {
public:
    explicit Property(bool isBigEndian = false) : m_isBigEndian(isBigEndian) { }

    Property& add(const std::string& name, std::int32_t value)
    {
        head(0, name);
        number(4, static_cast<std::uint32_t>(value));
        return *this;
    }
    Property& add(const std::string& name, const std::string& value)
    {
        head(1, name);
        number(4, static_cast<std::uint32_t>(value.size()));
        text(value);
        return *this;
    }
    Property& addColor(const std::string& name)
    {
        head(2, name);
        m_body += "12345678";
        return *this;
    }
    std::string bytes(std::uint32_t more = 0) const
    {
        Property start{m_isBigEndian};
        start.m_body = {m_isBigEndian ? '\1' : '\0', 0, 0, 0};
        start.number(4, 99);
        start.number(4, m_count + more);
        return start.m_body + m_body;
    }

private:
    void head(char type, const std::string& name)
    {
        ++m_count;
        m_body += std::string{type, 0};
        number(2, static_cast<std::uint32_t>(name.size()));
        text(name);
        number(4, 1);
    }
    void number(int size, std::uint32_t value)
    {
        for (int i = 0; i < size; ++i)
            m_body += static_cast<char>(value >> 8 * (m_isBigEndian ? size - 1 - i : i));
    }
    void text(const std::string& value)
    {
        m_body += value;
        m_body.resize((m_body.size() + 3) / 4 * 4);
    }

    bool m_isBigEndian;
    std::uint32_t m_count = 0;
    std::string m_body;
};

std::optional<DesktopLooks> decode(const std::string& bytes)
{
    return decodeXSettings(std::as_bytes(std::span{bytes}));
}
DesktopLooks looks(const Property& property)
{
    return decode(property.bytes()).value_or(DesktopLooks{});
}

TEST(XSettings, areReadInBothByteOrdersAmongSettingsOfEveryType)
{
    for (const bool isBigEndian : {false, true}) {
        Property property{isBigEndian};
        property.addColor("Gtk/Colour").add("Net/ThemeName", "Adwaita-dark").add("Xft/DPI", 147456);
        property.add("Net/IconThemeName", "Papirus").add("Gtk/FontName", "Cantarell 11");
        EXPECT_EQ(looks(property), (DesktopLooks{true, false, "Papirus", "Cantarell 11", 1.5}));
    }
}

TEST(XSettings, sayDarkByTheThemeUnlessItIsWishedForAndTheLargerScale)
{
    EXPECT_EQ(looks(Property{}.add("Net/ThemeName", "Mint-Y-Darker")).isDark, true);
    EXPECT_EQ(looks(Property{}.add("Net/ThemeName", "Adwaita")).isDark, false);
    const auto inverse = looks(Property{}.add("Net/ThemeName", "HighContrastInverse"));
    EXPECT_TRUE(inverse.isDark == true && inverse.isHighContrast == true);
    EXPECT_EQ(looks(Property{}).isDark, std::nullopt);
    EXPECT_EQ(
        looks(Property{}.add("Net/ThemeName", "Adwaita").add("Gtk/ApplicationPreferDarkTheme", 1))
            .isDark,
        true);
    EXPECT_EQ(looks(Property{}.add("Xft/DPI", 98304).add("Gdk/WindowScalingFactor", 2)).scale, 2);
    EXPECT_EQ(looks(Property{}.add("Xft/DPI", -1)).scale, std::nullopt);
    EXPECT_EQ(looks(Property{}.add("Gdk/WindowScalingFactor", 1 << 20)).scale, std::nullopt);
}

// Faults: memory behind the property read, or half of a broken one believed.
TEST(XSettings, thatAreMalformedAnywhereAreAbsent)
{
    Property property;
    property.add("Net/ThemeName", "Adwaita-dark").add("Xft/DPI", 147456).addColor("Gtk/Colour");
    const auto whole = property.bytes();
    ASSERT_TRUE(decode(whole));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(decode(whole.substr(0, size))) << size;
    EXPECT_FALSE(decode(property.bytes(1))) << "one more is announced";
    auto broken = whole;
    broken[0] = 2;
    EXPECT_FALSE(decode(broken)) << "no byte order";
    broken = whole;
    broken[12] = 3;
    EXPECT_FALSE(decode(broken)) << "no type";

    EXPECT_EQ(looks(Property{}.add("Net/ThemeName", 7)).isDark, std::nullopt) << "a wrong type";
    for (const auto& text : {std::string{"\xFF\xFE"}, std::string{"a\nb"}, std::string(300, 'x')})
        EXPECT_EQ(looks(Property{}.add("Net/IconThemeName", text)).iconTheme, "");
}

}
}
