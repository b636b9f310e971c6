#pragma once

#include <string>

#include "Hosts/Linux/Applications/DesktopEntryIndex.h"
#include "Hosts/Linux/Applications/WindowIdentity.h"

namespace quorvel::xdg {

/// The installed application that the window belongs to; null when that is not clear.
const DesktopEntryIndex::Entry* matchingEntry(const DesktopEntryIndex&, const WindowIdentity&);

/// A name for an application that is not installed: never empty, valid UTF-8, of bounded length.
std::string identifierWithoutEntry(const WindowIdentity&);

}
