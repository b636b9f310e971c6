#include "Quorvel/Views/Kit/TextEditing.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Views/Kit/PlainLine.h"

namespace quorvel {

namespace {

constexpr std::size_t kMostSteps = 100;

bool isSpace(char32_t value)
{
    return value == ' ' || value == 0xA0 || value == 0x3000 || (value >= 0x2000 && value <= 0x200A);
}

}

TextEditing::TextEditing(const Text& text, std::size_t mostBytes)
    : m_text(&text)
    , m_mostBytes(mostBytes)
{
}

TextRange TextEditing::selection() const
{
    auto [start, end] = std::minmax(m_state.anchor, m_state.caret);
    return {start, end};
}

std::string TextEditing::selectedText() const
{
    auto range = selection();
    return text().substr(range.start, range.size());
}

ShownText TextEditing::shown() const
{
    auto range = selection();
    if (!isComposing())
        return {text(), caret(), range, {}};
    ShownText shown{text(), range.start + m_compositionCaret, {},
        {range.start, range.start + m_composition.size()}};
    shown.text.replace(range.start, range.size(), m_composition);
    return shown;
}

// MARK: Changing the text

void TextEditing::setText(std::string_view utf8)
{
    m_composition.clear();
    m_undo.clear();
    m_redo.clear();
    m_lastEdit = Edit::none;
    auto line = fitted(utf8, m_mostBytes);
    m_ends = m_text->characterEnds(line);
    m_state = {line, line.size(), line.size()};
}

void TextEditing::type(std::string_view utf8)
{
    m_composition.clear();
    replace(selection(), utf8, Edit::typing);
}

void TextEditing::paste(std::string_view utf8)
{
    settle();
    replace(selection(), utf8, Edit::whole);
}

void TextEditing::erase(TextDirection direction, TextUnit unit)
{
    settle();
    if (!selection().isEmpty())
        return eraseSelection();
    auto [start, end] = std::minmax({caret(), next(caret(), direction, unit)});
    bool isBackward = direction == TextDirection::backward;
    replace({start, end}, {}, isBackward ? Edit::erasingBackward : Edit::erasingForward);
}

void TextEditing::eraseSelection()
{
    settle();
    replace(selection(), {}, Edit::whole);
}

void TextEditing::replace(TextRange range, std::string_view utf8, Edit edit)
{
    auto line = fitted(utf8, m_mostBytes - (text().size() - range.size()));
    if (range.isEmpty() && line.empty())
        return;
    if (!goesOn(edit, line))
        remember();
    m_redo.clear();
    m_lastEdit = edit;
    m_state.text.replace(range.start, range.size(), line);
    m_ends = m_text->characterEnds(text());
    m_state.caret = m_state.anchor = snapped(range.start + line.size());
}

/// Whether the edit belongs to the step of the one before.
bool TextEditing::goesOn(Edit edit, std::string_view utf8) const
{
    if (edit == Edit::whole || edit != m_lastEdit || !selection().isEmpty())
        return false;
    bool beginsWord = edit == Edit::typing && caret() > 0 && !isSpace(firstCodePoint(utf8))
        && kindOf(indexOf(caret()) - 1) == Kind::space;
    return !beginsWord;
}

std::string TextEditing::fitted(std::string_view utf8, std::size_t room) const
{
    // Whoever copied a whole book need not wait until all of it has been looked at.
    auto line = plainLine(utf8.substr(0, m_mostBytes * 4));
    if (line.size() <= room)
        return line;
    auto ends = m_text->characterEnds(line);
    auto past = std::ranges::upper_bound(ends, room);
    line.resize(past == ends.begin() ? 0 : *(past - 1));
    return line;
}

// MARK: Undoing

void TextEditing::remember()
{
    if (m_undo.size() == kMostSteps)
        m_undo.erase(m_undo.begin());
    m_undo.push_back(m_state);
}

bool TextEditing::undo()
{
    settle();
    if (m_undo.empty())
        return false;
    restore(m_undo, m_redo);
    return true;
}

bool TextEditing::redo()
{
    settle();
    if (m_redo.empty())
        return false;
    restore(m_redo, m_undo);
    return true;
}

void TextEditing::restore(std::vector<State>& from, std::vector<State>& to)
{
    to.push_back(std::exchange(m_state, from.back()));
    from.pop_back();
    m_ends = m_text->characterEnds(text());
    m_lastEdit = Edit::none;
}

// MARK: Caret and selection

void TextEditing::move(TextDirection direction, TextUnit unit, CaretMove move)
{
    settle();
    auto range = selection();
    bool leavesSelection
        = !range.isEmpty() && move == CaretMove::alone && unit == TextUnit::character;
    if (leavesSelection)
        moveTo(direction == TextDirection::backward ? range.start : range.end, move);
    else
        moveTo(next(caret(), direction, unit), move);
}

void TextEditing::moveTo(std::size_t offset, CaretMove move)
{
    settle();
    m_lastEdit = Edit::none;
    m_state.caret = snapped(offset);
    if (move == CaretMove::alone)
        m_state.anchor = m_state.caret;
    m_unit = TextUnit::character;
    m_origin = {m_state.anchor, m_state.anchor};
}

void TextEditing::select(TextRange range)
{
    moveTo(range.start, CaretMove::alone);
    moveTo(range.end, CaretMove::selecting);
}

void TextEditing::selectAt(std::size_t offset, TextUnit unit)
{
    settle();
    auto range = unitAt(snapped(offset), unit);
    select(range);
    m_unit = unit;
    m_origin = range;
}

void TextEditing::extendTo(std::size_t offset)
{
    settle();
    m_lastEdit = Edit::none;
    auto range = unitAt(snapped(offset), m_unit);
    bool isBackward = range.start < m_origin.start;
    m_state.anchor = isBackward ? m_origin.end : m_origin.start;
    m_state.caret = isBackward ? range.start : std::max(range.end, m_origin.end);
}

std::size_t TextEditing::snapped(std::size_t offset) const
{
    auto found = std::ranges::lower_bound(m_ends, offset);
    return offset == 0 ? 0 : found == m_ends.end() ? text().size() : *found;
}

/// The number of characters before it.
std::size_t TextEditing::indexOf(std::size_t offset) const
{
    return static_cast<std::size_t>(std::ranges::upper_bound(m_ends, offset) - m_ends.begin());
}

std::size_t TextEditing::startOf(std::size_t character) const
{
    return character == 0 ? 0 : m_ends[character - 1];
}

TextEditing::Kind TextEditing::kindOf(std::size_t character) const
{
    auto value = firstCodePoint(std::string_view{text()}.substr(startOf(character)));
    if (isSpace(value))
        return Kind::space;
    return m_text->classOf(value) == CharacterClass::other ? Kind::other : Kind::word;
}

/// A word ends at its end in either direction: the spaces are passed first.
std::size_t TextEditing::next(std::size_t offset, TextDirection direction, TextUnit unit) const
{
    bool isForward = direction == TextDirection::forward;
    if (unit == TextUnit::all)
        return isForward ? text().size() : 0;
    auto index = indexOf(offset);
    auto last = isForward ? m_ends.size() : 0;
    auto step = [&] { index = isForward ? index + 1 : index - 1; };
    auto skip = [&](bool areWords) {
        while (index != last && (kindOf(isForward ? index : index - 1) == Kind::word) == areWords)
            step();
    };
    if (unit == TextUnit::word) {
        skip(false);
        skip(true);
    } else if (index != last) {
        step();
    }
    return startOf(index);
}

TextRange TextEditing::unitAt(std::size_t offset, TextUnit unit) const
{
    if (unit == TextUnit::all)
        return {0, text().size()};
    if (unit == TextUnit::character || m_ends.empty())
        return {offset, offset};
    // Right behind a word means the word.
    auto index = indexOf(offset);
    bool isBehind = index == m_ends.size()
        || (index > 0 && kindOf(index) != Kind::word && kindOf(index - 1) == Kind::word);
    auto first = isBehind ? index - 1 : index;
    auto last = first + 1;
    auto kind = kindOf(first);
    while (kind != Kind::other && first > 0 && kindOf(first - 1) == kind)
        --first;
    while (kind != Kind::other && last < m_ends.size() && kindOf(last) == kind)
        ++last;
    return {startOf(first), startOf(last)};
}

// MARK: Composing

void TextEditing::compose(std::string_view utf8, std::size_t caret)
{
    m_composition = fitted(utf8, m_mostBytes);
    auto ends = m_text->characterEnds(m_composition);
    auto found = std::ranges::lower_bound(ends, caret);
    m_compositionCaret = caret == 0 ? 0 : found == ends.end() ? m_composition.size() : *found;
}

void TextEditing::settle()
{
    if (isComposing())
        type(std::string{m_composition});
}

}
