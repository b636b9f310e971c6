#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Views/AttentionPulse.h"
#include "Quorvel/Views/ChipView.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// The row of chips. Targets hold still: while the pointer is over the row, a chip that goes leaves
/// an empty slot and a new one comes last; the row closes up when the pointer leaves. Only a row
/// without room for a new chip shrinks under the pointer.
class ChipsRow final : public View {
public:
    ChipsRow(const BarMetrics&, const Text&, Dispatch&);

    void setItems(const std::vector<DisplayItem>&);
    void setReducesMotion(bool value) { m_reducesMotion = value; }
    void setDark(bool);
    void setRightToLeft(bool);

    void pointerEntered() override { m_isHeld = true; }
    void pointerExited() override;

    std::function<void(const ChipView&, ChipView::Click)> onChipClick;

    std::vector<std::pair<std::string, Rect>> chipFrames() const;

private:
    void layout() override;
    bool clipsChildren() const override { return true; }

    /// True if a chip was made, which has no place yet.
    bool updateChips(const std::vector<DisplayItem>&);
    std::vector<std::string> wantedSlots() const;
    ChipView& makeChip(const std::string& id);
    void updatePulse(std::set<std::string> asking);

    BarMetrics m_metrics;
    const Text& m_text;
    bool m_isDark = true;
    bool m_isRightToLeft = false;
    bool m_isHeld = false;
    double m_chipWidth = 0;
    std::vector<std::string> m_order; ///< of the newest items
    std::vector<std::string> m_slots; ///< as laid out; some may be empty while held
    std::map<std::string, ChipView*> m_chips;
    bool m_reducesMotion = false;
    std::set<std::string> m_asking; ///< the chips that want attention
    AttentionPulse m_pulse;
};

}
