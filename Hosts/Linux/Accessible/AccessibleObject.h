#pragma once

#include "Hosts/Linux/Accessible/AtkLibrary.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg {

class AccessibleNode;

enum class AccessibleKind { application, surface, element, list, textField };

/// The AtkObject that passes every question to a node; the caller owns a reference. Once detached
/// it reports itself as defunct.
AtkObject* makeAccessibleObject(const AtkLibrary&, AccessibleKind, AccessibleNode&);
void detachAccessibleObject(AtkObject*);
/// Null: what the object stood for is gone.
AccessibleNode* accessibleNodeOf(gpointer object);
/// What places are measured from, in pixels of the X screen.
Point accessibleOrigin(const AccessibleNode&, AtkCoordType);

}
