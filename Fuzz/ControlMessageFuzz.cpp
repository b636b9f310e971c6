#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Posix/ControlMessage.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel;
using namespace quorvel::posix;

constexpr std::size_t kLongest = 64;

/// Calls with pieces of the given length, in order.
template <typename Take> void inPieces(std::string_view bytes, std::size_t length, Take take)
{
    for (; !bytes.empty(); bytes.remove_prefix(std::min(length, bytes.size())))
        take(bytes.substr(0, length));
}

std::vector<std::string> linesOf(std::string_view bytes, std::size_t length)
{
    LineReader reader{kLongest};
    std::vector<std::string> lines;
    inPieces(bytes, length, [&](auto piece) {
        reader.add(piece);
        while (auto line = reader.next())
            lines.push_back(std::move(*line));
    });
    return lines;
}

/// Everything up to the first line that is too long.
std::vector<std::string> linesByHand(std::string_view bytes)
{
    std::vector<std::string> lines;
    for (auto end = bytes.find('\n'); end <= kLongest; end = bytes.find('\n')) {
        lines.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(end + 1);
    }
    return lines;
}

void expectMessage(std::string_view bytes, std::size_t length)
{
    MessageReader reader{kLongest};
    auto state = MessageReader::State::incomplete;
    std::string_view added;
    inPieces(bytes, length, [&](auto piece) {
        if (state != MessageReader::State::incomplete)
            return;
        state = reader.add(piece);
        added = bytes.substr(0, added.size() + piece.size());
    });
    const auto end = added.find('\n');
    if (state == MessageReader::State::complete)
        expect(end + 1 == added.size() && reader.message() == added.substr(0, end));
    else if (state == MessageReader::State::incomplete)
        expect(end == std::string_view::npos && added.size() <= kLongest);
    else
        expect(added.size() > kLongest || end + 1 < added.size());
}

}

// However a stream is cut, the same lines come out of it; what has been understood is written so
// that it is understood the same way, in one line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    const std::size_t length = size == 0 ? 1 : 1 + data[0] % 16;
    expect(linesOf(bytes, length) == linesByHand(bytes));
    expectMessage(bytes, length);
    if (const auto request = decodeRequest(bytes)) {
        const auto written = encodeRequest(*request);
        expect(written.find('\n') + 1 == written.size());
        expect(decodeRequest(written) == request);
    }
    if (const auto reply = decodeReply(bytes)) {
        const auto written = encodeReply(*reply);
        expect(written.find('\n') + 1 == written.size());
        expect(encodeReply(*decodeReply(written)) == written);
    }
    return 0;
}
