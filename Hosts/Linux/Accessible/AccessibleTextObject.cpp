#include "Hosts/Linux/Accessible/AccessibleTextObject.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "Hosts/Linux/Accessible/AccessibleCharacters.h"
#include "Hosts/Linux/Accessible/AccessibleNode.h"
#include "Hosts/Linux/Accessible/AccessibleObject.h"

namespace quorvel::xdg {

namespace {

using Unit = AccessibleCharacters::Unit;
using Range = AccessibleCharacters::Range;

/// A field at the moment of a question; empty if it is gone.
struct Field {
    explicit Field(gpointer object)
        : node(accessibleNodeOf(object))
        , state(node ? node->field().value_or(AccessibleText{}) : AccessibleText{})
        , characters(state.text)
    {
    }

    Range selection() const
    {
        return {characters.at(state.selectionStart), characters.at(state.selectionEnd)};
    }
    bool select(int start, int end) const
    {
        return node && node->setSelection(characters.byteOf(start), characters.byteOf(end));
    }
    void replace(int start, int end, std::string_view text) const
    {
        if (node)
            node->setText(characters.slice(0, start).append(text) + characters.slice(end, -1));
    }

    AccessibleNode* node;
    AccessibleText state;
    AccessibleCharacters characters;
};

char* answer(const Field& field, Range range, int* start, int* end)
{
    *start = range.first;
    *end = range.second;
    return g_strdup(field.characters.slice(range.first, range.second).c_str());
}

Unit unitOf(AtkTextBoundary boundary)
{
    switch (boundary) {
    case ATK_TEXT_BOUNDARY_CHAR:
        return Unit::character;
    case ATK_TEXT_BOUNDARY_WORD_START:
    case ATK_TEXT_BOUNDARY_WORD_END:
        return Unit::word;
    default:
        return Unit::line;
    }
}

Unit unitOf(AtkTextGranularity granularity)
{
    switch (granularity) {
    case ATK_TEXT_GRANULARITY_CHAR:
        return Unit::character;
    case ATK_TEXT_GRANULARITY_WORD:
        return Unit::word;
    default:
        return Unit::line;
    }
}

// MARK: Reading

char* textOf(AtkText* text, int start, int end)
{
    return g_strdup(Field{text}.characters.slice(start, end).c_str());
}

char* stringAt(AtkText* text, int offset, AtkTextGranularity granularity, int* start, int* end)
{
    const Field field{text};
    return answer(field, field.characters.around(offset, unitOf(granularity)), start, end);
}

char* textAt(AtkText* text, int offset, AtkTextBoundary boundary, int* start, int* end)
{
    const Field field{text};
    return answer(field, field.characters.around(offset, unitOf(boundary)), start, end);
}

char* textBefore(AtkText* text, int offset, AtkTextBoundary boundary, int* start, int* end)
{
    const Field field{text};
    const auto here = field.characters.around(offset, unitOf(boundary));
    const auto before
        = here.first > 0 ? field.characters.around(here.first - 1, unitOf(boundary)) : Range{};
    return answer(field, before, start, end);
}

char* textAfter(AtkText* text, int offset, AtkTextBoundary boundary, int* start, int* end)
{
    const Field field{text};
    const auto here = field.characters.around(offset, unitOf(boundary));
    const auto count = field.characters.count();
    const auto after = here.second < count ? field.characters.around(here.second, unitOf(boundary))
                                           : Range{count, count};
    return answer(field, after, start, end);
}

gunichar characterAt(AtkText* text, int offset)
{
    return Field{text}.characters.character(offset);
}

int characterCountOf(AtkText* text)
{
    return Field{text}.characters.count();
}

int caretOf(AtkText* text)
{
    const Field field{text};
    return field.characters.at(field.state.caret);
}

/// There are no parts that look different.
AtkAttributeSet* runAttributesOf(AtkText* text, int, int* start, int* end)
{
    *start = 0;
    *end = Field{text}.characters.count();
    return nullptr;
}

AtkAttributeSet* defaultAttributesOf(AtkText*)
{
    return nullptr;
}

// MARK: Places

void characterExtents(
    AtkText* text, int offset, int* x, int* y, int* width, int* height, AtkCoordType coordinates)
{
    const Field field{text};
    const auto from = field.characters.byteOf(offset);
    const auto to = field.characters.byteOf(offset + 1);
    const auto found = field.node ? field.node->textFrame(from, to) : std::nullopt;
    const auto frame = found.value_or(Rect{});
    const auto origin = found ? accessibleOrigin(*field.node, coordinates) : Point{};
    *x = static_cast<int>(std::lround(frame.x - origin.x));
    *y = static_cast<int>(std::lround(frame.y - origin.y));
    *width = static_cast<int>(std::lround(frame.width));
    *height = static_cast<int>(std::lround(frame.height));
}

int offsetAtPoint(AtkText* text, int x, int y, AtkCoordType coordinates)
{
    const Field field{text};
    if (!field.node)
        return -1;
    const auto origin = accessibleOrigin(*field.node, coordinates);
    const auto byte = field.node->offsetAt({x + origin.x, y + origin.y});
    return byte ? field.characters.at(*byte) : -1;
}

// MARK: The selection

int selectionCountOf(AtkText* text)
{
    const auto selection = Field{text}.selection();
    return selection.first != selection.second ? 1 : 0;
}

char* selectionOf(AtkText* text, int number, int* start, int* end)
{
    const Field field{text};
    const auto selection = field.selection();
    if (number == 0 && selection.first != selection.second)
        return answer(field, selection, start, end);
    *start = *end = 0;
    return nullptr;
}

gboolean addSelection(AtkText* text, int start, int end)
{
    return selectionCountOf(text) == 0 && Field{text}.select(start, end);
}

gboolean setSelection(AtkText* text, int number, int start, int end)
{
    return number == 0 && Field{text}.select(start, end);
}

gboolean removeSelection(AtkText* text, int number)
{
    const Field field{text};
    const auto selection = field.selection();
    const bool isThere = number == 0 && selection.first != selection.second;
    return isThere && field.select(caretOf(text), caretOf(text));
}

gboolean setCaret(AtkText* text, int offset)
{
    return Field{text}.select(offset, offset);
}

// MARK: Changing

void setContents(AtkEditableText* text, const char* contents)
{
    const Field field{text};
    field.replace(0, field.characters.count(), contents ? contents : "");
}

/// The length is given in bytes; negative: all of it.
void insertText(AtkEditableText* text, const char* inserted, int length, int* position)
{
    if (!inserted || !position)
        return;
    std::string_view bytes{inserted};
    if (length >= 0)
        bytes = bytes.substr(0, static_cast<std::size_t>(length));
    const AccessibleCharacters characters{bytes};
    const auto whole = characters.slice(0, -1);
    Field{text}.replace(*position, *position, whole);
    *position += characters.count();
}

void deleteText(AtkEditableText* text, int start, int end)
{
    const Field field{text};
    if (end < 0)
        end = field.characters.count();
    if (start < end)
        field.replace(start, end, {});
}

}

void initializeAccessibleText(gpointer interface, gpointer)
{
    auto* text = static_cast<AtkTextIface*>(interface);
    text->get_text = textOf;
    text->get_string_at_offset = stringAt;
    text->get_text_at_offset = textAt;
    text->get_text_before_offset = textBefore;
    text->get_text_after_offset = textAfter;
    text->get_character_at_offset = characterAt;
    text->get_character_count = characterCountOf;
    text->get_caret_offset = caretOf;
    text->get_run_attributes = runAttributesOf;
    text->get_default_attributes = defaultAttributesOf;
    text->get_character_extents = characterExtents;
    text->get_offset_at_point = offsetAtPoint;
    text->get_n_selections = selectionCountOf;
    text->get_selection = selectionOf;
    text->add_selection = addSelection;
    text->set_selection = setSelection;
    text->remove_selection = removeSelection;
    text->set_caret_offset = setCaret;
}

void initializeAccessibleEditableText(gpointer interface, gpointer)
{
    auto* text = static_cast<AtkEditableTextIface*>(interface);
    text->set_text_contents = setContents;
    text->insert_text = insertText;
    text->delete_text = deleteText;
}

}
