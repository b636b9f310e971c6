#pragma once

#include "Hosts/Linux/Accessible/AtkLibrary.h"

namespace quorvel::xdg {

class AccessibleNode;

enum class AccessibleKind { application, surface, element };

/// The AtkObject that passes every question to a node; the caller owns a reference. Once detached
/// it reports itself as defunct.
AtkObject* makeAccessibleObject(const AtkLibrary&, AccessibleKind, AccessibleNode&);
void detachAccessibleObject(AtkObject*);

}
