#include "Quorvel/Views/BarPanel.h"

namespace quorvel {

BarPanel::BarPanel(Surfaces& surfaces, const PanelOptions& options, std::size_t screenIndex)
    : m_options(options)
    , m_screenIndex(screenIndex)
    , m_surface(surfaces.createPanel(options, m_hostingView))
{
    m_hostingView.attach(*m_surface);
    m_hostingView.onScroll = [this](const ScrollEvent& event) {
        if (onScroll)
            onScroll(event);
    };
    m_hostingView.onScrollSideways = [this](double distance, ScrollUnit unit) {
        if (m_content)
            m_content->scrollSideways(distance, unit);
    };
    m_hostingView.onKeyboardWanted
        = [this] { return m_surface->isVisible() && m_surface->takeKeyboard(); };
    m_hostingView.onHoverChanged = [this](bool isHovered) {
        m_isHovered = isHovered;
        updateKeying();
    };
}

BarPanel::~BarPanel()
{
    // A surface that goes tells of the pointer that was over it.
    m_hostingView.onHoverChanged = nullptr;
    m_hostingView.setContent(nullptr);
}

void BarPanel::setAllowBecomeKey(bool isAllowed)
{
    m_allowBecomeKey = isAllowed;
    updateKeying();
}

void BarPanel::setHoverKeyingSuppressed(bool isSuppressed)
{
    m_isHoverKeyingSuppressed = isSuppressed;
    updateKeying();
}

void BarPanel::updateKeying()
{
    m_surface->setCanBecomeKey(m_allowBecomeKey || (m_isHovered && !m_isHoverKeyingSuppressed));
}

void BarPanel::setContent(std::unique_ptr<BarContentView> content)
{
    m_content = content.get();
    m_hostingView.isRightToLeft = [this] { return m_content->isRightToLeft(); };
    m_hostingView.setContent(std::move(content));
}

}
