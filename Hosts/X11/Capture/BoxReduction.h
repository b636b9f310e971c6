#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace quorvel::xdg::x11 {

/// Shrinks a picture row by row as it arrives. Each pixel of the result is the average of those it
/// replaces, so that thin lines fade rather than break up. Only the result is ever in memory as a
/// whole. Pixels have 32 bits, with colours premultiplied by alpha.
class BoxReduction {
public:
    struct Measures {
        int width = 0;
        int height = 0;
    };
    /// Where the result is written.
    struct Target {
        Measures size; ///< at most that of the source, at least one pixel
        std::uint8_t* data = nullptr;
        int stride = 0; ///< bytes
    };

    BoxReduction(Measures source, Target);

    /// From top to bottom; rows beyond the last are ignored.
    void addRow(std::span<const std::uint32_t>);
    bool isComplete() const { return m_nextRow == m_source.height; }

private:
    using Sums = std::array<std::uint32_t, 4>;

    int columnStart(int x) const;
    int rowStart(int y) const;
    void writeRow();

    const Measures m_source;
    const Target m_target;
    std::vector<Sums> m_sums;
    int m_nextRow = 0; ///< of the source
    int m_row = 0; ///< of the result
};

}
