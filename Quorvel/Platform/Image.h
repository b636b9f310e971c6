#pragma once

#include <memory>

namespace quorvel {

/// A picture that its host can draw at any size: pixels are produced when first needed.
struct PlatformImage {
    virtual ~PlatformImage() = default;
};

/// A shared handle; empty means no picture. Equal handles are the same picture.
using Image = std::shared_ptr<const PlatformImage>;

}
