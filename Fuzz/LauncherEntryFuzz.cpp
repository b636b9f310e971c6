#include <memory>
#include <string>
#include <string_view>

#include "Hosts/Linux/Applications/LauncherEntries.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel;
using namespace quorvel::xdg;

struct Release {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using Variant = std::unique_ptr<GVariant, Release>;

const LauncherEntries::Matcher asItIs = [](auto& id) { return id; };

void checkShown(const LauncherEntries& entries)
{
    for (auto& status : entries.statuses()) {
        expect(status.bundleIdentifier && !status.bundleIdentifier->empty());
        expect(!status.label || (!status.label->empty() && status.label->size() <= 5));
        expect(!status.progress || (*status.progress >= 0 && *status.progress <= 1));
    }
}

/// What one sender says is shown within bounds, gone when it goes, and saying it again is no news.
void take(GVariant* parameters)
{
    const auto update = decodeLauncherUpdate(parameters);
    if (!update)
        return;
    expect(!update->desktopID.empty() && update->desktopID.find('/') == std::string::npos);
    LauncherEntries entries;
    expect(entries.update("sender", *update, asItIs) != LauncherEntries::Outcome::refused);
    expect(entries.update("sender", *update, asItIs) == LauncherEntries::Outcome::unchanged);
    checkShown(entries);
    entries.withdrawRequest(update->desktopID);
    expect(entries.asking().empty());
    expect(entries.forget("sender") && entries.statuses().empty());
}

/// As it comes over the bus, but not checked by it.
void readAsMessage(std::string_view bytes)
{
    const Variant parameters{g_variant_ref_sink(g_variant_new_from_data(
        G_VARIANT_TYPE("(sa{sv})"), bytes.data(), bytes.size(), false, nullptr, nullptr))};
    take(parameters.get());
}

void readAsText(std::string_view bytes)
{
    if (bytes.empty() || !g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), nullptr))
        return;
    if (auto* parsed
        = g_variant_parse(nullptr, bytes.data(), bytes.data() + bytes.size(), nullptr, nullptr))
        take(Variant{parsed}.get());
}

void readAsAddress(std::string_view bytes)
{
    const auto id = desktopIDOf(bytes);
    expect(!id || (!id->empty() && id->size() <= LauncherUpdate::kLongestID));
    expect(!id || g_utf8_validate(id->data(), static_cast<gssize>(id->size()), nullptr));
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    readAsMessage(bytes);
    readAsText(bytes);
    readAsAddress(bytes);
    return 0;
}
