#include <string>
#include <string_view>

#include "Quorvel/Core/LSAppInfoOutput.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel;

std::string written(const AppRecord& record)
{
    return " 1) \"x\" ASN:" + record.asn + "-\"x\":\n pid = " + std::to_string(raw(record.pid))
        + "\n bundleID=\"" + record.bundleID + "\"\n";
}

/// What has been understood is understood the same way when it is printed again.
void readAsList(std::string_view bytes)
{
    const auto records = parseListOutput(bytes);
    std::string again;
    for (auto& record : records) {
        expect(!record.bundleID.empty() && raw(record.pid) >= 0);
        again += written(record);
    }
    expect(parseListOutput(again) == records);
}

void readAsFound(std::string_view bytes)
{
    const auto serials = parseFindOutputASNs(bytes);
    std::string again;
    for (auto& serial : serials)
        again += "ASN:" + serial + "-\"x\": ";
    expect(parseFindOutputASNs(again) == serials);
}

void readAsError(std::string_view bytes)
{
    if (const auto code = parseLSAppInfoErrorCode(bytes))
        expect(parseLSAppInfoErrorCode("err=" + std::to_string(*code)) == code);
}

void readAsText(std::string_view bytes)
{
    const auto text = decodedAsUTF8(std::string{bytes});
    expect(text.empty() || text == bytes);
    // Whatever is text stays text behind other text, and a lone continuation byte spoils any.
    expect(decodedAsUTF8("\xE2\x82\xAC" + text) == "\xE2\x82\xAC" + text);
    expect(decodedAsUTF8("\x80" + text).empty());
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    readAsList(bytes);
    readAsFound(bytes);
    readAsError(bytes);
    readAsText(bytes);
    return 0;
}
