#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/Kit/PressedButton.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// Joins a surface and a tree of views: paints what was invalidated, and determines which view the
/// pointer is on, has entered, left, pressed or released. Main thread.
///
/// The first button that goes down makes a press, and only its release ends it; other buttons do
/// nothing meanwhile. A press is cancelled when its release is lost or its surface goes away under
/// the pointer. Escape cancels a drag, for which the surface takes the keyboard.
///
/// A bar borrows the keyboard: arrows and Tab walk its views, and an action or Escape gives it
/// back. A window has it as its own: Tab walks, and everything else is up to the views.
class BarHostingView final : public SurfaceClient, private ViewHost {
public:
    enum class Keyboard { borrowed, own };

    explicit BarHostingView(Keyboard keyboard = Keyboard::borrowed) : m_keyboard(keyboard) { }
    ~BarHostingView() override;

    /// The surface must outlive the content.
    void attach(PanelSurface&);
    void setContent(std::unique_ptr<View>);
    View* content() const { return m_content.get(); }

    /// A scroll that no view under the pointer has taken.
    std::function<void(const ScrollEvent&)> onScroll;
    /// The pointer entered the surface or left it.
    std::function<void(bool)> onHoverChanged;
    /// The deepest view under the pointer that takes it is another one now, or there is none: null.
    /// A view that vanishes is told of before that.
    std::function<void(const View*)> onPointedAt;
    /// The answer of `isInUse` may have changed.
    std::function<void()> onUseChanged;
    /// A button or a key has gone down, or a wheel was turned.
    std::function<void()> onUsed;
    /// Whether the views run from right to left; if unset, they do not.
    std::function<bool()> isRightToLeft;
    /// Gives the surface the keyboard; returns whether it now has it; if unset, it never does.
    std::function<bool()> onKeyboardWanted;
    /// The surface got the keyboard or lost it.
    std::function<void(bool)> onKeyboardChanged;
    /// The user wants the window closed.
    std::function<void()> onCloseRequested;
    /// Where the pointer is, in points of the surface; absent while it is elsewhere.
    const std::optional<Point>& pointer() const { return m_pointer; }
    /// The pointer is over the surface, or holds something of it or files above it; or the surface
    /// has the keyboard.
    bool isInUse() const
    {
        return m_pointer || m_press.isUnderWay() || m_areFilesHere || m_hasKeyboard;
    }
    /// Null while the keyboard is elsewhere.
    const View* keyFocusedView() const { return m_keyFocused; }
    /// Moves the keyboard within the surface.
    void setKeyFocused(View*);
    std::uint64_t menuModifiers() const override { return m_menuModifiers; }

private:
    void paint(Canvas&, const Rect& damage) override;
    void pointerEvent(const PointerEvent&) override;
    void pointerLost() override;
    void scrollEvent(const ScrollEvent&) override;
    void surfaceDidResize(Size) override;
    bool dropEvent(const DropEvent&) override;
    bool keyPressed(const KeyEvent&) override;
    void keyboardDidChange(bool hasKeyboard) override;
    void closeRequested() override;
    TextInputClient* textInputClient() override;
    AccessibleElement* accessibleRoot() override { return m_content.get(); }

    void viewNeedsPaint(const Rect&) override;
    void viewWillVanish(const View&) override;
    void viewsDidMove() override;
    bool viewWantsKeyboard(View&) override;
    void viewTextInputDidChange() override;
    void menuDidClose(MenuEnding) override;

    void setPointer(std::optional<Point>);
    void press(const PointerEvent&);
    void drag(Point);
    void release(const PointerEvent&);
    void cancelPress();
    void abandonPress();
    void pressDidEnd();
    void updateHover();
    void setPointedAt(const View*);
    std::vector<View*> viewsUnderPointer() const;
    void setFilesOver(View*);
    void tellUse() const;
    void followKeyboard(bool hasKeyboard);
    bool offerKey(const KeyEvent&);
    bool openMenuByKey(const KeyEvent&);
    bool useWindowKey(const KeyEvent&);
    bool useBarKey(const KeyEvent&);
    void walk(int step);
    void walkFromTheEdge(int step);
    /// The view that the keyboard walk had reached, and ends the walk; null if there was none.
    View* letGoOfKeyboard();

    const Keyboard m_keyboard;
    PanelSurface* m_surface = nullptr;
    Size m_size;
    std::optional<Point> m_pointer; ///< absent while it is elsewhere
    std::vector<View*> m_hovered; ///< the views under the pointer, from the root to the leaf
    const View* m_pointedAt = nullptr;
    View* m_pressed = nullptr;
    Point m_pressPlace;
    bool m_hasKeyboardForDrag = false;
    View* m_filesOver = nullptr;
    bool m_areFilesHere = false; ///< over a view that takes them or not
    bool m_hasKeyboard = false;
    View* m_keyFocused = nullptr;
    View* m_keyFocusBefore = nullptr; ///< while a menu or another window has the keyboard
    PressedButton m_press;
    std::uint64_t m_menuModifiers = 0; ///< while a view opens its menu
    bool m_isAbandoned = false; ///< the drag that this press began
    std::unique_ptr<View> m_content;
};

}
