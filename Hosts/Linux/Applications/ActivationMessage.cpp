#include "Hosts/Linux/Applications/ActivationMessage.h"

#include <algorithm>

#include "Hosts/Linux/Applications/ExecLine.h"
#include "Hosts/Linux/Applications/LaunchRequest.h"
#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

namespace {

/// The token under its older and its newer name.
GVariant* platformData(const std::string& token)
{
    GVariantBuilder data;
    g_variant_builder_init(&data, G_VARIANT_TYPE("a{sv}"));
    for (const char* key : {"desktop-startup-id", "activation-token"}) {
        if (!token.empty())
            g_variant_builder_add(&data, "{sv}", key, g_variant_new_string(token.c_str()));
    }
    return g_variant_builder_end(&data);
}

GVariant* uris(const std::vector<std::string>& files)
{
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE("as"));
    for (const auto& file : files) {
        if (const auto uri = addressOf(file); !uri.empty())
            g_variant_builder_add(&list, "s", uri.c_str());
    }
    return g_variant_builder_end(&list);
}

}

ActivationMessage activationMessage(const LaunchRequest& request)
{
    auto* data = platformData(request.token);
    if (!request.action.empty()) {
        auto* noParameters = g_variant_new_array(G_VARIANT_TYPE_VARIANT, nullptr, 0);
        return {"ActivateAction",
            g_variant_new("(s@av@a{sv})", request.action.c_str(), noParameters, data)};
    }
    if (!request.files.empty())
        return {"Open", g_variant_new("(@as@a{sv})", uris(request.files), data)};
    return {"Activate", g_variant_new("(@a{sv})", data)};
}

std::string objectPath(const std::string& busName)
{
    auto path = '/' + busName;
    std::ranges::replace(path, '.', '/');
    std::ranges::replace(path, '-', '_');
    return path;
}

bool mayStillCome(const GError* error)
{
    return g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY)
        || g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_TIMEOUT)
        || g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT);
}

}
