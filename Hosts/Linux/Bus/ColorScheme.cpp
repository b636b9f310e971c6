#include "Hosts/Linux/Bus/ColorScheme.h"

#include <string_view>
#include <utility>

namespace quorvel::xdg {

namespace {

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kPath[] = "/org/freedesktop/portal/desktop";
constexpr char kInterface[] = "org.freedesktop.portal.Settings";
constexpr char kNamespace[] = "org.freedesktop.appearance";
constexpr char kKey[] = "color-scheme";

enum Preference : guint32 { noPreference, prefersDark, prefersLight };

/// The value inside any number of variants.
GVariant* unwrapped(GVariant* value)
{
    value = g_variant_ref(value);
    while (g_variant_is_of_type(value, G_VARIANT_TYPE_VARIANT)) {
        auto* inner = g_variant_get_variant(value);
        g_variant_unref(std::exchange(value, inner));
    }
    return value;
}

}

ColorScheme::ColorScheme(Changed changed)
    : m_changed(std::move(changed))
    , m_portal({kPortal, kPath, kInterface, "SettingChanged", kNamespace},
          {[this] { read(); }, nullptr, [this](GVariant* parameters) { takeChange(parameters); }})
{
}

void ColorScheme::read()
{
    m_portal.call(kInterface, "Read", g_variant_new("(ss)", kNamespace, kKey), "(v)",
        [this](GVariant* reply) {
            if (!reply)
                return;
            auto* value = g_variant_get_child_value(reply, 0);
            take(value);
            g_variant_unref(value);
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
    if (std::string_view{space} == kNamespace && std::string_view{key} == kKey)
        take(value);
    g_variant_unref(value);
}

void ColorScheme::take(GVariant* wrapped)
{
    auto* value = unwrapped(wrapped);
    std::optional<bool> isDark;
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32)) {
        auto preference = g_variant_get_uint32(value);
        if (preference == prefersDark || preference == prefersLight)
            isDark = preference == prefersDark;
    }
    g_variant_unref(value);
    m_changed(isDark);
}

}
