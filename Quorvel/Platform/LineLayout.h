#pragma once

#include <cstddef>
#include <vector>

namespace quorvel {

/// Where a character, as a reader sees it, lies in a line that is drawn.
struct CharacterBox {
    std::size_t start = 0; ///< bytes of the text
    std::size_t end = 0;
    double left = 0; ///< points from the left end of the line
    double right = 0;
    bool isRightToLeft = false;

    friend bool operator==(const CharacterBox&, const CharacterBox&) = default;
};

struct LineLayout {
    std::vector<CharacterBox> characters; ///< in the order of the text
    double width = 0;
    /// Of the line as a whole: its beginning is at the right.
    bool isRightToLeft = false;
};

}
