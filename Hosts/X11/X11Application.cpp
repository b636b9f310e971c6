#include "Hosts/X11/X11Application.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <utility>

#include <glib-unix.h>
#include <unistd.h>

#include "Hosts/Linux/Gettext.h"
#include "Hosts/Posix/StandardStreams.h"
#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

namespace {

/// A bar is quieter dark, so that is what it is on a desktop that says nothing.
constexpr bool kIsDarkByDefault = true;

bool isRightToLeft()
{
    return isRightToLeftLocale(languageOfTexts());
}

}

std::optional<bool> isDarkTheme(const char* gtkTheme)
{
    if (!gtkTheme || !*gtkTheme)
        return std::nullopt;
    std::string_view theme{gtkTheme};
    return theme.ends_with(":dark") || theme.ends_with("-dark");
}

bool isRightToLeftLocale(std::string_view locale)
{
    static constexpr std::array<std::string_view, 15> languages{"ar", "arc", "ckb", "dv", "fa",
        "he", "iw", "ks", "nqo", "ps", "sd", "syr", "ug", "ur", "yi"};
    auto language = locale.substr(0, locale.find_first_of("_.@-"));
    return std::ranges::find(languages, language) != languages.end();
}

X11Application::X11Application(Connection& connection, const Published<DesktopLooks>& looks)
    : m_loop(g_main_loop_new(nullptr, false))
    , m_looks(looks)
    , m_colorScheme([this](const ColorScheme::Preference& preference) {
        m_preference = preference;
        updateAppearance();
    })
    , m_looksChanged(looks.subscribe([this](auto&) { updateAppearance(); }))
    , m_lost(connection.lost.subscribe([this] { connectionLost(); }))
{
    updateAppearance();
    constexpr std::array numbers{SIGTERM, SIGINT, SIGHUP};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        m_signals[i] = g_unix_signal_add(
            numbers[i],
            [](gpointer self) -> gboolean {
                static_cast<X11Application*>(self)->terminate();
                return G_SOURCE_CONTINUE;
            },
            this);
    }
}

X11Application::~X11Application()
{
    for (auto source : m_signals)
        g_source_remove(source);
}

ProcessID X11Application::processID() const
{
    return static_cast<ProcessID>(getpid());
}

void X11Application::warn(std::string_view text)
{
    posix::tell(text);
}

int X11Application::run()
{
    if (!m_isEnding)
        g_main_loop_run(m_loop.get());
    return m_exitStatus;
}

void X11Application::terminate()
{
    if (std::exchange(m_isEnding, true))
        return;
    willTerminate.emit();
    g_main_loop_quit(m_loop.get());
}

/// The portal knows best. A theme in the environment is what the user gave this program.
void X11Application::updateAppearance()
{
    auto isDark = m_preference.isDark;
    if (!isDark)
        isDark = isDarkTheme(std::getenv("GTK_THEME"));
    if (!isDark)
        isDark = m_looks.value().isDark;
    auto appearance = m_appearance.value();
    appearance.isDark = isDark.value_or(kIsDarkByDefault);
    appearance.isRightToLeft = isRightToLeft();
    appearance.accent = m_preference.accent;
    appearance.increaseContrast
        = m_preference.isHighContrast.value_or(m_looks.value().isHighContrast.value_or(false));
    appearance.font = m_looks.value().font;
    m_appearance.set(appearance);
}

void X11Application::connectionLost()
{
    posix::tell("the X server has gone");
    m_exitStatus = 1;
    terminate();
}

}
