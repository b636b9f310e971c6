#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

class Text;

/// The text without the blanks at its ends.
std::string_view trimmed(std::string_view);

/// A text without what a search disregards: blanks at its ends, case, accents, width.
std::string normalised(std::string_view, const Text&);

/// The name with a space at each change of case that begins a word: "XML Editor", "i Phone".
std::string withSpacesAtWords(std::string_view name, const Text&);

/// A normalised text, and where its characters begin.
class SearchText {
public:
    SearchText() = default;
    SearchText(std::string normalised, const Text&);

    const std::string& text() const { return m_text; }
    std::size_t characters() const;
    std::size_t charactersBefore(std::size_t byteOffset) const;
    bool isCharacterStart(std::size_t byteOffset) const;
    /// Byte offset of the first occurrence that begins with a whole character, else `npos`. It may
    /// end inside one: syllables of many scripts are typed letter by letter.
    std::size_t find(std::string_view query) const;

private:
    std::string m_text;
    std::vector<std::uint32_t> m_starts; ///< byte offsets; empty if every byte is a character
};

/// A normalised text, and the words in it: what stands between characters that are neither letters
/// nor numbers.
class SearchWords {
public:
    struct Word {
        std::uint32_t start = 0; ///< bytes
        std::uint32_t bytes = 0;
        std::uint32_t characters = 0;
    };

    SearchWords() = default;
    SearchWords(std::string normalised, const Text&);

    const std::vector<Word>& words() const { return m_words; }
    std::string_view text(const Word& word) const
    {
        return std::string_view{m_text}.substr(word.start, word.bytes);
    }
    /// From the word's beginning to the end of everything.
    std::string_view textFrom(const Word& word) const
    {
        return std::string_view{m_text}.substr(word.start);
    }

private:
    std::string m_text;
    std::vector<Word> m_words;
};

/// What a search compares of one application, prepared once.
struct SearchTerms {
    SearchTerms() = default;
    /// The phrases (what kind of program it is, keywords, the executable) count in this order.
    SearchTerms(std::string_view name, const std::vector<std::string>& phrases, const Text&);

    SearchText name;
    SearchWords tokens; ///< of the name
    SearchWords keywords;
};

/// The words of a name, in order.
SearchWords searchTokens(std::string_view name, const Text&);

}
