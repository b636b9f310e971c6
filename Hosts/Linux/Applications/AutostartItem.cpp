#include "Hosts/Linux/Applications/AutostartItem.h"

#include <optional>

#include <glib.h>
#include <unistd.h>

#include "Hosts/Linux/Applications/XdgFolders.h"
#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/Files.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel::xdg {

namespace {

constexpr char kGroup[] = G_KEY_FILE_DESKTOP_GROUP;
constexpr char kHidden[] = G_KEY_FILE_DESKTOP_KEY_HIDDEN;
constexpr char kExec[] = G_KEY_FILE_DESKTOP_KEY_EXEC;
/// How two of the desktops write "switched off".
constexpr char kGnomeEnabled[] = "X-GNOME-Autostart-enabled";
constexpr std::size_t kLargestFile = 64 * 1024;

using KeyFile = std::unique_ptr<GKeyFile, FreeWith<g_key_file_unref>>;

/// Null unless it is a desktop entry.
KeyFile load(const Files& files, const std::string& path)
{
    KeyFile keys{g_key_file_new()};
    auto bytes = files.read(path, kLargestFile);
    constexpr auto flags
        = static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    if (!bytes
        || !g_key_file_load_from_data(keys.get(), bytes->data(), bytes->size(), flags, nullptr)
        || !g_key_file_has_group(keys.get(), kGroup))
        keys.reset();
    return keys;
}

bool save(Files& files, const std::string& path, GKeyFile* keys)
{
    gsize size = 0;
    const GText bytes{g_key_file_to_data(keys, &size, nullptr)};
    return !files.createFolder(path.substr(0, path.find_last_of('/')))
        && !files.writeAtomically(path, std::string{bytes.get(), size});
}

std::optional<bool> flag(GKeyFile* keys, const char* name)
{
    GError* error = nullptr;
    bool value = g_key_file_get_boolean(keys, kGroup, name, &error);
    if (!error)
        return value;
    g_clear_error(&error);
    return std::nullopt;
}

/// Whether the program that the entry names can still be started.
bool namesAProgram(GKeyFile* keys)
{
    const GText line{g_key_file_get_string(keys, kGroup, kExec, nullptr)};
    char** words = nullptr;
    if (!line || !g_shell_parse_argv(line.get(), nullptr, &words, nullptr))
        return false;
    const GTexts owned{words};
    const GText program{g_find_program_in_path(words[0])};
    return program != nullptr;
}

/// As a desktop entry's command line: quoted, and no field code in it.
std::string quotedProgram(const std::string& program)
{
    std::string line = "\"";
    for (char character : program) {
        if (character == '"' || character == '`' || character == '$' || character == '\\')
            line += '\\';
        if (character == '%')
            line += '%';
        line += character;
    }
    return line + "\"";
}

void name(GKeyFile* keys, const std::string& program)
{
    g_key_file_set_string(
        keys, kGroup, G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
    g_key_file_set_string(keys, kGroup, G_KEY_FILE_DESKTOP_KEY_NAME, "Quorvel");
    g_key_file_set_string(keys, kGroup, G_KEY_FILE_DESKTOP_KEY_COMMENT, tr("Taskbar").c_str());
    // Nothing is started, and no session complains, once the program is gone.
    g_key_file_set_string(keys, kGroup, G_KEY_FILE_DESKTOP_KEY_TRY_EXEC, program.c_str());
    g_key_file_set_string(keys, kGroup, kExec, quotedProgram(program).c_str());
}

}

std::string AutostartItem::userFile()
{
    return configurationFolder() + "/autostart/quorvel.desktop";
}

std::string AutostartItem::runningProgram()
{
    char path[4096];
    auto length = ::readlink("/proc/self/exe", path, sizeof path);
    std::string program{path, length > 0 ? static_cast<std::size_t>(length) : 0};
    // An upgrade has put another file in its place.
    constexpr std::string_view deleted = " (deleted)";
    if (program.ends_with(deleted))
        program.resize(program.size() - deleted.size());
    return program.empty() ? "quorvel" : program;
}

LoginItem::Status AutostartItem::status() const
{
    auto keys = load(m_files, m_path);
    if (!keys || !namesAProgram(keys.get()) || flag(keys.get(), kHidden).value_or(false)
        || !flag(keys.get(), kGnomeEnabled).value_or(true))
        return Status::notRegistered;
    return Status::enabled;
}

bool AutostartItem::registerItem()
{
    auto keys = load(m_files, m_path);
    if (!keys)
        keys.reset(g_key_file_new());
    if (!namesAProgram(keys.get()))
        name(keys.get(), m_program);
    g_key_file_remove_key(keys.get(), kGroup, kHidden, nullptr);
    g_key_file_remove_key(keys.get(), kGroup, kGnomeEnabled, nullptr);
    return save(m_files, m_path, keys.get());
}

bool AutostartItem::unregisterItem()
{
    auto keys = load(m_files, m_path);
    if (!keys)
        return true;
    g_key_file_set_boolean(keys.get(), kGroup, kHidden, true);
    return save(m_files, m_path, keys.get());
}

}
