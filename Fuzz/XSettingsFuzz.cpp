#include <cmath>
#include <span>
#include <string>

#include <glib.h>

#include "Hosts/X11/XSettingsData.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

void expectText(const std::string& text)
{
    expect(text.size() <= 256);
    expect(g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr));
    expect(text.find('\n') == std::string::npos);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto looks = quorvel::xdg::x11::decodeXSettings(std::as_bytes(std::span{data, size}));
    if (!looks)
        return 0;
    expectText(looks->iconTheme);
    expectText(looks->font);
    expect(!looks->scale || (std::isfinite(*looks->scale) && *looks->scale > 0));
    return 0;
}
