#include "Hosts/Linux/Applications/WindowMatching.h"

#include <algorithm>
#include <vector>

#include "Hosts/Linux/Text.h"

namespace quorvel::xdg {
namespace {

using Entry = DesktopEntryIndex::Entry;

constexpr std::size_t kLongestName = 256;

/// Java gives it to every window, whatever the program; some files declare it all the same.
constexpr std::string_view kJavaInstance = "sun-awt-X11-";

bool isJavaWindow(const WindowIdentity& window)
{
    return window.wmInstance.starts_with(kJavaInstance);
}

/// What the window calls itself, the class first.
std::vector<std::string_view> namesOf(const WindowIdentity& window)
{
    std::vector<std::string_view> names;
    for (const auto* text : {&window.wmClass, &window.wmInstance}) {
        const std::string_view name{*text};
        if (!name.empty() && !name.starts_with(kJavaInstance))
            names.push_back(name);
    }
    return names;
}

const Entry* byApplicationId(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    if (!window.gtkApplicationId)
        return nullptr;
    if (const auto* entry = index.withId(*window.gtkApplicationId))
        return entry;
    if (const auto* entry = index.withSimilarId(*window.gtkApplicationId))
        return entry;
    return index.withSimilarId(lastPart(*window.gtkApplicationId));
}

/// Web applications of a browser share its class and differ in their instance, which the file of
/// each declares.
const Entry* byOwnInstance(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    if (isJavaWindow(window) || similarName(window.wmInstance) == similarName(window.wmClass))
        return nullptr;
    return index.declaringClass(window.wmInstance);
}

/// A file that has the class as its name comes first, unless menus show another one for it.
const Entry* byClass(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    const auto* named = index.withId(window.wmClass);
    if (named && !named->read()->isNoDisplay)
        return named;
    const auto* declaring = index.declaringClass(window.wmClass);
    if (declaring && (!named || !declaring->read()->isNoDisplay))
        return declaring;
    return named;
}

const Entry* byInstance(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    return isJavaWindow(window) ? nullptr : index.withId(window.wmInstance);
}

const Entry* bySimilarName(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    for (const auto name : namesOf(window)) {
        if (const auto* entry = index.withSimilarId(name))
            return entry;
        if (const auto* entry = index.declaringSimilarClass(name))
            return entry;
    }
    return nullptr;
}

/// For files that declare no class: Electron's and Java's windows, and those behind a wrapper
/// script.
const Entry* byCommand(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    for (const auto name : namesOf(window)) {
        if (const auto* entry = index.withLastPart(name))
            return entry;
        if (const auto* entry = index.startingCommand(name))
            return entry;
    }
    return nullptr;
}

/// For names that are written another way in the file's: "org.example.Editor" and "editor",
/// "Photo Shed" and "photoshed", "paint-2.10" and "paint".
const Entry* byShapeOfName(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    for (const auto name : namesOf(window)) {
        if (const auto* entry = index.withSimilarId(lastPart(name)))
            return entry;
        const auto plain = withoutVersion(name);
        if (const auto* entry = plain != name ? index.declaringSimilarClass(plain) : nullptr)
            return entry;
        if (const auto* entry = index.withCompactName(name))
            return entry;
    }
    return nullptr;
}

/// The class of a Java program's windows is its main class, with hyphens for the dots. The package
/// tells what a class that is called Main does not.
const Entry* byJavaPackage(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    if (!isJavaWindow(window))
        return nullptr;
    auto name = window.wmClass;
    std::ranges::replace(name, '-', '.');
    auto part = lastPart(name);
    if (part.empty())
        part = lastPart(std::string_view{name}.substr(0, name.rfind('.')));
    if (const auto* entry = index.withSimilarId(part))
        return entry;
    return index.startingCommand(part);
}

/// Scripts start programs of nearly their own name.
std::string_view withoutWrapping(std::string_view program)
{
    for (const std::string_view ending : {"-bin", ".bin", "-wrapped", ".real"}) {
        if (program.size() > ending.size() && program.ends_with(ending))
            program.remove_suffix(ending.size());
    }
    if (program.size() > 1 && program.starts_with('.'))
        program.remove_prefix(1);
    return program;
}

const Entry* byExecutable(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    if (!window.executableName || isInterpreter(*window.executableName))
        return nullptr;
    if (const auto* entry = index.startingCommand(*window.executableName))
        return entry;
    return index.startingCommand(withoutWrapping(*window.executableName));
}

/// The name as an identifier: what a hostile window sets must not end up in files or on terminals.
std::string tidied(std::string_view name)
{
    auto text = validUtf8(name.substr(0, kLongestName));
    std::erase_if(text, [](unsigned char letter) { return letter < 0x20 || letter == 0x7F; });
    return text;
}

std::string lowerCase(std::string text)
{
    for (auto& letter : text) {
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    }
    return text;
}

}

EntryMatch matchEntry(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    struct Rule {
        const Entry* (*find)(const DesktopEntryIndex&, const WindowIdentity&);
        MatchKind kind;
        std::string_view road;
    };
    using Kind = MatchKind;
    static constexpr Rule rules[] = {
        {byApplicationId, Kind::applicationID, "application id (_GTK_APPLICATION_ID)"},
        {byOwnInstance, Kind::windowClass, "StartupWMClass, by the instance (WM_CLASS)"},
        {byClass, Kind::windowClass, "name of the file or StartupWMClass, by the class (WM_CLASS)"},
        {byInstance, Kind::windowClass, "name of the file, by the instance (WM_CLASS)"},
        {bySimilarName, Kind::similarName,
            "name of the file or StartupWMClass, in other letter case"},
        {byCommand, Kind::program, "program that the file starts, by class or instance"},
        {byShapeOfName, Kind::similarName, "name of the file, written another way"},
        {byJavaPackage, Kind::similarName, "package of a Java class"},
        {byExecutable, Kind::program, "program that the file starts, by the executable"},
    };
    for (const auto& rule : rules) {
        if (const auto* entry = rule.find(index, window))
            return {entry, rule.kind, rule.road};
    }
    return {};
}

std::string matchKey(const WindowIdentity& window)
{
    const auto name = tidied(window.wmClass);
    const auto instance = tidied(window.wmInstance);
    if (!name.empty() || !instance.empty())
        return "class:" + instance + "." + name;
    const auto executable = tidied(window.executableName.value_or(""));
    return executable.empty() ? std::string{} : "executable:" + executable;
}

std::string identifierWithoutEntry(const WindowIdentity& window)
{
    if (auto name = lowerCase(tidied(window.wmClass)); !name.empty())
        return name;
    if (auto name = tidied(window.wmInstance); !name.empty())
        return name;
    if (auto name = tidied(window.executableName.value_or("")); !name.empty())
        return name;
    return "window." + std::to_string(window.number);
}

}
