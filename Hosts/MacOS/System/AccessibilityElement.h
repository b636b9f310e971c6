#pragma once

#include <optional>

#include "Hosts/MacOS/System/CFRef.h"
#include "Quorvel/Platform/Accessibility.h"

namespace quorvel {

/// The system's element behind an `AXElement`. Two references to the same window are different
/// objects that compare equal and hash alike, even after the window has gone.
struct MacElement final : AXNative {
    explicit MacElement(CFRef<AXUIElementRef> element) : ref(std::move(element)) { }
    bool equals(const AXNative& other) const override;

    CFRef<AXUIElementRef> ref;
};

AXElement makeElement(CFRef<AXUIElementRef>);
/// Null for an element that this host did not make.
AXUIElementRef systemElement(const AXElement&);

/// Strictly by type; values that the program never asks for become `monostate`.
AXValue makeValue(CFTypeRef);
/// Empty for a value that has no equivalent.
CFRef<CFTypeRef> makeSystemValue(const AXValue&);

}
