#pragma once

namespace quorvel {

/// How large a picture of a window may be.
enum class PictureSize {
    popup, ///< as the largest in a popup
    window, ///< as its window
};

}
