#include <string_view>

#include "Quorvel/Core/SettingsCoding.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel;

}

/// What has been understood is written so that it is understood the same way, in one line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view line{reinterpret_cast<const char*>(data), size};
    if (const auto request = decodeSettingsRequest(line)) {
        const auto written = encodeSettingsRequest(*request);
        expect(written.find('\n') == std::string::npos);
        expect(decodeSettingsRequest(written) == request);
    }
    if (const auto news = decodeSettingsNews(line)) {
        const auto written = encodeSettingsNews(*news);
        expect(written.find('\n') == std::string::npos);
        expect(decodeSettingsNews(written) == news);
    }
    return 0;
}
