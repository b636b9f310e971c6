#pragma once

#include "Quorvel/Platform/Application.h"

namespace quorvel {
class Dispatch;
}

namespace quorvel::x11 {

class Connection;
class Monitors;
class TextShaper;
struct PanelEnvironment;

/// What every window of ours needs; all of it outlives them.
struct SurfaceContext {
    Connection& connection;
    Dispatch& dispatch;
    const Monitors& monitors;
    const PanelEnvironment& environment;
    const Published<Appearance>& appearance;
    TextShaper& shaper;
};

}
