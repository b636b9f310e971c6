#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Quorvel/Platform/AccessibleTree.h"
#include "Quorvel/Platform/Canvas.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Views/Kit/FileTarget.h"
#include "Quorvel/Views/Kit/KeyTarget.h"
#include "Quorvel/Views/Kit/PointerTarget.h"
#include "Quorvel/Views/Kit/ViewHost.h"

namespace quorvel {

/// A rectangle that draws itself and takes the pointer: the small retained-mode kit under every
/// view.
///
/// A view is owned by its parent and lives from `addChild` to `removeChild` (or its parent's end).
/// It is given what it shows as a value; a setter compares it with the old one and calls
/// `invalidate()` only on a difference. The parent sets the frame, in the parent's coordinates
/// (points, origin top left, y downwards); a change of size calls `layout()`, where the view places
/// its children. Painting goes from the root to the leaves, clipped to what was invalidated:
/// `paint` draws in the view's own coordinates, computes its rectangles by the same pure function
/// as hit-testing, and makes no system call and reads no settings or time.
///
/// A view with a meaning of its own describes it in `accessibleState`; to a screen reader the
/// others are only containers, and the keyboard walk skips them. Pointer, files and keys come in by
/// `PointerTarget`, `FileTarget` and `KeyTarget`. Actions go up through callbacks that the owner
/// sets; nothing goes sideways. Main thread only.
class View : public AccessibleElement, public PointerTarget, public FileTarget, public KeyTarget {
public:
    View() = default;
    ~View() override;
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    const Rect& frame() const { return m_frame; }
    Rect bounds() const { return {0, 0, m_frame.width, m_frame.height}; }
    void setFrame(const Rect&);
    /// In the root view's coordinates.
    Rect frameInRoot() const;
    /// Null for the root.
    View* parent() const { return m_parent; }
    /// Whether it is the other view or a descendant of it.
    bool isWithin(const View& ancestor) const;

    template <typename ViewType> ViewType& addChild(std::unique_ptr<ViewType> child)
    {
        auto& added = *child;
        adopt(std::move(child));
        return added;
    }
    std::unique_ptr<View> removeChild(View&);
    /// Moves it above its siblings, for painting and for the pointer.
    void raiseChild(const View&);

    void invalidate() { invalidate(bounds()); }
    void invalidate(const Rect&);

    void paintTree(Canvas&, const Rect& damage) const;
    /// The deepest view at the point that takes the pointer.
    View* hitTest(Point);
    /// The views at the point, from this one to the deepest.
    std::vector<View*> pathTo(Point);

    /// For the root only.
    void setHost(ViewHost* host) { m_host = host; }

    /// Whether it has a meaning of its own and is not only a container.
    virtual bool isAccessible() const { return false; }
    /// A control of the system lies over it, which assistive programs find by themselves.
    virtual bool isSystemControl() const { return false; }
    std::string accessibleID() const override { return {}; }
    AccessibleState accessibleState() const override { return {}; }
    Rect accessibleFrame() const override { return frameInRoot(); }
    std::vector<AccessibleElement*> accessibleChildren() override;
    bool takeAccessibleFocus() override;
    /// The descendants where the keyboard walk stops, in its order.
    std::vector<View*> keyViews(bool isRightToLeft = false) const;

    bool takesKeyboard() const override { return isAccessible(); }
    /// Asks all its ancestors to scroll it into view.
    void scrollIntoView();

protected:
    /// Scrolls a descendant into view.
    virtual void reveal(const View&) { }
    virtual void paint(Canvas&) const { }
    virtual void layout() { }
    /// It was placed elsewhere; only what lies over it outside the tree has to follow.
    virtual void moved() { }
    /// Its children stand below each other, not beside each other: they are read downwards.
    virtual bool isColumn() const { return false; }
    /// The view and its descendants are composed as one at this opacity.
    virtual double paintOpacity() const { return 1; }
    /// Whether children are clipped to this view's bounds.
    virtual bool clipsChildren() const { return false; }
    /// Painted outside the clip of its parent, and above the parent's other children.
    virtual bool isLifted() const { return false; }
    /// The area it paints, its children included, in the parent's coordinates.
    virtual Rect paintFrame() const { return m_frame; }
    /// The whole of that area.
    void invalidatePaint() { invalidate(paintFrame().translated(-m_frame.x, -m_frame.y)); }

    /// The descendants with a meaning of their own, in the order in which they are read.
    std::vector<View*> accessibleViews(bool isRightToLeft = false) const;
    const std::vector<std::unique_ptr<View>>& children() const { return m_children; }
    ViewHost* host() const;

private:
    void adopt(std::unique_ptr<View>);
    void paintChildren(Canvas&, const Rect& damage, bool areLifted) const;
    /// Those with a place, in the order in which they are read.
    std::vector<View*> orderedChildren(bool isRightToLeft) const;

    View* m_parent = nullptr;
    ViewHost* m_host = nullptr;
    Rect m_frame;
    std::vector<std::unique_ptr<View>> m_children;
};

}
