#include "Quorvel/Views/ChipsRow.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace quorvel {

void ChipsRow::setItems(const std::vector<DisplayItem>& items)
{
    updateChips(items);
    settle();
}

void ChipsRow::settle()
{
    auto slots = wantedSlots();
    if (slots == m_slots)
        return;
    m_slots = std::move(slots);
    layout();
}

void ChipsRow::updateChips(const std::vector<DisplayItem>& items)
{
    std::set<std::string> present;
    m_order.clear();
    for (auto& item : items) {
        auto& data = std::get<ChipData>(item);
        auto id = displayItemID(item);
        auto known = m_chips.find(id);
        auto& chip = known == m_chips.end() ? makeChip(id) : *known->second;
        chip.setData(data);
        present.insert(id);
        m_order.push_back(std::move(id));
    }
    std::erase_if(m_chips, [&](auto& entry) {
        if (present.contains(entry.first))
            return false;
        removeChild(*entry.second);
        return true;
    });
}

ChipView& ChipsRow::makeChip(const std::string& id)
{
    auto& chip = addChild(std::make_unique<ChipView>(m_metrics));
    chip.setDark(m_isDark);
    chip.onClick = [this](const ChipData& data, ChipView::Click click) {
        if (onChipClick)
            onChipClick(data, click);
    };
    m_chips.emplace(id, &chip);
    return chip;
}

std::vector<std::string> ChipsRow::wantedSlots() const
{
    if (!m_isHeld)
        return m_order;
    auto slots = m_slots;
    for (auto& id : m_order) {
        if (std::find(slots.begin(), slots.end(), id) == slots.end())
            slots.push_back(id);
    }
    return slots;
}

void ChipsRow::pointerExited()
{
    m_isHeld = false;
    settle();
}

void ChipsRow::setDark(bool isDark)
{
    m_isDark = isDark;
    for (auto& [id, chip] : m_chips)
        chip->setDark(isDark);
}

void ChipsRow::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) != isRightToLeft)
        layout();
}

void ChipsRow::layout()
{
    if (m_slots.empty())
        return;
    auto count = static_cast<double>(m_slots.size());
    double room = (bounds().width + m_metrics.chipSpacing) / count - m_metrics.chipSpacing;
    double width = std::clamp(
        std::floor(room), ChipView::iconWidth(m_metrics), ChipView::fullWidth(m_metrics));
    double x = 0;
    for (auto& id : m_slots) {
        if (auto chip = m_chips.find(id); chip != m_chips.end())
            chip->second->setFrame(
                {m_isRightToLeft ? bounds().width - x - width : x, 0, width, bounds().height});
        x += width + m_metrics.chipSpacing;
    }
    if (auto* host_ = host())
        host_->viewsDidMove();
}

std::vector<std::pair<std::string, Rect>> ChipsRow::chipFrames() const
{
    std::vector<std::pair<std::string, Rect>> frames;
    for (auto& id : m_slots) {
        if (auto chip = m_chips.find(id); chip != m_chips.end())
            frames.emplace_back(id, chip->second->frameInRoot());
    }
    return frames;
}

}
