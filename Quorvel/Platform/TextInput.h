#pragma once

#include <cstddef>
#include <string_view>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// What takes typed text, as input methods and dead keys need it. Plain keys come as key events;
/// what they compose comes here. Main thread.
class TextInputClient {
public:
    virtual ~TextInputClient() = default;

    /// Puts the text in place of the composition, or else of the selection.
    virtual void insertText(std::string_view utf8) = 0;
    /// Text that is still being composed, shown in place of the one before, with the caret so many
    /// bytes into it. Empty: nothing is being composed any more, and nothing remains of it.
    virtual void setComposition(std::string_view utf8, std::size_t caret) = 0;
    /// The caret, for the window of an input method: points in the surface, top-left origin.
    virtual Rect caretFrame() const = 0;
};

}
