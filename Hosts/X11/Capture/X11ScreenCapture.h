#pragma once

#include <memory>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/X11/Capture/CaptureWorker.h"
#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel::xdg::x11 {

/// Pictures of windows through the Composite extension. An X client may look at every window: there
/// is nothing to ask for. Minimised windows and those of other desktops are not mapped, so there is
/// no picture of them.
class X11ScreenCapture final : public ScreenCapture {
public:
    X11ScreenCapture(const SharedModel&, Dispatch&);

    bool preflightAccess() const override { return true; }
    bool requestAccess() override { return true; }
    void getShareableContent(ContentHandler) override;
    /// Answers on a thread of its own.
    void captureImage(const ShareableWindow&, const CaptureConfiguration&, PictureHandler) override;

private:
    const SharedModel& m_model;
    std::unique_ptr<CaptureWorker> m_worker;
    std::unique_ptr<Queue> m_queue; ///< the worker's, which ends first
};

}
