#include <span>
#include <vector>

#include <glib.h>

#include "Hosts/Linux/CatalogueFile.h"
#include "Hosts/X11/Desktop/CompoundText.h"
#include "Hosts/X11/Desktop/PixmapIcon.h"
#include "Hosts/X11/MonitorFacts.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel::xdg;
using namespace quorvel::xdg::x11;
using Bytes = std::span<const std::uint8_t>;

void readMonitor(Bytes bytes)
{
    auto scale = scaleFromResources({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    expect(scale >= 1 && scale <= kLargestScale);
    auto identifier = identifierFromEdid(bytes);
    expect(!identifier || (identifier->size() == 25 && identifier->starts_with("EDID-")));
}

void readCompoundText(Bytes bytes)
{
    auto text = decodeCompoundText({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    expect(g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr));
}

/// Sizes, depth and mask from six bytes, the layout from one, the rest is the pixels of both.
void readPixmaps(Bytes bytes)
{
    constexpr std::size_t header = 7;
    if (bytes.size() < header)
        return;
    constexpr PixelLayout layouts[]{{}, {16, 32, 0xF800, 0x07E0, 0x001F},
        {32, 32, 0xFF0000, 0xFF00, 0xFF}, {32, 32, 0x3FF00000, 0xFFC00, 0x3FF}};
    const auto data = std::as_bytes(bytes.subspan(header));
    const RawPixmap picture{bytes[0] * 2, bytes[1] * 2, bytes[2], data};
    const RawPixmap mask{bytes[3], bytes[4], bytes[5], data};
    const BitmapLayout bitmaps{(bytes[6] & 4) != 0, (bytes[6] & 8) != 0 ? 32 : 8};
    auto icon = iconFromPixmaps(picture, mask, layouts[bytes[6] % std::size(layouts)], bitmaps);
    const auto pixels
        = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    expect(!icon || (icon->argb.size() == pixels && pixels > 0));
}

}

// What is too small for a fuzzer of its own; the first byte chooses. Each reads a copy, so that the
// sanitizer sees a look beyond its end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::vector<std::uint8_t> bytes(data + 1, data + size);
    switch (data[0] % 4) {
    case 0:
        readMonitor(bytes);
        break;
    case 1:
        readCompoundText(bytes);
        break;
    case 2:
        readPixmaps(bytes);
        break;
    default:
        isWholeCatalogue({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    return 0;
}
