#pragma once

#include "Hosts/X11/Accessible/AtkLibrary.h"

namespace quorvel::x11 {

class AccessibleNode;

enum class AccessibleKind { application, surface, element };

/// The AtkObject that hands every question to a node; the caller owns a reference. Once detached it
/// says that it is defunct.
AtkObject* makeAccessibleObject(const AtkLibrary&, AccessibleKind, AccessibleNode&);
void detachAccessibleObject(AtkObject*);

}
