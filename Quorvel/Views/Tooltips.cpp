#include "Quorvel/Views/Tooltips.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

Tooltips::Tooltips(const Platform& platform, const PanelSurface& bar, DisplayNumber display)
    : m_platform(platform)
    , m_bar(bar)
    , m_display(display)
{
}

void Tooltips::pointAt(const View* view)
{
    hide();
    m_hasPointer = view != nullptr;
    auto appearedUnder = view ? std::exchange(m_appearedUnder, std::nullopt) : std::nullopt;
    bool isQuiet
        = !view || view->tooltip().empty() || (appearedUnder && isUnder(*view, *appearedUnder));
    m_target = isQuiet ? nullptr : view;
    if (!m_target)
        return;
    bool isNext
        = m_lastSeen != Instant::min() && m_platform.dispatch.now() - m_lastSeen < kNextAtOnce;
    if (isNext)
        return show();
    rest();
    m_moves = m_platform.surfaces.monitorPointer(PointerScope::ownWindows, [this] {
        if (m_showTimer.isPending())
            rest();
    });
}

void Tooltips::rest()
{
    m_showTimer = m_platform.dispatch.main().after(kShowDelay, [this] { show(); });
}

void Tooltips::update()
{
    if (!m_panel || !m_target)
        return;
    if (m_target->tooltip().empty())
        dismiss();
    else if (m_target->tooltip() != m_text)
        show();
}

void Tooltips::barDidAppear()
{
    dismiss();
    // Some systems tell of the pointer before, others after.
    m_appearedUnder
        = m_hasPointer ? std::nullopt : std::optional{m_platform.displays.pointerLocation()};
}

bool Tooltips::isUnder(const View& view, Point globalTopLeft) const
{
    auto screens = m_platform.displays.screens();
    if (screens.empty())
        return false;
    auto bar = m_bar.frame().flipped(screens.front().frame.height);
    return view.frameInRoot().translated(bar.x, bar.y).contains(globalTopLeft);
}

void Tooltips::tell(std::string text, const Rect& place)
{
    dismiss();
    open(std::move(text), place);
}

void Tooltips::dismiss()
{
    hide();
    m_target = nullptr;
    m_lastSeen = Instant::min();
}

void Tooltips::show()
{
    m_showTimer = {};
    m_moves = {};
    open(m_target->tooltip(), m_target->frameInRoot());
}

void Tooltips::open(std::string text, const Rect& place)
{
    m_text = std::move(text);
    auto screens = m_platform.displays.screens();
    auto screen = std::ranges::find(screens, std::optional{m_display}, &Screen::number);
    if (screen == screens.end() || m_text.empty() || !m_bar.isVisible())
        return;
    auto bar = m_bar.frame();
    m_panel = std::make_unique<TooltipPanel>(m_platform, *screen, m_text,
        Rect{bar.x + place.x, bar.maxY() - place.maxY(), place.width, place.height}, bar);
}

void Tooltips::hide()
{
    m_showTimer = {};
    m_moves = {};
    if (m_panel)
        m_lastSeen = m_platform.dispatch.now();
    m_panel.reset();
}

}
