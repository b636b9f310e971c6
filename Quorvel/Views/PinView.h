#pragma once

#include <functional>
#include <string>

#include "Quorvel/Views/RowItem.h"

namespace quorvel {

/// What the bar shows for a pinned application that has no window here.
struct PinData {
    std::string bundleID;
    std::string name;
    Image icon;
    bool isLaunching = false; ///< it was started, but has no window yet

    friend bool operator==(const PinData&, const PinData&) = default;
};

/// The chip of a pinned application without a window.
class PinView final : public RowItem {
public:
    PinView(const Palette& palette, const BarMetrics& metrics) : RowItem(palette, metrics) { }

    const PinData& pin() const { return m_pin; }
    std::string bundleID() const override { return m_pin.bundleID; }
    void setPin(const PinData& pin) { set(m_pin, pin); }
    void setLaunching(bool isLaunching) { set(m_pin.isLaunching, isLaunching); }

    std::function<void(const PinView&, std::vector<std::string> paths)> onFilesDropped;

    void filesDropped(const std::vector<std::string>& paths) override;

    std::string accessibleID() const override { return "pin-" + m_pin.bundleID; }
    AccessibleState accessibleState() const override;

private:
    void paintItem(Canvas&) const override;

    PinData m_pin;
};

}
