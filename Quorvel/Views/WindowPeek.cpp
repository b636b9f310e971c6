#include "Quorvel/Views/WindowPeek.h"

#include <utility>

#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/PeekFading.h"

namespace quorvel {

WindowPeek::WindowPeek(Dispatch& dispatch, Surfaces& surfaces, PeekFading* peeking)
    : m_dispatch(dispatch)
    , m_surfaces(surfaces)
    , m_peeking(peeking)
{
}

WindowPeek::~WindowPeek()
{
    end();
}

void WindowPeek::pointAt(std::optional<WindowID> window)
{
    if (!m_peeking)
        return;
    m_target = window;
    m_timer = {};
    m_moves = {};
    if (m_isUnderWay && window)
        return show();
    if (m_isUnderWay)
        m_timer = m_dispatch.main().after(kBetweenCards, [this] { end(); });
    if (m_isUnderWay || !window)
        return;
    rest();
    // A pointer on its way somewhere else is not resting.
    m_moves = m_surfaces.monitorPointer(PointerScope::ownWindows, [this] {
        if (m_timer.isPending())
            rest();
    });
}

void WindowPeek::rest()
{
    m_timer = m_dispatch.main().after(kRest, [this] { show(); });
}

void WindowPeek::show()
{
    m_timer = {};
    m_moves = {};
    m_isUnderWay = true;
    m_peeking->showAlone(*m_target);
}

void WindowPeek::windowDidGo(WindowID window)
{
    if (m_target == window)
        pointAt(std::nullopt);
}

void WindowPeek::update()
{
    if (m_isUnderWay && m_target)
        m_peeking->showAlone(*m_target);
}

void WindowPeek::end()
{
    m_target.reset();
    m_timer = {};
    m_moves = {};
    if (std::exchange(m_isUnderWay, false))
        m_peeking->showAll();
}

}
