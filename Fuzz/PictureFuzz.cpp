#include <string_view>

#include <cairo/cairo.h>

#include "Hosts/Linux/Pictures/PictureDrawing.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel::xdg;

void expectSquareOrNone(std::string_view bytes, PictureFormat format, int pixels)
{
    const auto square = drawPicture(bytes, format, pixels);
    if (!square)
        return;
    expect(cairo_surface_status(square.get()) == CAIRO_STATUS_SUCCESS);
    expect(cairo_image_surface_get_width(square.get()) == pixels);
    expect(cairo_image_surface_get_height(square.get()) == pixels);
}

}

// Whatever stands in a picture's file, in whatever format it is taken for: a square of the size
// that was asked for, or none. The first byte is the size.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes{reinterpret_cast<const char*>(data) + 1, size - 1};
    const int pixels = 1 + data[0] % 64;
    expectSquareOrNone(bytes, formatOf("icon.svg", bytes).value(), pixels);
    expectSquareOrNone(bytes, PictureFormat::png, pixels);
    return 0;
}
