#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Quorvel/Platform/AccessibleTree.h"
#include "Quorvel/Platform/Canvas.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

class View;

/// The surface at the root of a view tree.
class ViewHost {
public:
    virtual ~ViewHost() = default;

    /// In the root view's coordinates.
    virtual void viewNeedsPaint(const Rect&) = 0;
    /// The view leaves the tree or is destroyed: nobody may refer to it any longer.
    virtual void viewWillVanish(const View&) = 0;
    /// Called by a view that has laid out its children again: the pointer may be on another one.
    virtual void viewsDidMove() = 0;
    /// Whether the view has the keyboard now.
    virtual bool viewWantsKeyboard(View&) = 0;
    /// The caret of the field that takes typed text moved.
    virtual void viewTextInputDidChange() { }
    /// Called by a view that opened a menu. Escaped: the user is where they were before.
    virtual void menuDidClose(MenuEnding) = 0;
};

/// A button going down.
struct PointerPress {
    PointerButton button = PointerButton::primary;
    Point pointer; ///< in the root view's coordinates
    std::uint64_t modifiers = 0; ///< of `KeyModifier`
};

/// The pointer with a button down.
struct DragMove {
    Point translation; ///< from where the button went down
    Point pointer; ///< in the root view's coordinates
};

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
/// The pointer goes to the deepest view under it that `takesPointer()`. A press is followed by any
/// number of `dragged` and then exactly one `released` or `pressCancelled` on the same view,
/// wherever the pointer is by then. Files from other programs go to the deepest view that takes
/// them.
///
/// A key goes to the view with the keyboard, then to each of its ancestors until one uses it, and
/// only then to the keyboard walk.
///
/// A view with a meaning of its own describes it in `accessibleState`; to a screen reader the
/// others are only containers, and the keyboard walk skips them. Actions go up through callbacks
/// that the owner sets; nothing goes sideways. Main thread only.
class View : public AccessibleElement {
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
    /// Whether the other view is this one or a descendant of it.
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

    virtual bool takesPointer() const { return false; }
    /// The pointer entered the view or a descendant of it.
    virtual void pointerEntered() { }
    virtual void pointerExited() { }
    /// Never the secondary button, which opens the context menu.
    virtual void pointerPressed(const PointerPress& press) { pressed(press.button); }
    virtual void pressed(PointerButton) { }
    virtual void dragged(const DragMove&) { }
    virtual void released(PointerButton, bool /*isInside*/) { }
    virtual void pressCancelled() { }
    /// Whether the press has become a drag, which Escape cancels.
    virtual bool isDragged() const { return false; }
    /// Of a view under the pointer, the deepest first. True: it is used.
    virtual bool scrolled(const ScrollEvent&) { return false; }

    virtual bool takesFiles() const { return false; }
    /// Whether files may be dropped here; else they may only rest here.
    virtual bool acceptsFiles() const { return takesFiles(); }
    virtual void filesEntered() { }
    virtual void filesExited() { }
    virtual void filesDropped(const std::vector<std::string>& /*paths*/) { }

    /// Whether it has a meaning of its own and is not only a container.
    virtual bool isAccessible() const { return false; }
    /// A control of the system lies over it, which assistive programs find by themselves.
    virtual bool isSystemControl() const { return false; }
    std::string accessibleID() const override { return {}; }
    AccessibleState accessibleState() const override { return {}; }
    Rect accessibleFrame() const override { return frameInRoot(); }
    std::vector<AccessibleElement*> accessibleChildren() override;
    bool performAccessibleAction(std::size_t) override { return false; }
    bool takeAccessibleFocus() override;
    /// The descendants with a meaning of their own, in the order in which they are read.
    std::vector<View*> accessibleViews(bool isRightToLeft = false) const;
    /// The descendants where the keyboard walk stops, in its order.
    std::vector<View*> keyViews(bool isRightToLeft = false) const;

    /// Whether the keyboard walk stops here.
    virtual bool takesKeyboard() const { return isAccessible(); }
    virtual void setKeyFocused(bool) { }
    /// The keyboard is here or below. True: the key is used, or the view has gone.
    virtual bool keyPressed(const KeyEvent&) { return false; }
    /// Where typed text goes while the keyboard is here or below; null: the parent decides.
    virtual TextInputClient* textInput() { return nullptr; }
    /// Where the keyboard walk begins; null: at the first view.
    virtual View* preferredKeyView() { return nullptr; }
    /// Asks all its ancestors to scroll it into view.
    void scrollIntoView();
    virtual void showContextMenu() { }
    /// By a press there, in the root view's coordinates.
    virtual void showContextMenuAt(Point) { showContextMenu(); }

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
