#pragma once

#include "Hosts/Linux/Drawing/RoundedMasks.h"
#include "Hosts/Linux/Drawing/TextShaper.h"

namespace quorvel::xdg {

/// What canvases keep from one painting to the next. Main thread.
struct CanvasTools {
    TextShaper shaper;
    RoundedMasks masks;
};

}
