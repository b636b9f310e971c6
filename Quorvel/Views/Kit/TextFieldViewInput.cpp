// What a text field does with the pointer, keys, the clipboard, input methods and the system's own
// field.
#include <utility>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/TextFieldView.h"
#include "Quorvel/Views/Kit/TextKeys.h"

namespace quorvel {

void TextFieldView::editByInputMethod(const std::function<void()>& change)
{
    auto before = m_editing.text();
    change();
    shownDidChange();
    if (m_editing.text() != before && onTextChanged)
        onTextChanged(std::string{m_editing.text()});
}

void TextFieldView::edit(const std::function<void()>& change)
{
    if (m_editing.isComposing())
        m_inputs.surface.forgetComposition();
    editByInputMethod([&] {
        m_editing.settle();
        change();
    });
}

// MARK: The pointer

void TextFieldView::takeFocus()
{
    if (auto* surface = host(); surface && !m_hasFocus)
        surface->viewWantsKeyboard(*this);
}

void TextFieldView::pointerPressed(const PointerPress& press)
{
    takeFocus();
    if (m_native)
        return;
    if (press.button == PointerButton::primary)
        return pressPrimary(press);
    edit([&] { m_editing.moveTo(offsetAt(press.pointer), CaretMove::alone); });
    paste(ClipboardKind::primary);
}

void TextFieldView::pressPrimary(const PointerPress& press)
{
    m_isSelecting = true;
    int count = m_clicks.press(press.pointer);
    bool isShift = (press.modifiers & KeyModifier::shift) != 0;
    edit([&] {
        auto offset = offsetAt(press.pointer);
        if (isShift)
            m_editing.moveTo(offset, CaretMove::selecting);
        else if (count == 1)
            m_editing.moveTo(offset, CaretMove::alone);
        else
            m_editing.selectAt(offset, count == 2 ? TextUnit::word : TextUnit::all);
    });
}

void TextFieldView::dragged(const DragMove& move)
{
    if (m_isSelecting)
        edit([&] { m_editing.extendTo(offsetAt(move.pointer)); });
}

void TextFieldView::released(PointerButton, bool)
{
    if (std::exchange(m_isSelecting, false))
        offerSelection();
}

void TextFieldView::pressCancelled()
{
    m_isSelecting = false;
}

// MARK: Keys

void TextFieldView::setKeyFocused(bool isFocused)
{
    if (std::exchange(m_hasFocus, isFocused) == isFocused)
        return;
    if (m_native)
        m_native->setFocused(isFocused);
    if (!isFocused) {
        m_isSelecting = false;
        m_blink.stop();
    }
    edit([] { });
    if (onFocusChanged)
        onFocusChanged(isFocused);
}

bool TextFieldView::keyPressed(const KeyEvent& event)
{
    if (onKey && onKey(event))
        return true;
    auto command = m_native ? std::nullopt : textCommandOf(event);
    if (command)
        perform(*command, event);
    return command.has_value();
}

bool TextFieldView::takeTyping(const KeyEvent& event)
{
    if (!event.typesText() && event.keyCode != KeyCode::backspace)
        return false;
    takeFocus();
    return keyPressed(event);
}

void TextFieldView::perform(const TextCommand& command, const KeyEvent& event)
{
    using Kind = TextCommand::Kind;
    switch (command.kind) {
    case Kind::moveLeft:
        moveSideways(LineGeometry::Side::left, command.unit, command.move);
        break;
    case Kind::moveRight:
        moveSideways(LineGeometry::Side::right, command.unit, command.move);
        break;
    case Kind::moveToStart:
        edit([&] { m_editing.move(TextDirection::backward, command.unit, command.move); });
        break;
    case Kind::moveToEnd:
        edit([&] { m_editing.move(TextDirection::forward, command.unit, command.move); });
        break;
    case Kind::eraseBackward:
        return edit([&] { m_editing.erase(TextDirection::backward, command.unit); });
    case Kind::eraseForward:
        return edit([&] { m_editing.erase(TextDirection::forward, command.unit); });
    case Kind::selectAll:
        return selectAll();
    case Kind::cut:
        return cut();
    case Kind::copy:
        return copy();
    case Kind::paste:
        return paste(ClipboardKind::clipboard);
    case Kind::undo:
        return edit([&] { m_editing.undo(); });
    case Kind::redo:
        return edit([&] { m_editing.redo(); });
    case Kind::type:
        return edit([&] { m_editing.type(event.characters); });
    }
    if (command.move == CaretMove::selecting)
        offerSelection();
}

/// By a character to what stands beside it on the screen, by a word in the order of the line.
void TextFieldView::moveSideways(LineGeometry::Side side, TextUnit unit, CaretMove move)
{
    bool isLeft = side == LineGeometry::Side::left;
    edit([&] {
        auto range = m_editing.selection();
        if (unit == TextUnit::word) {
            bool isBackward = isLeft != m_geometry.isRightToLeft();
            auto direction = isBackward ? TextDirection::backward : TextDirection::forward;
            m_editing.move(direction, unit, move);
        } else if (!range.isEmpty() && move == CaretMove::alone) {
            bool isStartAtLeft = m_geometry.caretX(range.start) < m_geometry.caretX(range.end);
            m_editing.moveTo(isStartAtLeft == isLeft ? range.start : range.end, move);
        } else {
            m_editing.moveTo(m_geometry.neighbour(m_editing.caret(), side), move);
        }
    });
}

void TextFieldView::selectAll()
{
    edit([&] { m_editing.selectAll(); });
    offerSelection();
}

// MARK: The clipboard

void TextFieldView::offerSelection()
{
    auto* clipboard = m_inputs.platform.surfaces.clipboard();
    if (clipboard && !m_editing.selection().isEmpty())
        clipboard->setText(ClipboardKind::primary, m_editing.selectedText());
}

void TextFieldView::copy()
{
    auto* clipboard = m_inputs.platform.surfaces.clipboard();
    if (clipboard && !m_editing.selection().isEmpty())
        clipboard->setText(ClipboardKind::clipboard, m_editing.selectedText());
}

void TextFieldView::cut()
{
    copy();
    edit([&] { m_editing.eraseSelection(); });
}

void TextFieldView::paste(ClipboardKind kind)
{
    auto* clipboard = m_inputs.platform.surfaces.clipboard();
    if (!clipboard)
        return;
    clipboard->requestText(kind, [weak = m_weak.reference()](const auto& utf8) {
        if (auto* view = weak.get(); view && utf8)
            view->paste(*utf8);
    });
}

void TextFieldView::paste(const std::string& utf8)
{
    edit([&] { m_editing.paste(utf8); });
}

// MARK: The context menu

void TextFieldView::showContextMenu()
{
    if (onMenuRequested && !m_native)
        onMenuRequested(contextMenu(), caretFrame());
}

void TextFieldView::showContextMenuAt(Point inRoot)
{
    takeFocus();
    if (onMenuRequested && !m_native)
        onMenuRequested(contextMenu(), Rect::from(inRoot, {1, 1}));
}

Menu TextFieldView::contextMenu()
{
    bool hasSelection = !m_editing.selection().isEmpty();
    return {menuItem(tr("Cut"), hasSelection, &TextFieldView::cut),
        menuItem(tr("Copy"), hasSelection, &TextFieldView::copy),
        menuItem(tr("Paste"), true, &TextFieldView::pasteFromMenu), {},
        menuItem(tr("Select All"), !m_editing.text().empty(), &TextFieldView::selectAll)};
}

MenuItem TextFieldView::menuItem(std::string title, bool isEnabled, void (TextFieldView::*action)())
{
    auto perform = [weak = m_weak.reference(), action] {
        if (auto* view = weak.get())
            (view->*action)();
    };
    return {.title = std::move(title), .isEnabled = isEnabled, .action = std::move(perform)};
}

// MARK: Input methods

void TextFieldView::insertText(std::string_view utf8)
{
    takeFocus();
    editByInputMethod([&] { m_editing.type(utf8); });
}

void TextFieldView::setComposition(std::string_view utf8, std::size_t caret)
{
    if (utf8.empty() && !m_editing.isComposing())
        return; // some say so whenever they are reset
    takeFocus();
    editByInputMethod([&] { m_editing.compose(utf8, caret); });
}

// MARK: The system's field

void TextFieldView::fieldTextDidChange(const std::string& utf8)
{
    editByInputMethod([&] { m_editing.setText(utf8); });
}

void TextFieldView::fieldFocusDidChange(bool hasFocus)
{
    if (hasFocus)
        takeFocus();
}

}
