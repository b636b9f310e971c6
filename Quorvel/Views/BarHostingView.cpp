#include "Quorvel/Views/BarHostingView.h"

#include <algorithm>
#include <utility>

namespace quorvel {

BarHostingView::~BarHostingView()
{
    if (m_content)
        m_content->setHost(nullptr);
}

void BarHostingView::attach(PanelSurface& surface)
{
    m_surface = &surface;
    surfaceDidResize(surface.frame().size());
}

void BarHostingView::setContent(std::unique_ptr<View> content)
{
    cancelPress();
    m_hovered.clear();
    if (m_content)
        m_content->setHost(nullptr);
    m_content = std::move(content);
    if (!m_content)
        return;
    m_content->setHost(this);
    m_content->setFrame(Rect::from({}, m_size));
    viewNeedsPaint(m_content->bounds());
    updateHover();
}

void BarHostingView::surfaceDidResize(Size size)
{
    m_size = size;
    if (m_content)
        m_content->setFrame(Rect::from({}, size));
}

void BarHostingView::paint(Canvas& canvas, const Rect& damage)
{
    if (m_content)
        m_content->paintTree(canvas, damage);
}

void BarHostingView::viewNeedsPaint(const Rect& rect)
{
    if (m_surface)
        m_surface->invalidate(rect);
}

void BarHostingView::viewWillVanish(const View& view)
{
    std::erase_if(m_hovered, [&](auto* hovered) { return hovered->isWithin(view); });
    if (m_pressed && m_pressed->isWithin(view))
        m_pressed = nullptr;
}

void BarHostingView::viewsDidMove()
{
    updateHover();
}

void BarHostingView::pointerEvent(const PointerEvent& event)
{
    bool wasHovered = m_pointer.has_value();
    if (event.action == PointerAction::exited)
        m_pointer.reset();
    else if (event.action != PointerAction::cancelled)
        m_pointer = event.location;
    if (m_pointer.has_value() != wasHovered && onHoverChanged)
        onHoverChanged(!wasHovered);
    updateHover();

    if (event.action == PointerAction::pressed)
        press(event);
    else if (event.action == PointerAction::released)
        release(event);
    else if (event.action == PointerAction::cancelled) {
        cancelPress();
        updateHover();
    }
}

void BarHostingView::press(const PointerEvent& event)
{
    // A second button during a press neither starts one nor ends the first.
    if (m_pressedButton != PointerButton::none)
        return;
    m_pressed = m_content ? m_content->hitTest(event.location) : nullptr;
    m_pressedButton = event.button;
    if (m_pressed)
        m_pressed->pressed(event.button);
}

void BarHostingView::release(const PointerEvent& event)
{
    if (event.button != m_pressedButton)
        return;
    m_pressedButton = PointerButton::none;
    auto* view = std::exchange(m_pressed, nullptr);
    if (!view)
        return;
    view->released(event.button, view->frameInRoot().contains(event.location));
    updateHover();
}

void BarHostingView::cancelPress()
{
    m_pressedButton = PointerButton::none;
    if (auto* view = std::exchange(m_pressed, nullptr))
        view->pressCancelled();
}

std::vector<View*> BarHostingView::viewsUnderPointer() const
{
    std::vector<View*> views;
    if (!m_pointer || !m_content)
        return views;
    views = m_content->pathTo(*m_pointer);
    // While a button is down, only the pressed view and what holds it may look hovered.
    if (m_pressed)
        std::erase_if(views, [&](auto* view) { return !m_pressed->isWithin(*view); });
    return views;
}

void BarHostingView::updateHover()
{
    auto now = viewsUnderPointer();
    auto before = std::exchange(m_hovered, now);
    std::reverse(before.begin(), before.end());
    for (auto* view : before) {
        if (std::find(now.begin(), now.end(), view) == now.end())
            view->pointerExited();
    }
    for (auto* view : now) {
        if (std::find(before.begin(), before.end(), view) == before.end())
            view->pointerEntered();
    }
}

void BarHostingView::scrollEvent(const ScrollEvent& event)
{
    if (event.deltaY != 0 && onScroll)
        onScroll(event);
}

}
