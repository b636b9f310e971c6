#include "Hosts/X11/Applications/WindowMatching.h"

namespace quorvel::x11 {
namespace {

using Entry = DesktopEntryIndex::Entry;

constexpr std::size_t kLongestName = 256;

const Entry* byApplicationId(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    if (!window.gtkApplicationId)
        return nullptr;
    if (const auto* entry = index.withId(*window.gtkApplicationId))
        return entry;
    return index.withSimilarId(*window.gtkApplicationId);
}

/// Web applications of a browser share its class and differ in their instance, which the file of
/// each declares.
const Entry* byOwnInstance(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    if (similarName(window.wmInstance) == similarName(window.wmClass))
        return nullptr;
    return index.declaringClass(window.wmInstance);
}

const Entry* byExactName(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    if (const auto* entry = index.withId(window.wmClass))
        return entry;
    if (const auto* entry = index.declaringClass(window.wmClass))
        return entry;
    return index.withId(window.wmInstance);
}

const Entry* bySimilarName(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    for (const auto* name : {&window.wmClass, &window.wmInstance}) {
        if (const auto* entry = index.withSimilarId(*name))
            return entry;
        if (const auto* entry = index.declaringSimilarClass(*name))
            return entry;
    }
    return nullptr;
}

/// For files that declare no class: Electron's and Java's windows, and those behind a wrapper
/// script.
const Entry* byCommand(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    for (const auto* name : {&window.wmClass, &window.wmInstance}) {
        if (const auto* entry = index.withLastPart(*name))
            return entry;
        if (const auto* entry = index.startingCommand(*name))
            return entry;
    }
    if (!window.executableName || isInterpreter(*window.executableName))
        return nullptr;
    return index.startingCommand(*window.executableName);
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

const Entry* matchingEntry(const DesktopEntryIndex& index, const WindowIdentity& window)
{
    for (const auto rule :
        {byApplicationId, byOwnInstance, byExactName, bySimilarName, byCommand}) {
        if (const auto* entry = rule(index, window))
            return entry;
    }
    return nullptr;
}

std::string identifierWithoutEntry(const WindowIdentity& window)
{
    if (auto name = lowerCase(tidied(window.wmClass)); !name.empty())
        return name;
    if (auto name = tidied(window.wmInstance); !name.empty())
        return name;
    if (auto name = tidied(window.executableName.value_or("")); !name.empty())
        return name;
    return "x11." + std::to_string(window.number);
}

}
