#include <cstdint>
#include <string_view>

#include "Quorvel/Core/RememberedOrderCoding.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel;

/// An index that is kept leads to a window.
bool isSound(const RememberedSpace& space)
{
    for (auto& item : space.order) {
        auto* index = std::get_if<std::size_t>(&item);
        if (index && *index >= space.windows.size())
            return false;
    }
    return space.windows.size() <= OrderLimits::windows;
}

}

/// What has been understood is written so that it is understood the same way.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    const auto text = rememberedText(bytes);
    expect(text.size() <= OrderLimits::textBytes && rememberedText(text) == text);
    const auto orders = decodeOrders(bytes);
    if (!orders)
        return 0;
    for (auto& order : *orders) {
        for (auto& space : order.spaces)
            expect(isSound(space));
    }
    expect(decodeOrders(encodeOrders(*orders)) == orders);
    return 0;
}
