#include "Quorvel/Views/Kit/TextFieldView.h"

#include <algorithm>
#include <cmath>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct TextFieldViewStyle {
    static constexpr double caretWidth = 1;
    static constexpr double placeholderInset = 2; ///< clear of the caret
    static constexpr double overhang = 2; ///< room for letters that lean out of their line
    static constexpr double underline = 1;
};

}

TextFieldView::TextFieldView(const Inputs& inputs, std::string name)
    : m_inputs(inputs)
    , m_name(std::move(name))
    , m_editing(inputs.platform.text)
    , m_geometry({})
    , m_clicks(inputs.platform.dispatch)
    , m_blink(inputs.platform.dispatch, [this] { invalidate(caretRect(m_shown.caret)); })
    , m_native(inputs.platform.surfaces.createTextField(inputs.surface, *this))
{
    appearanceDidChange();
}

TextFieldView::~TextFieldView() = default;

void TextFieldView::setText(std::string_view utf8)
{
    if (utf8 == m_editing.text() && !m_editing.isComposing())
        return;
    if (m_editing.isComposing())
        m_inputs.surface.forgetComposition();
    m_editing.setText(utf8);
    if (m_native)
        m_native->setText(m_editing.text());
    shownDidChange();
}

void TextFieldView::setPlaceholder(std::string utf8)
{
    m_placeholder = std::move(utf8);
    if (m_native)
        m_native->setPlaceholder(m_placeholder);
    invalidate();
}

void TextFieldView::setFontSize(double points)
{
    m_fontSize = points;
    appearanceDidChange();
}

void TextFieldView::appearanceDidChange()
{
    m_isRightToLeft = m_inputs.platform.application.appearance().value().isRightToLeft;
    auto plain = style(m_inputs.palette.text, TextAlignment::leading);
    m_lineHeight = m_inputs.platform.text.measure("x", plain).height;
    if (m_native)
        m_native->setStyle(plain);
    shownDidChange();
}

/// What is shown may be another text, or the same with another caret.
void TextFieldView::shownDidChange()
{
    m_shown = m_editing.shown();
    m_geometry = LineGeometry{m_inputs.platform.text.lineLayout(
        m_shown.text, style(m_inputs.palette.text, TextAlignment::centre))};
    revealCaret();
    invalidate();
    if (m_hasFocus && !m_native)
        m_blink.restart(!m_inputs.platform.application.appearance().value().reduceMotion);
    if (auto* surface = host(); surface && m_hasFocus)
        surface->viewTextInputDidChange();
    m_inputs.surface.accessibleTreeDidChange();
}

// MARK: Places

void TextFieldView::layout()
{
    revealCaret();
    moved();
}

void TextFieldView::moved()
{
    if (m_native)
        m_native->setFrame(frameInRoot());
}

void TextFieldView::revealCaret()
{
    double room = bounds().width - TextFieldViewStyle::caretWidth;
    double x = m_geometry.caretX(m_shown.caret);
    m_scroll = std::clamp(m_scroll, x - std::max(room, 0.0), x);
    m_scroll = std::clamp(m_scroll, 0.0, std::max(m_geometry.width() - room, 0.0));
}

/// The whole line, also where it reaches out of the view.
Rect TextFieldView::lineFrame() const
{
    double room = bounds().width - TextFieldViewStyle::caretWidth;
    bool isRightToLeft = m_shown.text.empty() ? m_isRightToLeft : m_geometry.isRightToLeft();
    double spare = std::max(room - m_geometry.width(), 0.0);
    return {(isRightToLeft ? spare : 0) - m_scroll, (bounds().height - m_lineHeight) / 2,
        m_geometry.width(), m_lineHeight};
}

Rect TextFieldView::rectOf(const LineGeometry::Span& span) const
{
    auto line = lineFrame();
    return {line.x + span.left, line.y, span.right - span.left, line.height};
}

Rect TextFieldView::caretRect(std::size_t offset) const
{
    auto line = lineFrame();
    return {
        line.x + m_geometry.caretX(offset), line.y, TextFieldViewStyle::caretWidth, line.height};
}

std::size_t TextFieldView::offsetAt(Point inRoot) const
{
    return m_geometry.offsetAt(inRoot.x - frameInRoot().x - lineFrame().x);
}

Rect TextFieldView::caretFrame() const
{
    auto frame = frameInRoot();
    return caretRect(m_shown.caret).translated(frame.x, frame.y);
}

// MARK: Looks

TextStyle TextFieldView::style(const Color& color, TextAlignment alignment) const
{
    return {.size = m_fontSize, .color = color, .alignment = alignment, .elide = Elide::none};
}

void TextFieldView::paint(Canvas& canvas) const
{
    if (m_native)
        return;
    auto& palette = m_inputs.palette;
    canvas.save();
    canvas.clip(bounds());
    if (m_shown.text.empty()) {
        auto quiet = style(palette.quietText, TextAlignment::leading);
        quiet.elide = Elide::tail;
        canvas.drawText(
            m_placeholder, bounds().inset(TextFieldViewStyle::placeholderInset, 0), quiet);
    }
    paintLine(canvas, palette.text);
    paintSelection(canvas);
    for (auto& span : m_geometry.spans(m_shown.composition)) {
        auto part = rectOf(span);
        canvas.fill({part.x, part.maxY() - TextFieldViewStyle::underline, part.width,
                        TextFieldViewStyle::underline},
            palette.text);
    }
    if (m_blink.isOn() && m_shown.selection.isEmpty())
        canvas.fill(caretRect(m_shown.caret), palette.text);
    canvas.restore();
}

/// Centred in a little more than its own width, it begins where the line does in any direction of
/// the interface.
void TextFieldView::paintLine(Canvas& canvas, const Color& color) const
{
    canvas.drawText(m_shown.text, lineFrame().inset(-TextFieldViewStyle::overhang, 0),
        style(color, TextAlignment::centre));
}

void TextFieldView::paintSelection(Canvas& canvas) const
{
    auto& palette = m_inputs.palette;
    for (auto& span : m_geometry.spans(m_shown.selection)) {
        auto part = rectOf(span);
        canvas.save();
        canvas.clip(part);
        canvas.fill(part, m_hasFocus ? palette.highlight : palette.menuSeparator);
        paintLine(canvas, m_hasFocus ? palette.highlightedText : palette.text);
        canvas.restore();
    }
}

// MARK: What assistive programs see and do

AccessibleState TextFieldView::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::textField;
    state.name = m_name;
    state.hasKeyFocus = m_hasFocus;
    state.text = AccessibleText{
        m_shown.text, m_placeholder, m_shown.caret, m_shown.selection.start, m_shown.selection.end};
    return state;
}

bool TextFieldView::setAccessibleText(std::string_view utf8)
{
    edit([&] {
        m_editing.selectAll();
        m_editing.paste(utf8);
    });
    return true;
}

bool TextFieldView::setAccessibleSelection(std::size_t start, std::size_t end)
{
    edit([&] { m_editing.select({start, end}); });
    return true;
}

Rect TextFieldView::accessibleTextFrame(std::size_t start, std::size_t end) const
{
    auto frame = frameInRoot();
    auto covered = start < end ? Rect{} : caretRect(start);
    for (auto& span : m_geometry.spans({start, std::max(start, end)}))
        covered = covered.united(rectOf(span));
    return covered.translated(frame.x, frame.y);
}

std::size_t TextFieldView::accessibleOffsetAt(Point inSurface) const
{
    return offsetAt(inSurface);
}

}
