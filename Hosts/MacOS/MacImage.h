#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Quorvel/Platform/Image.h"

namespace quorvel {

struct MacImage final : PlatformImage {
    explicit MacImage(NSImage* image_) : image(image_) { }

    NSImage* image;
};

inline Image makeImage(NSImage* image)
{
    return image ? std::make_shared<MacImage>(image) : nullptr;
}

}
