#pragma once

#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel {

/// The permission to record the screen, which has a C interface. The system asks the user at most
/// once; later requests only answer. A grant given while the program runs may count only after it
/// is started again.
class MacScreenCapture : public ScreenCapture {
public:
    bool preflightAccess() const override;
    bool requestAccess() override;
};

}
