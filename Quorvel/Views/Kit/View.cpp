#include "Quorvel/Views/Kit/View.h"

#include <algorithm>

namespace quorvel {

View::~View()
{
    if (auto* host_ = host())
        host_->viewWillVanish(*this);
}

ViewHost* View::host() const
{
    auto* view = this;
    while (view->m_parent)
        view = view->m_parent;
    return view->m_host;
}

void View::adopt(std::unique_ptr<View> child)
{
    child->m_parent = this;
    m_children.push_back(std::move(child));
    m_children.back()->invalidate();
}

std::unique_ptr<View> View::removeChild(View& child)
{
    auto found = std::find_if(m_children.begin(), m_children.end(),
        [&](auto& candidate) { return candidate.get() == &child; });
    if (found == m_children.end())
        return nullptr;
    child.invalidate();
    if (auto* host_ = host())
        host_->viewWillVanish(child);
    auto removed = std::move(*found);
    m_children.erase(found);
    removed->m_parent = nullptr;
    return removed;
}

void View::raiseChild(const View& child)
{
    auto found = std::find_if(m_children.begin(), m_children.end(),
        [&](auto& candidate) { return candidate.get() == &child; });
    if (found != m_children.end())
        std::rotate(found, found + 1, m_children.end());
}

std::vector<View*> View::orderedChildren(bool isRightToLeft) const
{
    std::vector<View*> ordered;
    for (auto& child : m_children) {
        if (!child->frame().isEmpty())
            ordered.push_back(child.get());
    }
    std::ranges::stable_sort(ordered, {}, [&](auto* child) {
        auto& frame = child->frame();
        return isColumn() ? frame.y : isRightToLeft ? -frame.maxX() : frame.x;
    });
    return ordered;
}

std::vector<View*> View::keyViews(bool isRightToLeft) const
{
    std::vector<View*> views;
    for (auto* child : orderedChildren(isRightToLeft)) {
        if (child->takesKeyboard()) {
            views.push_back(child);
            continue;
        }
        auto below = child->keyViews(isRightToLeft);
        views.insert(views.end(), below.begin(), below.end());
    }
    return views;
}

std::vector<View*> View::accessibleViews(bool isRightToLeft) const
{
    std::vector<View*> views;
    for (auto* child : orderedChildren(isRightToLeft)) {
        if (child->isAccessible()) {
            views.push_back(child);
            continue;
        }
        auto below = child->accessibleViews(isRightToLeft);
        views.insert(views.end(), below.begin(), below.end());
    }
    return views;
}

bool View::takeAccessibleFocus()
{
    auto* surface = host();
    return isAccessible() && surface && surface->viewWantsKeyboard(*this);
}

void View::scrollIntoView()
{
    for (auto* holder = m_parent; holder; holder = holder->m_parent)
        holder->reveal(*this);
}

std::vector<AccessibleElement*> View::accessibleChildren()
{
    auto views = accessibleViews();
    std::erase_if(views, [](auto* view) { return view->isSystemControl(); });
    return {views.begin(), views.end()};
}

void View::setFrame(const Rect& frame)
{
    if (frame == m_frame)
        return;
    invalidatePaint();
    bool isResized = frame.size() != m_frame.size();
    m_frame = frame;
    if (isResized)
        layout();
    else
        moved();
    invalidatePaint();
}

bool View::isWithin(const View& ancestor) const
{
    auto* view = this;
    while (view && view != &ancestor)
        view = view->m_parent;
    return view != nullptr;
}

Rect View::frameInRoot() const
{
    auto rect = bounds();
    for (auto* view = this; view->m_parent; view = view->m_parent)
        rect = rect.translated(view->m_frame.x, view->m_frame.y);
    return rect;
}

void View::invalidate(const Rect& rect)
{
    auto* host_ = host();
    if (!host_ || rect.isEmpty())
        return;
    auto damage = rect;
    auto* view = this;
    for (; view->m_parent; view = view->m_parent) {
        damage = damage.translated(view->m_frame.x, view->m_frame.y);
        if (view->m_parent->clipsChildren() && !view->isLifted())
            damage = damage.intersected(view->m_parent->bounds());
    }
    damage = damage.intersected(view->bounds());
    if (!damage.isEmpty())
        host_->viewNeedsPaint(damage);
}

void View::paintTree(Canvas& canvas, const Rect& damage) const
{
    double opacity = paintOpacity();
    if (opacity < 1)
        canvas.beginOpacity(opacity);
    paint(canvas);
    if (clipsChildren()) {
        canvas.save();
        canvas.clip(bounds());
    }
    paintChildren(canvas, damage, false);
    if (clipsChildren())
        canvas.restore();
    paintChildren(canvas, damage, true);
    if (opacity < 1)
        canvas.endOpacity();
}

void View::paintChildren(Canvas& canvas, const Rect& damage, bool areLifted) const
{
    for (auto& child : m_children) {
        auto& frame = child->m_frame;
        if (child->isLifted() != areLifted || !child->paintFrame().intersects(damage))
            continue;
        canvas.save();
        canvas.translate(frame.x, frame.y);
        child->paintTree(canvas, damage.translated(-frame.x, -frame.y));
        canvas.restore();
    }
}

std::vector<View*> View::pathTo(Point point)
{
    std::vector<View*> path;
    auto* view = bounds().contains(point) ? this : nullptr;
    while (view) {
        path.push_back(view);
        auto child = std::find_if(view->m_children.rbegin(), view->m_children.rend(),
            [&](auto& candidate) { return candidate->m_frame.contains(point); });
        view = child == view->m_children.rend() ? nullptr : child->get();
        if (view)
            point = point.translated(-view->m_frame.x, -view->m_frame.y);
    }
    return path;
}

View* View::hitTest(Point point)
{
    auto path = pathTo(point);
    auto hit
        = std::find_if(path.rbegin(), path.rend(), [](auto* view) { return view->takesPointer(); });
    return hit == path.rend() ? nullptr : *hit;
}

}
