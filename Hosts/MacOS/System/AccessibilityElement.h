#pragma once

#include <optional>

#include "Hosts/MacOS/System/CFRef.h"
#include "Quorvel/Platform/Accessibility.h"

namespace quorvel {

/// An element of the system behind an `AXElement`. Two references to the same window are different
/// objects that compare equal and hash alike, also after the window has gone.
struct MacElement final : AXNative {
    explicit MacElement(CFRef<AXUIElementRef> element) : ref(std::move(element)) { }
    bool equals(const AXNative& other) const override;

    CFRef<AXUIElementRef> ref;
};

AXElement makeElement(CFRef<AXUIElementRef>);
/// Null for an element that no call of this host made.
AXUIElementRef systemElement(const AXElement&);

/// Strictly by type; what the program never asks for is `monostate`.
AXValue makeValue(CFTypeRef);
/// Empty for a value that has no counterpart.
CFRef<CFTypeRef> makeSystemValue(const AXValue&);

}
