#pragma once

#include "Quorvel/Platform/Reservations.h"
#include "Quorvel/Platform/Spaces.h"
#include "Quorvel/Platform/SyntheticInput.h"
#include "Quorvel/Platform/WindowList.h"

namespace quorvel {

/// The window server as one service of the system. Code that needs only a part takes that part.
class WindowServer : public WindowList,
                     public Spaces,
                     public Reservations,
                     public SyntheticInput { };

}
