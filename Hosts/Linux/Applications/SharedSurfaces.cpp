#include "Hosts/Linux/Applications/SharedSurfaces.h"

#include <algorithm>
#include <functional>
#include <string_view>

namespace quorvel::xdg {
namespace {

constexpr cairo_user_data_key_t kEntryKey{};

std::string_view pixelsOf(cairo_surface_t* surface)
{
    const auto height = cairo_image_surface_get_height(surface);
    const auto stride = cairo_image_surface_get_stride(surface);
    return {reinterpret_cast<const char*>(cairo_image_surface_get_data(surface)),
        static_cast<std::size_t>(height) * static_cast<std::size_t>(stride)};
}

bool looksLike(cairo_surface_t* one, cairo_surface_t* other)
{
    return cairo_image_surface_get_width(one) == cairo_image_surface_get_width(other)
        && cairo_image_surface_get_format(one) == cairo_image_surface_get_format(other)
        && pixelsOf(one) == pixelsOf(other);
}

}

/// Hangs on its surface and goes with it.
struct SharedSurfaces::Entry {
    std::weak_ptr<ByHash> all;
    ByHash::iterator place;

    static void destroy(void* data)
    {
        const std::unique_ptr<Entry> entry{static_cast<Entry*>(data)};
        if (const auto all = entry->all.lock())
            all->erase(entry->place);
    }
};

SurfacePointer SharedSurfaces::share(SurfacePointer surface)
{
    if (!surface)
        return surface;
    const auto hash = std::hash<std::string_view>{}(pixelsOf(surface.get()));
    const auto [first, last] = m_inUse->equal_range(hash);
    const auto same = std::find_if(
        first, last, [&](auto& entry) { return looksLike(entry.second, surface.get()); });
    if (same != last)
        return SurfacePointer{cairo_surface_reference(same->second)};
    auto entry = std::make_unique<Entry>(m_inUse, m_inUse->emplace(hash, surface.get()));
    if (cairo_surface_set_user_data(surface.get(), &kEntryKey, entry.get(), &Entry::destroy)
        == CAIRO_STATUS_SUCCESS)
        static_cast<void>(entry.release());
    else
        m_inUse->erase(entry->place);
    return surface;
}

}
