#include "Settings/Toolkit/Appearance.h"

#include <cstdlib>
#include <string>
#include <string_view>

#include <adwaita.h>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::settings {

namespace {

constexpr char kStyle[] = R"(
.quorvel-note { background-color: @warning_bg_color; color: @warning_fg_color; padding: 9px 12px; }
.quorvel-empty { padding: 15px; }
.quorvel-dragged { background-color: @card_bg_color; padding: 9px 12px; }
preferencesgroup list + list, preferencesgroup label.heading { margin-top: 12px; }
viewswitcherbar actionbar > revealer > box { padding: 0; border-spacing: 0; }
viewswitcherbar button { padding-left: 0; padding-right: 0; }
viewswitcherbar label { font-size: 0.9em; letter-spacing: -0.2px; }
)";

/// A theme that is forced on the toolkit would replace the library's style.
std::string takeForcedTheme()
{
    const char* forced = std::getenv("GTK_THEME");
    std::string name = forced ? forced : "";
    unsetenv("GTK_THEME");
    return name;
}

/// To be asked before the library sets one of its own.
std::string themeOfDesktop()
{
    char* name = nullptr;
    g_object_get(gtk_settings_get_default(), "gtk-theme-name", &name, nullptr);
    const xdg::GText owned{name};
    return name ? name : "";
}

bool isDark(const std::string& theme)
{
    const xdg::GText folded{g_ascii_strdown(theme.c_str(), -1)};
    return std::string_view{folded.get()}.find("dark") != std::string_view::npos;
}

}

bool startToolkit()
{
    const auto forced = takeForcedTheme();
    if (!gtk_init_check())
        return false;
    const auto theme = forced.empty() ? themeOfDesktop() : forced;
    adw_init();
    auto* style = adw_style_manager_get_default();
    if (isDark(theme))
        adw_style_manager_set_color_scheme(style, ADW_COLOR_SCHEME_PREFER_DARK);
    const xdg::GObjectHandle<GtkCssProvider> own{gtk_css_provider_new()};
    gtk_css_provider_load_from_data(own.get(), kStyle, -1);
    gtk_style_context_add_provider_for_display(gdk_display_get_default(),
        GTK_STYLE_PROVIDER(own.get()), GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    return true;
}

}
