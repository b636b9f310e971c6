#pragma once

#ifdef __APPLE__
#include "Hosts/MacOS/System/CFText.h"
#else
#include "Hosts/Linux/Unicode/UnicodeText.h"
#endif

namespace quorvel::test {

#ifdef __APPLE__
/// In the language of whoever runs the tests.
class Letters : public CFText {
public:
    static constexpr bool kAreOfAnyLanguage = false;
    Letters() = default;
    explicit Letters(std::string_view) { }
};
#else
class Letters : public xdg::UnicodeText {
public:
    static constexpr bool kAreOfAnyLanguage = true;
    using UnicodeText::UnicodeText;
};
#endif

/// The letters are real ones, as this system knows them. Every code point is as wide as half its
/// font size, combining marks and parts of emoji included. Hebrew and Arabic run from right to
/// left, and what is no letter goes on as the letter before it.
class FakeText final : public Letters {
public:
    using Letters::Letters;

    Size measure(std::string_view utf8, const TextStyle&) const override;
    LineLayout lineLayout(std::string_view utf8, const TextStyle&) const override;
};

}
