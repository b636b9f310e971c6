#include "Hosts/Linux/Pictures/PictureDrawing.h"

#include <cstdint>
#include <cstring>

#include "Hosts/Linux/Pictures/RsvgLibrary.h"

namespace quorvel::xdg {
namespace {

constexpr std::uint32_t kLargestSide = 2048;
constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1A\n";

std::uint32_t bigEndian(std::string_view bytes, std::size_t at)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<std::uint8_t>(bytes[at + i]);
    return value;
}

/// The picture's size stands right behind the signature: 24 bytes tell what decoding would cost.
bool isReasonablePng(std::string_view bytes)
{
    if (bytes.size() < 24)
        return false;
    const auto width = bigEndian(bytes, 16);
    const auto height = bigEndian(bytes, 20);
    return width > 0 && height > 0 && width <= kLargestSide && height <= kLargestSide;
}

cairo_status_t readFromView(void* view, unsigned char* into, unsigned int length)
{
    auto& rest = *static_cast<std::string_view*>(view);
    if (rest.size() < length)
        return CAIRO_STATUS_READ_ERROR;
    std::memcpy(into, rest.data(), length);
    rest.remove_prefix(length);
    return CAIRO_STATUS_SUCCESS;
}

SurfacePointer drawPng(std::string_view bytes, int pixels)
{
    if (!isReasonablePng(bytes))
        return nullptr;
    const SurfacePointer picture{cairo_image_surface_create_from_png_stream(readFromView, &bytes)};
    if (cairo_surface_status(picture.get()) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    return fitted(picture.get(), pixels);
}

bool renderDocument(
    const RsvgLibrary& rsvg, RsvgHandle* handle, cairo_surface_t* square, int pixels)
{
    const RsvgRectangle viewport{0, 0, static_cast<double>(pixels), static_cast<double>(pixels)};
    cairo_t* context = cairo_create(square);
    const bool isRendered = rsvg.render(handle, context, &viewport, nullptr);
    const bool isDrawn = isRendered && cairo_status(context) == CAIRO_STATUS_SUCCESS;
    cairo_destroy(context);
    return isDrawn;
}

/// The handle gets no base address, so a document cannot pull in other files.
SurfacePointer drawSvg(std::string_view bytes, int pixels)
{
    const auto* rsvg = RsvgLibrary::load();
    if (!rsvg)
        return nullptr;
    auto square = makeSquare(pixels);
    const GObjectHandle<RsvgHandle> handle{
        rsvg->newFromData(reinterpret_cast<const guint8*>(bytes.data()), bytes.size(), nullptr)};
    if (!handle)
        return nullptr;
    const bool isDrawn = square && renderDocument(*rsvg, handle.get(), square.get(), pixels);
    return isDrawn ? std::move(square) : nullptr;
}

}

std::optional<PictureFormat> formatOf(std::string_view name, std::string_view start)
{
    if (start.starts_with(kPngSignature))
        return PictureFormat::png;
    return name.ends_with(".svg") ? std::optional{PictureFormat::svg} : std::nullopt;
}

SurfacePointer drawPicture(std::string_view bytes, PictureFormat format, int pixels)
{
    return format == PictureFormat::png ? drawPng(bytes, pixels) : drawSvg(bytes, pixels);
}

}
