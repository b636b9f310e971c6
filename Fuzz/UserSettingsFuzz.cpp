#include <algorithm>
#include <string>
#include <string_view>

#include "Quorvel/Core/UserSettingsCoding.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel;

/// What has been understood is written so that it is understood the same way.
void readAsFile(std::string_view bytes)
{
    const auto data = decodeUserSettings(bytes, {});
    if (!data)
        return;
    const auto written = encodeUserSettings(*data);
    expect(decodeUserSettings(written, {}) == data);
    expect(decodeUserSettings(reviseUserSettings("{}", {}, *data).value_or(""), {}) == data);
}

/// A value that is refused leaves everything as it was.
void readAsAssignment(std::string_view bytes)
{
    const auto equals = std::min(bytes.find('='), bytes.size());
    const auto name = bytes.substr(0, equals);
    const UserSettingsData before;
    auto data = before;
    const bool isSet
        = decodeUserSetting(data, name, bytes.substr(std::min(equals + 1, bytes.size())));
    expect(isSet || data == before);
    expect(!isSet || encodeUserSetting(data, name).has_value());
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    readAsFile(bytes);
    readAsAssignment(bytes);
    return 0;
}
