#pragma once

#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel {

/// The permission to record the screen, which has a C interface. The system asks the user at most
/// once; later requests only return the answer. Permission granted while the program runs may take
/// effect only after a restart.
class MacScreenCapture : public ScreenCapture {
public:
    bool preflightAccess() const override;
    bool requestAccess() override;
};

}
