#include "Hosts/Linux/Applications/RenderedIcon.h"

#include <algorithm>

namespace quorvel::xdg {

cairo_surface_t* RenderedIcon::rendered(int pixels) const
{
    if (pixels < 1 || pixels > kLargestSize)
        return nullptr;
    auto found = std::find_if(m_renderings.begin(), m_renderings.end(),
        [pixels](const auto& rendering) { return rendering->pixels == pixels; });
    if (found == m_renderings.end()) {
        if (m_renderings.size() == kKeptSizes)
            m_renderings.pop_back();
        m_renderings.push_back(std::make_unique<Rendering>(m_budget, pixels));
        found = m_renderings.end() - 1;
    }
    std::rotate(m_renderings.begin(), found, found + 1);
    auto& rendering = *m_renderings.front();
    if (!rendering.isMade) {
        auto drawn = draw(pixels);
        rendering.isMade = drawn.has_value();
        rendering.surface = m_budget->surfaces().share(std::move(drawn).value_or(nullptr));
    }
    rendering.use();
    return rendering.surface.get();
}

}
