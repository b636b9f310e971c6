#pragma once

#include "Hosts/Linux/Unicode/UnicodeText.h"

namespace quorvel::test {

/// The letters are real ones. Every code point is as wide as half its font size, combining marks
/// and parts of emoji included. Hebrew and Arabic run from right to left, and what is no letter
/// goes on as the letter before it.
class FakeText final : public xdg::UnicodeText {
public:
    using UnicodeText::UnicodeText;

    Size measure(std::string_view utf8, const TextStyle&) const override;
    LineLayout lineLayout(std::string_view utf8, const TextStyle&) const override;
};

}
