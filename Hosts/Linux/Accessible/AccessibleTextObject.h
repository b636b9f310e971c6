#pragma once

#include "Hosts/Linux/Accessible/AtkLibrary.h"

namespace quorvel::xdg {

/// The parts of a text field's AtkObject that speak of its text and change it.
void initializeAccessibleText(gpointer interface, gpointer);
void initializeAccessibleEditableText(gpointer interface, gpointer);

}
