#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/WeakOwner.h"
#include "Quorvel/Views/Kit/CaretBlink.h"
#include "Quorvel/Views/Kit/ClickCount.h"
#include "Quorvel/Views/Kit/LineGeometry.h"
#include "Quorvel/Views/Kit/TextEditing.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

struct Palette;
struct TextCommand;

/// A line of text to type in, without border or background. Where the system has fields of its own,
/// one of them lies over the view, which then only holds its place and mirrors its text.
///
/// A text that is longer than the view scrolls so that the caret is seen. The line begins at the
/// side where its own script begins.
class TextFieldView final : public View, private TextInputClient, private NativeTextFieldClient {
public:
    /// All of it outlives the view.
    struct Inputs {
        Platform platform;
        PanelSurface& surface;
        const Palette& palette;
    };
    /// What it is for, as a screen reader says it.
    TextFieldView(const Inputs&, std::string name);
    ~TextFieldView() override;

    /// By the user; not called for `setText`.
    std::function<void(const std::string&)> onTextChanged;
    std::function<void(bool hasFocus)> onFocusChanged;
    /// Keys that mean something else to the owner than to a field. True: this one is used.
    std::function<bool(const KeyEvent&)> onKey;
    /// Opens a menu beside the anchor, in the root view's coordinates; if unset, there is none.
    std::function<void(Menu, const Rect& anchor)> onMenuRequested;

    const std::string& text() const { return m_editing.text(); }
    void setText(std::string_view utf8);
    void setPlaceholder(std::string utf8);
    void setFontSize(double points);
    /// The palette or the direction of the interface changed.
    void appearanceDidChange();
    bool hasFocus() const { return m_hasFocus; }
    const TextEditing& editing() const { return m_editing; }

    /// Takes a key that was pressed while the keyboard was elsewhere in the window, if it types
    /// text, and the keyboard with it.
    bool takeTyping(const KeyEvent&);
    TextInputClient* textInput() override { return m_native ? nullptr : this; }

    bool isAccessible() const override { return true; }
    bool isSystemControl() const override { return m_native != nullptr; }
    std::string accessibleID() const override { return m_name; }
    AccessibleState accessibleState() const override;
    bool setAccessibleText(std::string_view utf8) override;
    bool setAccessibleSelection(std::size_t start, std::size_t end) override;
    Rect accessibleTextFrame(std::size_t start, std::size_t end) const override;
    std::size_t accessibleOffsetAt(Point) const override;

private:
    bool takesPointer() const override { return true; }
    void pointerPressed(const PointerPress&) override;
    void dragged(const DragMove&) override;
    void released(PointerButton, bool isInside) override;
    void pressCancelled() override;
    void setKeyFocused(bool) override;
    bool keyPressed(const KeyEvent&) override;
    void showContextMenu() override;
    void showContextMenuAt(Point) override;
    void paint(Canvas&) const override;
    void layout() override;
    void moved() override;

    void insertText(std::string_view utf8) override;
    void setComposition(std::string_view utf8, std::size_t caret) override;
    Rect caretFrame() const override;

    void fieldTextDidChange(const std::string& utf8) override;
    void fieldFocusDidChange(bool hasFocus) override;

    /// By the user, who thereby settles what is being composed.
    void edit(const std::function<void()>& change);
    void editByInputMethod(const std::function<void()>& change);
    void perform(const TextCommand&, const KeyEvent&);
    void pressPrimary(const PointerPress&);
    void moveSideways(LineGeometry::Side, TextUnit, CaretMove);
    void cut();
    void copy();
    void paste(ClipboardKind);
    void paste(const std::string& utf8);
    void offerSelection();
    Menu contextMenu();
    MenuItem menuItem(std::string title, bool isEnabled, void (TextFieldView::*action)());
    void pasteFromMenu() { paste(ClipboardKind::clipboard); }
    void selectAll();
    void takeFocus();
    void shownDidChange();
    void revealCaret();

    TextStyle style(const Color&, TextAlignment) const;
    Rect lineFrame() const;
    Rect caretRect(std::size_t offset) const;
    Rect rectOf(const LineGeometry::Span&) const;
    std::size_t offsetAt(Point inRoot) const;
    void paintLine(Canvas&, const Color&) const;
    void paintSelection(Canvas&) const;

    const Inputs m_inputs;
    const std::string m_name;
    std::string m_placeholder;
    double m_fontSize = 13;
    TextEditing m_editing;
    ShownText m_shown;
    LineGeometry m_geometry;
    double m_lineHeight = 0;
    double m_scroll = 0; ///< of a line that is longer than the view, from its left end
    bool m_isRightToLeft = false; ///< the interface
    bool m_hasFocus = false;
    bool m_isSelecting = false; ///< a button is down for it
    ClickCount m_clicks;
    CaretBlink m_blink;
    std::unique_ptr<NativeTextField> m_native; ///< null where the view draws the text itself
    WeakOwner<TextFieldView> m_weak{*this};
};

}
