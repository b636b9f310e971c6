#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Image.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

/// What a host attaches to a window that it can capture.
struct CaptureNative {
    virtual ~CaptureNative() = default;
};

struct ShareableWindow {
    WindowID windowID{};
    Rect frame; ///< points
    std::shared_ptr<const CaptureNative> native;
};

/// The windows that could be captured when the list was requested.
struct ShareableContent {
    std::vector<ShareableWindow> windows;
};

/// The size of the picture in pixels. The window is scaled to it; the pointer is not included.
struct CaptureConfiguration {
    int width = 1;
    int height = 1;

    friend bool operator==(const CaptureConfiguration&, const CaptureConfiguration&) = default;
};

/// A still picture of a window.
struct WindowPicture {
    Image image;
    Size size; ///< points, as many as it has pixels

    std::size_t bytes() const { return static_cast<std::size_t>(size.width * size.height) * 4; }
};

/// Pictures of other applications' windows. Permissions on the main thread; the rest from any
/// thread, returning at once: the answer comes on any thread, perhaps inside the call. Some systems
/// answer twice, never, or after the caller has gone.
class ScreenCapture {
public:
    /// Null when the question failed.
    using ContentHandler = std::function<void(std::shared_ptr<const ShareableContent>)>;
    /// Absent when the capture failed.
    using PictureHandler = std::function<void(std::optional<WindowPicture>)>;

    virtual ~ScreenCapture() = default;

    /// Whether the user allows this program to record the screen; never asks.
    virtual bool preflightAccess() const = 0;
    /// Shows the system's own question, where there is one; true if access is granted.
    virtual bool requestAccess() = 0;

    /// Every window, on whatever space; slow on some systems.
    virtual void getShareableContent(ContentHandler) = 0;
    /// That window alone, without what covers it. Fails where the system has no picture of it, as
    /// X11 does for windows that are minimised or on another space.
    virtual void captureImage(const ShareableWindow&, const CaptureConfiguration&, PictureHandler)
        = 0;

    /// Calls the handler when the window has drawn something since it was last captured, or since
    /// this call; then not again before its next capture. While it is watched, a capture need not
    /// wait for the window to be drawn anew. Absent where the system does not tell. Main thread.
    [[nodiscard]] virtual std::optional<Subscription> watch(
        WindowID, std::function<void()> /*onDrawn*/)
    {
        return {};
    }
};

}
