#include "Quorvel/Views/BarPanel.h"

namespace quorvel {

BarPanel::BarPanel(Surfaces& surfaces, const PanelOptions& options, std::size_t screenIndex)
    : m_options(options)
    , m_screenIndex(screenIndex)
    , m_surface(surfaces.createPanel(options, m_hostingView))
{
    m_blursBehind = m_surface->setBlursBehind(true);
    m_hostingView.attach(*m_surface);
}

void BarPanel::setContent(std::unique_ptr<BarContentView> content)
{
    m_content = content.get();
    m_hostingView.setContent(std::move(content));
}

}
