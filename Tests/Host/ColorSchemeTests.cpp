#include "Hosts/Linux/Bus/ColorScheme.h"

#include <map>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "Tests/Host/MainLoop.h"
#include "Tests/Host/fixtures/PrivateBus.h"

namespace quorvel::xdg::x11 {
namespace {

constexpr char kSettings[] = "org.freedesktop.portal.Settings";
constexpr char kPath[] = "/org/freedesktop/portal/desktop";

/// The settings portal of a bus; leaves it with its end.
class Portal {
public:
    /// The values as GVariant texts, by key.
    using Values = std::map<std::string, std::string>;

    Portal(const test::PrivateBus& bus, Values values)
        : m_connection(bus.connect())
        , m_values(std::move(values))
    {
        const std::string text = "<node><interface name='" + std::string{kSettings}
            + "'><method name='Read'><arg type='s' direction='in'/><arg type='s' direction='in'/>"
              "<arg type='v' direction='out'/></method></interface></node>";
        auto* description = g_dbus_node_info_new_for_xml(text.c_str(), nullptr);
        static constexpr GDBusInterfaceVTable functions{&answer, nullptr, nullptr, {}};
        g_dbus_connection_register_object(m_connection.get(), kPath, description->interfaces[0],
            &functions, this, nullptr, nullptr);
        g_dbus_node_info_unref(description);
        g_dbus_connection_call_sync(m_connection.get(), "org.freedesktop.DBus",
            "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", "org.freedesktop.portal.Desktop", 0U), nullptr,
            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    }
    ~Portal() { g_dbus_connection_close_sync(m_connection.get(), nullptr, nullptr); }
    Portal(const Portal&) = delete;
    Portal& operator=(const Portal&) = delete;

    void say(const char* arguments)
    {
        g_dbus_connection_emit_signal(m_connection.get(), nullptr, kPath, kSettings,
            "SettingChanged", g_variant_new_parsed(arguments), nullptr);
    }

private:
    static void answer(GDBusConnection*, const char*, const char*, const char*, const char*,
        GVariant* parameters, GDBusMethodInvocation* call, gpointer self)
    {
        const char* key = nullptr;
        g_variant_get(parameters, "(s&s)", nullptr, &key);
        auto& values = static_cast<Portal*>(self)->m_values;
        const auto found = values.find(key);
        if (found == values.end())
            g_dbus_method_invocation_return_dbus_error(call, "com.example.NotFound", "none");
        else
            g_dbus_method_invocation_return_value(
                call, g_variant_new_parsed(("(<" + found->second + ">,)").c_str()));
    }

    const GObjectHandle<GDBusConnection> m_connection;
    const Values m_values;
};

}

// Faults: a preference that is not read where the portal wraps it once more; values of other types
// or without sense taken for a preference; what another namespace says heeded; a portal that comes
// back not asked again.
TEST(ColorSchemeTest, takesOfThePortalWhatMakesSense)
{
    const test::PrivateBus bus;
    ColorScheme::Preference preference;
    int news = 0;
    ColorScheme scheme{[&](auto& changed) {
        preference = changed;
        ++news;
    }};
    auto isTold = [&](std::optional<bool> isDark, std::optional<bool> isHighContrast) {
        return eventually([&] {
            return preference.isDark == isDark && preference.isHighContrast == isHighContrast;
        });
    };
    {
        Portal portal{bus,
            {{"color-scheme", "<uint32 1>"}, {"accent-color", "(0.5, 0.25, 1.0)"},
                {"contrast", "uint32 1"}}};
        ASSERT_TRUE(isTold(true, true));
        ASSERT_TRUE(eventually([&] { return preference.accent == Color{0.5, 0.25, 1}; }));

        portal.say("('org.example', 'color-scheme', <uint32 2>)");
        portal.say("('org.freedesktop.appearance', 'accent-color', <(0.5, 2.0, 1.0)>)");
        ASSERT_TRUE(eventually([&] { return !preference.accent; }));
        EXPECT_EQ(preference.isDark, true);
        for (const auto* value : {"uint32 7", "'dark'", "int32 1", "(1, 2)"}) {
            SCOPED_TRACE(value);
            portal.say("('org.freedesktop.appearance', 'color-scheme', <uint32 2>)");
            ASSERT_TRUE(isTold(false, true));
            const auto lie
                = "('org.freedesktop.appearance', 'color-scheme', <" + std::string{value} + ">)";
            portal.say(lie.c_str());
            ASSERT_TRUE(isTold(std::nullopt, true));
        }
        const int before = news;
        portal.say("('org.freedesktop.appearance', 'contrast')");
        portal.say("('org.freedesktop.appearance', 'contrast', <uint32 0>)");
        EXPECT_TRUE(isTold(std::nullopt, std::nullopt));
        EXPECT_EQ(news, before + 1);
    }
    Portal again{bus, {{"color-scheme", "uint32 2"}}};
    EXPECT_TRUE(isTold(false, std::nullopt));
}

}
