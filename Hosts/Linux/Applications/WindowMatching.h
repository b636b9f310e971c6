#pragma once

#include <string>
#include <string_view>

#include "Hosts/Linux/Applications/DesktopEntryIndex.h"
#include "Hosts/Linux/Applications/WindowIdentity.h"
#include "Quorvel/Platform/ApplicationMatching.h"

namespace quorvel::xdg {

/// The installed application that a window belongs to.
struct EntryMatch {
    const DesktopEntryIndex::Entry* entry = nullptr; ///< null when that is not clear
    MatchKind kind = MatchKind::nothing; ///< by what it was found
    std::string_view road = "no desktop file fits"; ///< the same exactly
};
EntryMatch matchEntry(const DesktopEntryIndex&, const WindowIdentity&);

/// What the windows have in common that a user's own match is kept for: class and instance, else
/// the executable; empty where there is neither. Valid UTF-8 of bounded length.
std::string matchKey(const WindowIdentity&);

/// A name for an application that is not installed: never empty, valid UTF-8, of bounded length.
std::string identifierWithoutEntry(const WindowIdentity&);

}
