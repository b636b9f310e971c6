#pragma once

#include "Hosts/MacOS/System/MacScreenCapture.h"

namespace quorvel {

/// Captures through ScreenCaptureKit, which is loaded with the first capture. Before macOS 14 it
/// takes no still pictures, so the window server's own call is used there. Answers come on the
/// system's queues, or never.
class MacWindowCapture final : public MacScreenCapture {
public:
    void getShareableContent(ContentHandler) override;
    void captureImage(const ShareableWindow&, const CaptureConfiguration&, PictureHandler) override;
};

}
