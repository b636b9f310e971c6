#include "Hosts/Linux/Applications/TerminalProgram.h"

#include <array>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

namespace {

/// The terminal and what it wants before a command of several words. The first two start the user's
/// choice: that of the desktop, and Debian's.
constexpr std::array<std::array<const char*, 3>, 20> kTerminals{{
    {"xdg-terminal-exec"},
    {"x-terminal-emulator", "-e"},
    {"ptyxis", "--"},
    {"kgx", "-e"},
    {"gnome-terminal", "--"},
    {"konsole", "-e"},
    {"xfce4-terminal", "-x"},
    {"mate-terminal", "-x"},
    {"tilix", "-e"},
    {"qterminal", "-e"},
    {"lxterminal", "-e"},
    {"terminator", "-x"},
    {"terminology", "-e"},
    {"alacritty", "-e"},
    {"kitty"},
    {"wezterm", "start", "--"},
    {"urxvt", "-e"},
    {"rxvt", "-e"},
    {"st", "-e"},
    {"xterm", "-e"},
}};

}

std::optional<Arguments> terminalPrefix()
{
    for (const auto& terminal : kTerminals) {
        if (!programPath(terminal.front()))
            continue;
        Arguments prefix;
        for (const auto* word : terminal) {
            if (word)
                prefix.emplace_back(word);
        }
        return prefix;
    }
    return std::nullopt;
}

std::optional<std::string> programPath(const std::string& name)
{
    const GText path{g_find_program_in_path(name.c_str())};
    return path ? std::optional<std::string>{path.get()} : std::nullopt;
}

}
