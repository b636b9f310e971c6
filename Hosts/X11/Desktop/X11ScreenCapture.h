#pragma once

#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel::x11 {

/// An X client may look at every window: there is nothing to ask for.
class X11ScreenCapture final : public ScreenCapture {
public:
    bool preflightAccess() const override { return true; }
    bool requestAccess() override { return true; }
};

}
