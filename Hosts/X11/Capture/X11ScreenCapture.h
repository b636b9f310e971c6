#pragma once

#include <memory>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/X11/Capture/CaptureWorker.h"
#include "Hosts/X11/Capture/DrawingWatch.h"
#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Pictures of windows through the Composite extension. An X client may read every window, so there
/// is no permission to ask for. Minimised windows and those of other desktops are not mapped and
/// have no picture.
class X11ScreenCapture final : public ScreenCapture {
public:
    /// What is drawn on windows is reported through the connection; null: it is not.
    X11ScreenCapture(const SharedModel&, Dispatch&, Connection* = nullptr);
    ~X11ScreenCapture() override;

    bool preflightAccess() const override { return true; }
    bool requestAccess() override { return true; }
    void getShareableContent(ContentHandler) override;
    /// Answers on its own thread.
    void captureImage(const ShareableWindow&, const CaptureConfiguration&, PictureHandler) override;
    std::optional<Subscription> watch(WindowID, std::function<void()> onDrawn) override;

private:
    xcb_window_t nativeOf(WindowID) const;

    const SharedModel& m_model;
    std::unique_ptr<CaptureWorker> m_worker;
    std::unique_ptr<Queue> m_queue; ///< the worker's; the worker ends first
    std::unique_ptr<DrawingWatch> m_watch; ///< null where drawing is not reported
};

}
