#pragma once

#include "Quorvel/Views/ChipsRow.h"

namespace quorvel {

/// Where pins and chips are seen.
class ChipsRow::Items final : public View {
public:
    // What is dragged may be anywhere on the bar.
    static constexpr Rect kAnywhere{-1e6, -1e6, 2e6, 2e6};

    /// One of them is dragged out, above everything else.
    void setFree(bool isFree) { m_isFree = isFree; }

private:
    bool clipsChildren() const override { return true; }
    bool isLifted() const override { return m_isFree; }
    Rect paintFrame() const override { return m_isFree ? kAnywhere : frame(); }

    bool m_isFree = false;
};

}
