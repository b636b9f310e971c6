#pragma once

#include "Hosts/MacOS/System/CFRef.h"
#include "Quorvel/Platform/Spaces.h"
#include "Quorvel/Platform/WindowList.h"

namespace quorvel {

/// Reads the window server's window dictionaries. Holds the keys, so that a list of hundreds of
/// windows creates none.
class WindowDecoder {
public:
    WindowDecoder();

    CGWindowInfo decode(CFDictionaryRef) const;
    std::optional<ProcessID> ownerPID(CFDictionaryRef) const;

private:
    CFRef<CFStringRef> m_windowNumber;
    CFRef<CFStringRef> m_ownerPID;
    CFRef<CFStringRef> m_ownerName;
    CFRef<CFStringRef> m_windowName;
    CFRef<CFStringRef> m_layer;
    CFRef<CFStringRef> m_bounds;
    CFRef<CFStringRef> m_alpha;
};

/// Displays and spaces keep their positions in the lists: an entry that is not a dictionary becomes
/// one without values.
std::vector<ManagedDisplay> managedDisplaysFrom(CFArrayRef);

}
