#pragma once

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

class MacWindowServer;
class Workspace;

/// What each surface of this host needs; all of it outlives the surfaces.
struct SurfaceContext {
    const MacWindowServer& windowServer;
    const Application& application;
    const Workspace& workspace;
    Queue& mainQueue;
};

}
