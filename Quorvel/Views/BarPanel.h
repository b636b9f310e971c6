#pragma once

#include <functional>
#include <memory>

#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/BarContentView.h"
#include "Quorvel/Views/BarHostingView.h"

namespace quorvel {

/// One bar on the screen: a surface of the platform and the view on it. Main thread.
class BarPanel {
public:
    BarPanel(Surfaces&, const PanelOptions&);

    PanelSurface& surface() { return *m_surface; }
    const PanelSurface& surface() const { return *m_surface; }
    SpaceID spaceID() const { return m_spaceID; }
    /// Nothing shows through the panel.
    bool isOpaque() const { return !m_blursBehind; }

    void setContent(std::unique_ptr<BarContentView>);
    const BarContentView* content() const { return m_content; }

private:
    SpaceID m_spaceID;
    BarHostingView m_hostingView;
    BarContentView* m_content = nullptr;
    std::unique_ptr<PanelSurface> m_surface; ///< last: it calls the hosting view
    bool m_blursBehind = false;
};

}
