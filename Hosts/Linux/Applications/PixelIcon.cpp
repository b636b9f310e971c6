#include "Hosts/Linux/Applications/PixelIcon.h"

#include <algorithm>
#include <utility>

namespace quorvel::xdg {
namespace {

int longerSide(const IconPixels& size)
{
    return std::max(size.width, size.height);
}

int longerSide(const SurfacePointer& surface)
{
    return std::max(cairo_image_surface_get_width(surface.get()),
        cairo_image_surface_get_height(surface.get()));
}

bool isUsable(const IconPixels& size)
{
    if (size.width < 1 || size.height < 1 || longerSide(size) > PixelIcon::kLargestUsable)
        return false;
    return size.argb.size()
        == static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

/// Cairo's colours are multiplied by their alpha.
std::uint32_t premultiplied(std::uint32_t argb)
{
    const std::uint32_t alpha = argb >> 24;
    const auto channel = [argb, alpha](int shift) {
        const std::uint32_t value = (argb >> shift & 0xFF) * alpha;
        return (value + 127) / 255 << shift;
    };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

SurfacePointer surfaceFrom(const IconPixels& size)
{
    SurfacePointer surface{
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.width, size.height)};
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    auto* row = cairo_image_surface_get_data(surface.get());
    const auto* source = size.argb.data();
    for (int y = 0; y < size.height; ++y, source += size.width) {
        std::transform(
            source, source + size.width, reinterpret_cast<std::uint32_t*>(row), premultiplied);
        row += cairo_image_surface_get_stride(surface.get());
    }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

/// The usable ones, the smallest first, each size once.
std::vector<const IconPixels*> inOrder(const std::vector<IconPixels>& sizes)
{
    std::vector<const IconPixels*> usable;
    for (const auto& size : sizes) {
        if (isUsable(size))
            usable.push_back(&size);
    }
    std::stable_sort(usable.begin(), usable.end(),
        [](auto* a, auto* b) { return longerSide(*a) < longerSide(*b); });
    const auto last = std::unique(usable.begin(), usable.end(),
        [](auto* a, auto* b) { return longerSide(*a) == longerSide(*b); });
    usable.erase(last, usable.end());
    return usable;
}

/// What of it a bar shows, the smallest first.
std::vector<SurfacePointer> reduced(const std::vector<IconPixels>& sizes, PixelBudget& budget)
{
    std::vector<SurfacePointer> kept;
    for (const auto* size : inOrder(sizes)) {
        if (!kept.empty() && longerSide(*size) > PixelIcon::kLargestKept
            && longerSide(kept.back()) >= PixelIcon::kLargeEnough)
            break;
        auto surface = surfaceFrom(*size);
        if (surface && longerSide(*size) > PixelIcon::kLargestKept)
            surface = fitted(surface.get(), PixelIcon::kLargestKept);
        if (surface)
            kept.push_back(budget.surfaces().share(std::move(surface)));
    }
    return kept;
}

}

Image PixelIcon::from(
    const std::vector<IconPixels>& sizes, Reload reload, const std::shared_ptr<PixelBudget>& budget)
{
    auto kept = reduced(sizes, *budget);
    return kept.empty() ? Image{}
                        : std::make_shared<PixelIcon>(std::move(kept), std::move(reload), budget);
}

PixelIcon::PixelIcon(
    std::vector<SurfacePointer> sizes, Reload reload, const std::shared_ptr<PixelBudget>& budget)
    : RenderedIcon(budget)
    , m_reload(std::move(reload))
    , m_source(budget)
{
    m_source.sizes = std::move(sizes);
    m_source.use();
}

void PixelIcon::Source::use()
{
    std::size_t bytes = 0;
    for (auto& surface : sizes)
        bytes += bytesOf(surface);
    Piece::use(bytes);
}

std::optional<SurfacePointer> PixelIcon::draw(int pixels) const
{
    auto& sizes = m_source.sizes;
    if (sizes.empty() && m_reload)
        sizes = reduced(m_reload(), m_source.budget());
    m_source.use();
    if (sizes.empty())
        return std::nullopt;
    const auto largeEnough = std::find_if(sizes.begin(), sizes.end(),
        [pixels](const auto& surface) { return longerSide(surface) >= pixels; });
    const auto& best = largeEnough == sizes.end() ? sizes.back() : *largeEnough;
    return fitted(best.get(), pixels);
}

}
