#pragma once

#include <functional>
#include <optional>
#include <string>

namespace quorvel {

enum class ClipboardKind {
    clipboard, ///< what was copied or cut
    primary, ///< what is selected; a press of the middle button inserts it
};

/// Texts that programs exchange. Main thread.
class Clipboard {
public:
    /// Absent if there is no text, or its owner did not answer in time.
    using TextHandler = std::function<void(std::optional<std::string> utf8)>;

    virtual ~Clipboard() = default;

    /// Offers the text to other programs until one of them offers something else.
    virtual void setText(ClipboardKind, std::string utf8) = 0;
    /// Calls the handler once on the main thread, later, even if the one who asked has gone.
    virtual void requestText(ClipboardKind, TextHandler) = 0;
};

}
