#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/BarContentView.h"
#include "Quorvel/Views/BarHostingView.h"

namespace quorvel {

/// One bar on the screen: a surface of the platform and the view on it. Main thread.
class BarPanel {
public:
    BarPanel(Surfaces&, const PanelOptions&, std::size_t screenIndex);
    ~BarPanel();
    BarPanel(const BarPanel&) = delete;
    BarPanel& operator=(const BarPanel&) = delete;

    PanelSurface& surface() { return *m_surface; }
    const PanelSurface& surface() const { return *m_surface; }
    SpaceID spaceID() const { return m_options.space; }
    DisplayNumber display() const { return m_options.display; }
    /// In the list of screens.
    std::size_t screenIndex() const { return m_screenIndex; }
    /// Screens before its own came or went. False if it is the one it has.
    bool setScreenIndex(std::size_t index) { return std::exchange(m_screenIndex, index) != index; }

    std::function<void(const ScrollEvent&)> onScroll;

    /// For a switch of space, which follows the key panel, whatever is suppressed.
    void setAllowBecomeKey(bool);
    /// Else the panel may take the keyboard while the pointer is over it.
    void setHoverKeyingSuppressed(bool);

    void setContent(std::unique_ptr<BarContentView>);
    /// Null until the bar is first shown.
    BarContentView* content() { return m_content; }
    const BarContentView* content() const { return m_content; }
    /// The view that the keyboard has been walked to; null if it is elsewhere.
    const View* keyFocusedView() const { return m_hostingView.keyFocusedView(); }

private:
    void updateKeying();

    PanelOptions m_options;
    std::size_t m_screenIndex;
    BarHostingView m_hostingView;
    BarContentView* m_content = nullptr;
    std::unique_ptr<PanelSurface> m_surface; ///< last: it calls the hosting view
    bool m_allowBecomeKey = false;
    bool m_isHovered = false;
    bool m_isHoverKeyingSuppressed = false;
};

}
