#include "Quorvel/Views/ChipsRow.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorvel {

ChipsRow::ChipsRow(const BarMetrics& metrics, const Text& text, Dispatch& dispatch)
    : m_metrics(metrics)
    , m_text(text)
    , m_pulse(dispatch, [this](double strength) {
        for (auto& id : m_asking)
            m_chips.at(id)->setPulse(strength);
    })
{
}

void ChipsRow::setItems(const std::vector<DisplayItem>& items)
{
    bool hasNew = updateChips(items);
    auto slots = wantedSlots();
    if (!hasNew && slots == m_slots)
        return;
    m_slots = std::move(slots);
    layout();
}

bool ChipsRow::updateChips(const std::vector<DisplayItem>& items)
{
    std::set<std::string> present;
    std::set<std::string> asking;
    bool hasNew = false;
    m_order.clear();
    for (auto& item : items) {
        auto id = displayItemID(item);
        auto known = m_chips.find(id);
        hasNew |= known == m_chips.end();
        auto& chip = known == m_chips.end() ? makeChip(id) : *known->second;
        chip.setItem(item);
        if (wantsAttention(item))
            asking.insert(id);
        present.insert(id);
        m_order.push_back(std::move(id));
    }
    std::erase_if(m_chips, [&](auto& entry) {
        if (present.contains(entry.first))
            return false;
        removeChild(*entry.second);
        return true;
    });
    updatePulse(std::move(asking));
    return hasNew;
}

void ChipsRow::updatePulse(std::set<std::string> asking)
{
    bool hasNew = !std::includes(m_asking.begin(), m_asking.end(), asking.begin(), asking.end());
    m_asking = std::move(asking);
    if (m_asking.empty())
        m_pulse.stop();
    else if (hasNew)
        m_pulse.start(m_reducesMotion);
}

ChipView& ChipsRow::makeChip(const std::string& id)
{
    auto& chip = addChild(std::make_unique<ChipView>(m_metrics, m_text));
    chip.setDark(m_isDark);
    chip.setRightToLeft(m_isRightToLeft);
    chip.onClick = [this](const ChipView& clicked, ChipView::Click click) {
        if (onChipClick)
            onChipClick(clicked, click);
    };
    m_chips.emplace(id, &chip);
    return chip;
}

std::vector<std::string> ChipsRow::wantedSlots() const
{
    if (!m_isHeld)
        return m_order;
    auto slots = m_slots;
    // The empty slots at the end are in nobody's way.
    while (!slots.empty() && !m_chips.contains(slots.back()))
        slots.pop_back();
    for (auto& id : m_order) {
        if (std::find(slots.begin(), slots.end(), id) == slots.end())
            slots.push_back(id);
    }
    return slots;
}

void ChipsRow::pointerExited()
{
    m_isHeld = false;
    m_slots = m_order;
    layout();
}

void ChipsRow::setDark(bool isDark)
{
    m_isDark = isDark;
    for (auto& [id, chip] : m_chips)
        chip->setDark(isDark);
}

void ChipsRow::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) == isRightToLeft)
        return;
    for (auto& [id, chip] : m_chips)
        chip->setRightToLeft(isRightToLeft);
    layout();
}

void ChipsRow::layout()
{
    if (m_slots.empty())
        return;
    auto count = static_cast<double>(m_slots.size());
    double room
        = std::floor((bounds().width + m_metrics.chipSpacing) / count - m_metrics.chipSpacing);
    if (!m_isHeld || m_chipWidth > room)
        m_chipWidth
            = std::clamp(room, ChipView::iconWidth(m_metrics), ChipView::fullWidth(m_metrics));
    double width = m_chipWidth;
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
