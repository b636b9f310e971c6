#pragma once

#include <memory>

#include "Quorvel/Core/Bar.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/BarContentView.h"
#include "Quorvel/Views/BarHostingView.h"
#include "Quorvel/Views/BarSlide.h"
#include "Quorvel/Views/Kit/ScrollGesture.h"
#include "Quorvel/Views/Tooltips.h"

namespace quorvel {

class Menus;

/// One bar on the screen: a surface of the platform and the view on it. Main thread.
class BarPanel final : public Bar {
public:
    /// The platform and the menus outlive the panel.
    BarPanel(const Platform&, Menus&, const PanelOptions&, std::size_t screenIndex);
    ~BarPanel() override;

    PanelSurface& surface() override { return *m_surface; }
    const PanelSurface& surface() const override { return *m_surface; }
    void setAllowBecomeKey(bool) override;
    void setHoverKeyingSuppressed(bool) override;
    void fill(const BarContents&) override;
    bool isFilled() const override { return m_content != nullptr; }
    void clear() override;
    void setShown(bool) override;
    void dismissPopups() override;
    bool isInUse() const override;
    void setOut(bool isOut) override { m_slide.setOut(isOut); }
    void setLauncherOpen(bool) override;
    void useItem(std::size_t place, ItemUse) override;

    /// Null while the bar is not filled.
    BarContentView* content() { return m_content; }
    const BarContentView* content() const { return m_content; }
    /// The view that the keyboard walk has reached; null if the keyboard is elsewhere.
    const View* keyFocusedView() const { return m_hostingView.keyFocusedView(); }
    const Tooltips& tooltips() const { return m_tooltips; }
    const BarSlide& slide() const { return m_slide; }

private:
    std::unique_ptr<BarContentView> makeContentView(const BarContents&);
    void scroll(const ScrollEvent&);
    void updateKeying();
    void updateNumbers();
    void tellUse() const;

    const Platform& m_platform;
    Menus& m_menus;
    BarHostingView m_hostingView;
    BarContentView* m_content = nullptr;
    std::unique_ptr<PanelSurface> m_surface; ///< after the hosting view, which it calls
    ScrollGesture m_scroll;
    Tooltips m_tooltips;
    BarSlide m_slide;
    bool m_allowBecomeKey = false;
    bool m_isShown = false;
    bool m_isHovered = false;
    bool m_areChipsHovered = false;
    bool m_isHoverKeyingSuppressed = false;
};

}
