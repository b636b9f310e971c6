#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Text.h"

namespace quorvel {

/// A part of a text, in bytes.
struct TextRange {
    std::size_t start = 0;
    std::size_t end = 0;

    std::size_t size() const { return end - start; }
    bool isEmpty() const { return start == end; }
    friend bool operator==(const TextRange&, const TextRange&) = default;
};

enum class TextUnit { character, word, all };
/// In the order of the text, which in some scripts is not that on the screen.
enum class TextDirection { backward, forward };
/// Whether the caret leaves the selection behind or takes its end along.
enum class CaretMove { alone, selecting };

/// What a field shows while an input method composes: the composition stands where the selection
/// was.
struct ShownText {
    std::string text;
    std::size_t caret = 0;
    TextRange selection;
    TextRange composition;
};

/// A line of text that is being edited: text, caret, selection, composition, and what can be
/// undone. A value, without a view or a clock.
///
/// Offsets are bytes of valid UTF-8 and always lie between two characters as a reader sees them, so
/// that nothing ever takes an accent from its letter or a member from a family. Offsets from
/// outside move to the next such place. Text from outside becomes one plain line, cut to the length
/// that is left.
///
/// What is typed or deleted in a row is one step to undo, up to the next word. Everything that
/// moves the caret or changes the text first settles what is being composed.
class TextEditing {
public:
    /// As long a line as the hosts still measure whole.
    static constexpr std::size_t kMostBytes = 1000;

    /// The platform's text outlives it.
    explicit TextEditing(const Text& text, std::size_t mostBytes = kMostBytes);

    const std::string& text() const { return m_state.text; }
    std::size_t caret() const { return m_state.caret; }
    TextRange selection() const;
    std::string selectedText() const;
    bool isComposing() const { return !m_composition.empty(); }
    ShownText shown() const;

    /// A new text, of which nothing can be undone. The caret goes to its end.
    void setText(std::string_view utf8);
    /// In place of the composition, or else of the selection: as typed, or as one step of its own.
    void type(std::string_view utf8);
    void paste(std::string_view utf8);
    /// The selection, or else from the caret as far as the unit goes.
    void erase(TextDirection, TextUnit);
    void eraseSelection();

    void move(TextDirection, TextUnit, CaretMove);
    void moveTo(std::size_t offset, CaretMove);
    void select(TextRange);
    void selectAll() { select({0, text().size()}); }
    /// The word there, all, or nothing; `extendTo` then adds whole units.
    void selectAt(std::size_t offset, TextUnit);
    void extendTo(std::size_t offset);

    /// False if there is nothing to undo or redo.
    bool undo();
    bool redo();

    /// Replaces the composition; empty: it is cancelled, and the selection is there again.
    void compose(std::string_view utf8, std::size_t caret);
    /// Makes the composition a part of the text.
    void settle();

private:
    enum class Edit { none, typing, erasingBackward, erasingForward, whole };
    struct State {
        std::string text;
        std::size_t caret = 0;
        std::size_t anchor = 0; ///< the other end of the selection
    };

    void replace(TextRange, std::string_view utf8, Edit);
    bool goesOn(Edit, std::string_view utf8) const;
    void remember();
    void restore(std::vector<State>& from, std::vector<State>& to);
    std::string fitted(std::string_view utf8, std::size_t room) const;

    std::size_t snapped(std::size_t offset) const;
    std::size_t next(std::size_t offset, TextDirection, TextUnit) const;
    TextRange unitAt(std::size_t offset, TextUnit) const;
    std::size_t indexOf(std::size_t offset) const;
    std::size_t startOf(std::size_t character) const;
    enum class Kind { word, space, other };
    Kind kindOf(std::size_t character) const;

    const Text* m_text;
    std::size_t m_mostBytes;
    State m_state;
    std::vector<std::size_t> m_ends; ///< of the characters of the text
    std::string m_composition;
    std::size_t m_compositionCaret = 0;
    TextUnit m_unit = TextUnit::character; ///< what `extendTo` adds
    TextRange m_origin; ///< what it keeps selected
    Edit m_lastEdit = Edit::none;
    std::vector<State> m_undo;
    std::vector<State> m_redo;
};

}
