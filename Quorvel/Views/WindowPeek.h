#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/BarHostingView.h"
#include "Quorvel/Views/Kit/Animation.h"

namespace quorvel {

/// Lets the user look at one window alone, once the pointer has rested on its card.
///
/// No window is touched for it: a panel of ours shows the window's picture, which follows the
/// window, in the window's place; where windows can be seen through, it covers the rest of the
/// screen with a shade. So whatever happens to this program, the desktop is as it was. A window
/// that the system has no picture of, as of a minimised one, is not shown. Main thread.
class WindowPeek {
public:
    /// How long the pointer rests before.
    static constexpr Duration kRest = seconds(0.5);

    struct Inputs {
        Surfaces& surfaces;
        Dispatch& dispatch;
        const Displays& displays;
        ThumbnailService& thumbnailService;
        const Published<Appearance>& appearance;
        DisplayNumber display{};
    };

    explicit WindowPeek(const Inputs&);
    ~WindowPeek();

    /// The panel has come up: whatever should lie above it has to be ordered to the front.
    std::function<void()> onShown;

    /// The pointer is on the card of the window. What lies below `bottom` (points, bottom-left
    /// origin) on this display stays as it is.
    void begin(WindowID, double bottom);
    void end();

private:
    class Content;

    void show(const WindowPicture&, const Rect& window);
    void makePanel(const Screen&);
    Screen screenOf(const Rect& window) const;

    Inputs m_inputs;
    double m_bottom = 0;
    WorkItem m_rest;
    Subscription m_following;
    std::unique_ptr<BarHostingView> m_hostingView;
    std::unique_ptr<PanelSurface> m_surface;
    Content* m_content = nullptr;
    Animation m_fade;
};

}
