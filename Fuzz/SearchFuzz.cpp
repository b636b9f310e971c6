#include <string_view>

#include "Hosts/Linux/Unicode/UnicodeText.h"
#include "Quorvel/Core/SearchRank.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel;

struct Letters final : xdg::UnicodeText {
    using UnicodeText::UnicodeText;
    Size measure(std::string_view, const TextStyle&) const override { return {}; }
    LineLayout lineLayout(std::string_view, const TextStyle&) const override { return {}; }
};

void expectEnds(std::string_view text, const Letters& letters)
{
    std::size_t last = 0;
    for (auto end : letters.characterEnds(text)) {
        expect(end > last);
        last = end;
    }
    expect(last == text.size());
}

void expectWords(const SearchWords& words)
{
    std::size_t last = 0;
    for (auto& word : words.words()) {
        expect(word.start >= last && word.characters > 0 && word.characters <= word.bytes);
        last = word.start + word.bytes;
        expect(words.text(word).size() == word.bytes);
    }
}

void expectRank(const SearchTerms& terms, std::string_view query)
{
    auto rank = query.empty() ? std::nullopt : searchRank(terms, query);
    if (!rank)
        return;
    auto tokens = terms.tokens.words().size() + terms.keywords.words().size();
    auto characters = terms.name.characters();
    expect(rank->tokenIndex >= 0 && std::size_t(rank->tokenIndex) <= tokens);
    expect(rank->characterIndex >= 0 && std::size_t(rank->characterIndex) <= characters);
}

}

// Whatever applications are called and users type: each name is cut into whole words and
// characters, and found by itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Letters english{"en"};
    static const Letters turkish{"tr"};
    const std::string_view input{reinterpret_cast<const char*>(data), size};
    const auto name = input.substr(0, input.find('\n'));
    const auto query = input.substr(std::min(name.size() + 1, input.size()));
    for (auto* letters : {&english, &turkish}) {
        expectEnds(input, *letters);
        const SearchTerms terms{name, {std::string{query}, std::string{name}}, *letters};
        expectWords(terms.tokens);
        expectWords(terms.keywords);
        expectRank(terms, normalised(query, *letters));
        const auto whole = normalised(name, *letters);
        expect(whole.empty() || searchRank(terms, whole)->kind == SearchMatchKind::exactName);
        expect(letters->compare(name, name) == 0);
    }
    return 0;
}
