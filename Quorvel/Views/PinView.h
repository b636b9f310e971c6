#pragma once

#include <functional>
#include <string>

#include "Quorvel/Core/PinStates.h"
#include "Quorvel/Views/RowItem.h"

namespace quorvel {

class Text;

/// What the bar shows for a pinned application that has no window here.
struct PinData {
    std::string bundleID;
    std::string name;
    Image icon;
    bool isLaunching = false; ///< it was started, but has no window yet
    PinState state;

    friend bool operator==(const PinData&, const PinData&) = default;
};

/// The chip of a pinned application without a window.
class PinView final : public RowItem {
public:
    PinView(const Palette& palette, const BarMetrics& metrics, const Text& text)
        : RowItem(palette, metrics)
        , m_text(text)
    {
    }

    const PinData& pin() const { return m_pin; }
    std::string bundleID() const override { return m_pin.bundleID; }
    void setPin(const PinData& pin) { set(m_pin, pin); }
    void setLaunching(bool isLaunching) { set(m_pin.isLaunching, isLaunching); }
    /// It is dragged off the bar: dropped there, it is one no longer.
    void setLeaving(bool isLeaving) { set(m_isLeaving, isLeaving); }
    void setPulse(double strength) override;
    bool asksForAttention() const override { return m_pin.state.wantsAttention; }

    std::function<void(const PinView&, std::vector<std::string> paths)> onFilesDropped;

    void filesDropped(const std::vector<std::string>& paths) override;

    std::string accessibleID() const override { return "pin-" + m_pin.bundleID; }
    AccessibleState accessibleState() const override;
    std::string tooltip() const override { return m_pin.name; }

private:
    void paintItem(Canvas&) const override;
    void paintMarks(Canvas&, const Rect& icon) const;

    const Text& m_text;
    PinData m_pin;
    bool m_isLeaving = false;
    double m_pulse = 0;
};

}
