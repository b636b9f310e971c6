#include "Hosts/Linux/Applications/LauncherUpdate.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

namespace {

std::optional<bool> booleanIn(GVariant* value)
{
    if (!g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN))
        return std::nullopt;
    return g_variant_get_boolean(value) != 0;
}

/// The signal's count has 64 bits; bindings of scripting languages send what they have.
std::optional<std::int64_t> integerIn(GVariant* value)
{
    constexpr auto largest = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    switch (g_variant_classify(value)) {
    case G_VARIANT_CLASS_INT64:
        return g_variant_get_int64(value);
    case G_VARIANT_CLASS_UINT64:
        return static_cast<std::int64_t>(std::min(g_variant_get_uint64(value), largest));
    case G_VARIANT_CLASS_INT32:
        return g_variant_get_int32(value);
    case G_VARIANT_CLASS_UINT32:
        return g_variant_get_uint32(value);
    case G_VARIANT_CLASS_INT16:
        return g_variant_get_int16(value);
    case G_VARIANT_CLASS_UINT16:
        return g_variant_get_uint16(value);
    case G_VARIANT_CLASS_BYTE:
        return g_variant_get_byte(value);
    default:
        return std::nullopt;
    }
}

std::optional<double> finiteNumberIn(GVariant* value)
{
    if (!g_variant_is_of_type(value, G_VARIANT_TYPE_DOUBLE))
        return std::nullopt;
    const auto number = g_variant_get_double(value);
    return std::isfinite(number) ? std::optional{number} : std::nullopt;
}

template <typename Value> void takeIfGiven(std::optional<Value>& into, std::optional<Value> value)
{
    if (value)
        into = value;
}

void takeProperty(LauncherUpdate& update, std::string_view name, GVariant* value)
{
    if (name == "count")
        takeIfGiven(update.count, integerIn(value));
    else if (name == "count-visible")
        takeIfGiven(update.isCountVisible, booleanIn(value));
    else if (name == "progress")
        takeIfGiven(update.progress, finiteNumberIn(value));
    else if (name == "progress-visible")
        takeIfGiven(update.isProgressVisible, booleanIn(value));
    else if (name == "urgent")
        takeIfGiven(update.isUrgent, booleanIn(value));
}

std::optional<std::string> percentDecoded(std::string_view text)
{
    const std::string copy{text};
    const GText plain{g_uri_unescape_string(copy.c_str(), nullptr)};
    if (!plain || !g_utf8_validate(plain.get(), -1, nullptr))
        return std::nullopt;
    return plain.get();
}

/// A file's id is its path below the folder of applications, with hyphens for the slashes.
std::string idOfPath(std::string path)
{
    constexpr std::string_view folder = "/applications/";
    if (const auto found = path.rfind(folder); found != std::string::npos)
        path.erase(0, found + folder.size());
    else if (path.starts_with('/'))
        path.erase(0, path.rfind('/') + 1);
    std::ranges::replace(path, '/', '-');
    return path;
}

}

std::optional<std::string> desktopIDOf(std::string_view address)
{
    constexpr std::string_view scheme = "application://";
    constexpr std::string_view ending = ".desktop";
    if (address.starts_with(scheme))
        address.remove_prefix(scheme.size());
    if (address.size() > LauncherUpdate::kLongestID)
        return std::nullopt;
    auto path = percentDecoded(address);
    if (!path || path->find("://") != std::string::npos)
        return std::nullopt;
    auto id = idOfPath(*std::move(path));
    if (id.ends_with(ending))
        id.resize(id.size() - ending.size());
    return id.empty() ? std::nullopt : std::optional{std::move(id)};
}

std::optional<LauncherUpdate> decodeLauncherUpdate(GVariant* parameters)
{
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sa{sv})")))
        return std::nullopt;
    const char* address = nullptr;
    g_variant_get_child(parameters, 0, "&s", &address);
    auto id = desktopIDOf(address);
    if (!id)
        return std::nullopt;

    LauncherUpdate update{.desktopID = *std::move(id)};
    const GVariantHandle properties{g_variant_get_child_value(parameters, 1)};
    const auto count
        = std::min(g_variant_n_children(properties.get()), LauncherUpdate::kMostProperties);
    for (std::size_t index = 0; index < count; ++index) {
        const char* name = nullptr;
        GVariant* value = nullptr;
        g_variant_get_child(properties.get(), index, "{&sv}", &name, &value);
        takeProperty(update, name, GVariantHandle{value}.get());
    }
    return update;
}

}
