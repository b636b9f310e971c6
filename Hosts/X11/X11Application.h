#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include <glib.h>

#include "Hosts/Linux/Bus/ColorScheme.h"
#include "Hosts/Linux/DesktopLooks.h"
#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/Application.h"

namespace quorvel::xdg::x11 {

class Connection;

/// The process: its event loop, its end by a signal or with the server, its appearance.
class X11Application final : public Application {
public:
    /// The looks are those of the desktop; the settings portal's answers take precedence.
    X11Application(Connection&, const Published<DesktopLooks>&);
    ~X11Application() override;

    void setActivationPolicy(ActivationPolicy) override { }
    ProcessID processID() const override;
    std::optional<std::string> bundleIdentifier() const override { return std::nullopt; }
    std::optional<int> operatingSystemMajorVersion() const override { return std::nullopt; }
    void warn(std::string_view) override;
    int run() override;
    void terminate() override;
    const Published<Appearance>& appearance() const override { return m_appearance; }

private:
    void updateAppearance();
    void connectionLost();

    std::unique_ptr<GMainLoop, FreeWith<g_main_loop_unref>> m_loop;
    const Published<DesktopLooks>& m_looks;
    ColorScheme::Preference m_preference; ///< what the portal says
    Published<Appearance> m_appearance;
    ColorScheme m_colorScheme;
    Subscription m_looksChanged;
    Subscription m_lost;
    guint m_signals[3]{};
    bool m_isEnding = false;
    int m_exitStatus = 0;
};

/// Whether the environment (`GTK_THEME`) asks for a dark look; absent when it does not say.
std::optional<bool> isDarkTheme(const char* gtkTheme);
/// Whether the language of this locale is written from right to left.
bool isRightToLeftLocale(std::string_view locale);

}
