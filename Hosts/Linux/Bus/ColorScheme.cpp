#include "Hosts/Linux/Bus/ColorScheme.h"

#include <string_view>
#include <utility>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

namespace {

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kPath[] = "/org/freedesktop/portal/desktop";
constexpr char kInterface[] = "org.freedesktop.portal.Settings";
constexpr char kNamespace[] = "org.freedesktop.appearance";
constexpr char kScheme[] = "color-scheme";
constexpr char kAccent[] = "accent-color";
constexpr char kContrast[] = "contrast";

enum Scheme : guint32 { noPreference, prefersDark, prefersLight };
constexpr guint32 kPrefersHighContrast = 1;

/// The value inside any number of variants.
GVariantHandle unwrapped(GVariant* wrapped)
{
    GVariantHandle value{g_variant_ref(wrapped)};
    while (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT))
        value.reset(g_variant_get_variant(value.get()));
    return value;
}

std::optional<bool> darkFrom(GVariant* value)
{
    if (!g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32))
        return std::nullopt;
    const auto scheme = g_variant_get_uint32(value);
    return scheme == prefersDark || scheme == prefersLight ? std::optional{scheme == prefersDark}
                                                           : std::nullopt;
}

/// Absent where nothing is preferred: a theme may say more.
std::optional<bool> highContrastFrom(GVariant* value)
{
    bool isHigh = g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32)
        && g_variant_get_uint32(value) == kPrefersHighContrast;
    return isHigh ? std::optional{true} : std::nullopt;
}

/// Parts from 0 to 1; others mean that there is none.
std::optional<Color> colorFrom(GVariant* value)
{
    if (!g_variant_is_of_type(value, G_VARIANT_TYPE("(ddd)")))
        return std::nullopt;
    Color color;
    g_variant_get(value, "(ddd)", &color.red, &color.green, &color.blue);
    for (const double part : {color.red, color.green, color.blue}) {
        const bool isShare = part >= 0 && part <= 1; // not so if it is no number
        if (!isShare)
            return std::nullopt;
    }
    return color;
}

}

ColorScheme::ColorScheme(Changed changed)
    : m_changed(std::move(changed))
    , m_portal({kPortal, kPath, kInterface, "SettingChanged", kNamespace},
          {[this] {
               read(kScheme);
               read(kAccent);
               read(kContrast);
           },
              nullptr, [this](GVariant* parameters) { takeChange(parameters); }})
{
}

void ColorScheme::read(const char* key)
{
    m_portal.call(kInterface, "Read", g_variant_new("(ss)", kNamespace, key), "(v)",
        [this, key](GVariant* reply) {
            if (!reply)
                return;
            take(key, GVariantHandle{g_variant_get_child_value(reply, 0)}.get());
        });
}

void ColorScheme::takeChange(GVariant* parameters)
{
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)")))
        return;
    const char* space = nullptr;
    const char* key = nullptr;
    GVariant* value = nullptr;
    g_variant_get(parameters, "(&s&sv)", &space, &key, &value);
    const GVariantHandle owned{value};
    if (std::string_view{space} == kNamespace)
        take(key, value);
}

void ColorScheme::take(std::string_view key, GVariant* wrapped)
{
    const auto value = unwrapped(wrapped);
    if (key == kScheme)
        m_preference.isDark = darkFrom(value.get());
    else if (key == kAccent)
        m_preference.accent = colorFrom(value.get());
    else if (key == kContrast)
        m_preference.isHighContrast = highContrastFrom(value.get());
    m_changed(m_preference);
}

}
