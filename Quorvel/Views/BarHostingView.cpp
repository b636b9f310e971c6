#include "Quorvel/Views/BarHostingView.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Views/Kit/DragSource.h"
#include "Quorvel/Views/Kit/StandardKeys.h"

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
    setPointedAt(nullptr);
    m_filesOver = nullptr;
    bool hadKeyboard = std::exchange(m_keyFocused, nullptr);
    m_keyFocusBefore = nullptr;
    if (m_content)
        m_content->setHost(nullptr);
    m_content = std::move(content);
    if (!m_content)
        return;
    m_content->setHost(this);
    m_content->setFrame(Rect::from({}, m_size));
    viewNeedsPaint(m_content->bounds());
    updateHover();
    if (hadKeyboard)
        followKeyboard(true);
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
    if (m_pointedAt && m_pointedAt->isWithin(view))
        setPointedAt(nullptr);
    for (auto* pointer : {&m_pressed, &m_filesOver, &m_keyFocused, &m_keyFocusBefore}) {
        if (*pointer && (*pointer)->isWithin(view))
            *pointer = nullptr;
    }
    if (m_surface)
        m_surface->accessibleTreeDidChange();
}

void BarHostingView::viewsDidMove()
{
    updateHover();
}

// MARK: The pointer

void BarHostingView::pointerEvent(const PointerEvent& event)
{
    if (m_press.hasMissedRelease(event))
        cancelPress();
    // During a press it is heard of wherever it is.
    bool isHere
        = event.action != PointerAction::exited && Rect::from({}, m_size).contains(event.location);
    setPointer(isHere ? std::optional{event.location} : std::nullopt);
    if (event.action == PointerAction::moved)
        drag(event.location);
    else if (event.action == PointerAction::pressed)
        press(event);
    else if (event.action == PointerAction::released)
        release(event);
}

void BarHostingView::pointerLost()
{
    cancelPress();
    setPointer({});
}

void BarHostingView::setPointer(std::optional<Point> pointer)
{
    bool wasHovered = std::exchange(m_pointer, pointer).has_value();
    if (m_pointer.has_value() != wasHovered && onHoverChanged)
        onHoverChanged(!wasHovered);
    if (m_pointer.has_value() != wasHovered)
        tellUse();
    updateHover();
}

void BarHostingView::tellUse() const
{
    if (onUseChanged)
        onUseChanged();
}

void BarHostingView::press(const PointerEvent& event)
{
    if (!m_press.begin(event.button))
        return;
    if (onUsed)
        onUsed();
    auto* view = m_content ? m_content->hitTest(event.location) : nullptr;
    m_pressPlace = event.location;
    if (!view)
        return;
    // A menu opens on the press, so that one can drag to an entry and let go.
    if (event.button == PointerButton::secondary) {
        m_menuModifiers = event.modifiers;
        view->showContextMenuAt(event.location);
        m_menuModifiers = 0;
        return;
    }
    m_pressed = view;
    if (auto* source = view->dragSource())
        source->pressed(event.button);
    view->pointerPressed({event.button, event.location, event.modifiers});
}

void BarHostingView::drag(Point to)
{
    if (!m_pressed)
        return;
    const DragMove move{to.translated(-m_pressPlace.x, -m_pressPlace.y), to};
    auto* source = m_pressed->dragSource();
    if (!source)
        return m_pressed->dragged(move);
    bool wasPress = !source->isDragging();
    // Who hears of the drag may remove the view.
    if (!source->dragged(move) || !m_pressed)
        return;
    if (wasPress)
        m_pressed->pressCancelled();
    if (std::exchange(m_hasKeyboardForDrag, true)) // before the surface tells that it has it
        return;
    if (m_keyboard == Keyboard::borrowed)
        m_surface->takeKeyboard();
}

void BarHostingView::release(const PointerEvent& event)
{
    if (!m_press.end(event.button))
        return;
    m_isAbandoned = false;
    if (auto* view = std::exchange(m_pressed, nullptr)) {
        auto* source = view->dragSource();
        if (!source || !source->released())
            view->released(event.button, view->frameInRoot().contains(event.location));
    }
    pressDidEnd();
}

void BarHostingView::cancelPress()
{
    m_press.cancel();
    m_isAbandoned = false;
    abandonPress();
}

/// The button may still be down.
void BarHostingView::abandonPress()
{
    if (auto* view = std::exchange(m_pressed, nullptr)) {
        auto* source = view->dragSource();
        if (!source || !source->cancelled())
            view->pressCancelled();
    }
    pressDidEnd();
}

void BarHostingView::pressDidEnd()
{
    if (std::exchange(m_hasKeyboardForDrag, false) && m_keyboard == Keyboard::borrowed)
        m_surface->releaseKeyboard();
    updateHover();
    tellUse();
}

std::vector<View*> BarHostingView::viewsUnderPointer() const
{
    std::vector<View*> views;
    if (!m_pointer || !m_content)
        return views;
    views = m_content->pathTo(*m_pointer);
    // While a button is down, nothing else that could be pressed may look hovered. What only holds
    // other views is under the pointer all the same: a row is still, pressed in a gap or not.
    if (m_pressed || m_isAbandoned)
        std::erase_if(views, [&](auto* view) {
            return view->takesPointer() && !(m_pressed && m_pressed->isWithin(*view));
        });
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
    if (m_press.isUnderWay())
        return; // until it is released
    auto deepest = std::find_if(
        m_hovered.rbegin(), m_hovered.rend(), [](auto* view) { return view->takesPointer(); });
    setPointedAt(deepest == m_hovered.rend() ? nullptr : *deepest);
}

void BarHostingView::setPointedAt(const View* view)
{
    if (std::exchange(m_pointedAt, view) != view && onPointedAt)
        onPointedAt(view);
}

void BarHostingView::scrollEvent(const ScrollEvent& event)
{
    if (onUsed)
        onUsed();
    auto path = m_content ? m_content->pathTo(event.location) : std::vector<View*>{};
    if (std::any_of(path.rbegin(), path.rend(), [&](auto* view) { return view->scrolled(event); }))
        return;
    if (onScroll)
        onScroll(event);
}

bool BarHostingView::dropEvent(const DropEvent& event)
{
    View* target = nullptr;
    bool areHere = event.action != DropAction::exited && event.action != DropAction::dropped;
    if (std::exchange(m_areFilesHere, areHere) != areHere)
        tellUse();
    if (m_content && event.action != DropAction::exited) {
        auto path = m_content->pathTo(event.location);
        auto found = std::find_if(
            path.rbegin(), path.rend(), [](auto* view) { return view->takesFiles(); });
        target = found == path.rend() ? nullptr : *found;
    }
    if (event.action != DropAction::dropped) {
        setFilesOver(target);
        return target && target->acceptsFiles();
    }
    setFilesOver(nullptr);
    if (!target || !target->acceptsFiles())
        return false;
    target->filesDropped(event.paths);
    return true;
}

void BarHostingView::setFilesOver(View* view)
{
    auto* before = std::exchange(m_filesOver, view);
    if (before == view)
        return;
    if (before)
        before->filesExited();
    if (view)
        view->filesEntered();
}

// MARK: The keyboard

void BarHostingView::keyboardDidChange(bool hasKeyboard)
{
    followKeyboard(hasKeyboard);
    if (std::exchange(m_hasKeyboard, hasKeyboard) != hasKeyboard)
        tellUse();
    if (auto tell = onKeyboardChanged) // which may do away with the surface
        tell(hasKeyboard);
}

void BarHostingView::closeRequested()
{
    if (auto tell = onCloseRequested)
        tell();
}

void BarHostingView::followKeyboard(bool hasKeyboard)
{
    if (!hasKeyboard) {
        m_hasKeyboardForDrag = false;
        if (m_keyboard == Keyboard::own)
            m_keyFocusBefore = m_keyFocused; // a window goes on where it was
        return setKeyFocused(nullptr);
    }
    if (m_keyFocused || m_hasKeyboardForDrag)
        return;
    auto* before = std::exchange(m_keyFocusBefore, nullptr);
    setKeyFocused(before && before->takesKeyboard() ? before
            : m_content                             ? m_content->preferredKeyView()
                                                    : nullptr);
    if (!m_keyFocused)
        walk(1);
}

bool BarHostingView::viewWantsKeyboard(View& view)
{
    bool isHere = m_keyboard == Keyboard::own || (onKeyboardWanted && onKeyboardWanted());
    if (!isHere)
        return false;
    setKeyFocused(&view);
    return true;
}

void BarHostingView::setKeyFocused(View* view)
{
    auto* before = std::exchange(m_keyFocused, view);
    if (before && before != view)
        before->setKeyFocused(false);
    if (m_surface)
        m_surface->accessibleTreeDidChange();
    if (view) {
        view->setKeyFocused(true);
        view->scrollIntoView();
    }
    viewTextInputDidChange();
}

TextInputClient* BarHostingView::textInputClient()
{
    for (auto* view = m_keyFocused ? m_keyFocused : m_content.get(); view; view = view->parent()) {
        if (auto* input = view->textInput())
            return input;
    }
    return nullptr;
}

void BarHostingView::viewTextInputDidChange()
{
    if (m_surface)
        m_surface->textInputDidChange();
}

void BarHostingView::walk(int step)
{
    auto views
        = m_content ? m_content->keyViews(isRightToLeft && isRightToLeft()) : std::vector<View*>{};
    if (views.empty())
        return;
    auto found = std::find(views.begin(), views.end(), m_keyFocused);
    auto count = static_cast<int>(views.size());
    int now
        = found == views.end() ? (step > 0 ? -1 : count) : static_cast<int>(found - views.begin());
    setKeyFocused(views[static_cast<std::size_t>(((now + step) % count + count) % count)]);
}

void BarHostingView::walkFromTheEdge(int step)
{
    setKeyFocused(nullptr);
    walk(step);
}

bool BarHostingView::keyPressed(const KeyEvent& event)
{
    if (onUsed)
        onUsed();
    if (m_hasKeyboardForDrag) {
        if (event.keyCode == KeyCode::escape) {
            m_isAbandoned = true; // until the button is released, nothing under it looks hovered
            abandonPress();
        }
        return true;
    }
    if (offerKey(event))
        return true;
    if (event.asksForMenu())
        return openMenuByKey(event);
    return m_keyboard == Keyboard::own ? useWindowKey(event) : useBarKey(event);
}

bool BarHostingView::offerKey(const KeyEvent& event)
{
    auto* view = m_keyFocused ? m_keyFocused : m_content.get();
    while (view && !view->keyPressed(event))
        view = view->parent();
    return view != nullptr;
}

bool BarHostingView::openMenuByKey(const KeyEvent& event)
{
    auto* view = m_keyboard == Keyboard::own ? m_keyFocused : letGoOfKeyboard();
    if (!view)
        return true;
    if (m_keyboard == Keyboard::borrowed)
        m_keyFocusBefore = view;
    m_menuModifiers = event.modifiers;
    view->showContextMenu();
    m_menuModifiers = 0;
    return true;
}

bool BarHostingView::useWindowKey(const KeyEvent& event)
{
    if (closesWindow(event)) {
        closeRequested();
        return true;
    }
    switch (event.keyCode) {
    case KeyCode::tab:
        walk(event.has(KeyModifier::shift) ? -1 : 1);
        return true;
    case KeyCode::enter:
    case KeyCode::keypadEnter:
    case KeyCode::space:
        return m_keyFocused && m_keyFocused->performAccessibleAction(0);
    default:
        return false;
    }
}

bool BarHostingView::useBarKey(const KeyEvent& event)
{
    int rightwards = isRightToLeft && isRightToLeft() ? -1 : 1;
    switch (event.keyCode) {
    case KeyCode::left:
        walk(-rightwards);
        return true;
    case KeyCode::right:
        walk(rightwards);
        return true;
    case KeyCode::up:
        walk(-1);
        return true;
    case KeyCode::down:
        walk(1);
        return true;
    case KeyCode::tab:
        walk(event.has(KeyModifier::shift) ? -1 : 1);
        return true;
    case KeyCode::home:
        walkFromTheEdge(1);
        return true;
    case KeyCode::end:
        walkFromTheEdge(-1);
        return true;
    case KeyCode::escape:
        m_surface->releaseKeyboard();
        return true;
    case KeyCode::enter:
    case KeyCode::keypadEnter:
    case KeyCode::space:
        if (auto* view = letGoOfKeyboard())
            view->performAccessibleAction(0);
        return true;
    default:
        return false;
    }
}

View* BarHostingView::letGoOfKeyboard()
{
    auto* view = m_keyFocused;
    if (view)
        m_surface->releaseKeyboard();
    return view;
}

/// Whoever clicked elsewhere, or chose something, is there now.
void BarHostingView::menuDidClose(MenuEnding ending)
{
    if (ending != MenuEnding::escaped)
        m_keyFocusBefore = nullptr;
    if (m_keyFocusBefore && m_surface)
        m_surface->takeKeyboard();
}

}
