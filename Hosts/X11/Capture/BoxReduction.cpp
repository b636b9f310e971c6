#include "Hosts/X11/Capture/BoxReduction.h"

#include <algorithm>
#include <cstddef>

namespace quorvel::xdg::x11 {

namespace {

int share(int index, int source, int target)
{
    return static_cast<int>(static_cast<std::int64_t>(index) * source / target);
}

}

BoxReduction::BoxReduction(Measures source, Target target)
    : m_source(source)
    , m_target(target)
    , m_sums(static_cast<std::size_t>(target.size.width))
{
}

int BoxReduction::columnStart(int x) const
{
    return share(x, m_source.width, m_target.size.width);
}

int BoxReduction::rowStart(int y) const
{
    return share(y, m_source.height, m_target.size.height);
}

void BoxReduction::addRow(std::span<const std::uint32_t> pixels)
{
    if (isComplete() || pixels.size() < static_cast<std::size_t>(m_source.width))
        return;
    const auto* pixel = pixels.data();
    for (int x = 0; x < m_target.size.width; ++x) {
        auto& sums = m_sums[static_cast<std::size_t>(x)];
        for (const auto* end = pixels.data() + columnStart(x + 1); pixel != end; ++pixel) {
            for (unsigned channel = 0; channel < sums.size(); ++channel)
                sums[channel] += *pixel >> 8 * channel & 0xFF;
        }
    }
    if (++m_nextRow == rowStart(m_row + 1))
        writeRow();
}

void BoxReduction::writeRow()
{
    auto* out = reinterpret_cast<std::uint32_t*>(
        m_target.data + static_cast<std::ptrdiff_t>(m_row) * m_target.stride);
    const auto rows = static_cast<std::uint32_t>(rowStart(m_row + 1) - rowStart(m_row));
    for (int x = 0; x < m_target.size.width; ++x) {
        auto& sums = m_sums[static_cast<std::size_t>(x)];
        const auto count = rows * static_cast<std::uint32_t>(columnStart(x + 1) - columnStart(x));
        std::uint32_t value = 0;
        for (unsigned channel = 0; channel < sums.size(); ++channel)
            value |= (sums[channel] + count / 2) / count << 8 * channel;
        out[x] = value;
        sums = {};
    }
    ++m_row;
}

}
