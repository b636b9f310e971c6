#pragma once

#include <functional>
#include <string>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Views/DragSource.h"
#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// What the bar shows of a pinned application that has no window here.
struct PinData {
    std::string bundleID;
    std::string name;
    Image icon;
    bool isLaunching = false; ///< it was started, and has no window yet

    friend bool operator==(const PinData&, const PinData&) = default;
};

/// The chip of a pinned application without a window.
class PinView final : public ButtonView {
public:
    explicit PinView(const BarMetrics& metrics) : m_metrics(metrics) { }

    const PinData& pin() const { return m_pin; }
    void setPin(const PinData& pin) { set(m_pin, pin); }
    void setLaunching(bool isLaunching) { set(m_pin.isLaunching, isLaunching); }
    /// It follows the pointer, above the others.
    void setLifted(bool isLifted) { set(m_isLifted, isLifted); }

    DragSource drag;
    std::function<void(const PinView&, std::vector<std::string> paths)> onFilesDropped;

    void pressed(PointerButton) override;
    void dragged(const DragMove&) override;
    void released(PointerButton, bool isInside) override;
    void pressCancelled() override;
    bool isDragged() const override { return drag.isDragging(); }

    bool takesFiles() const override { return true; }
    void filesEntered() override { set(m_hasFilesOver, true); }
    void filesExited() override { set(m_hasFilesOver, false); }
    void filesDropped(const std::vector<std::string>& paths) override;

    std::string accessibleID() const override { return "pin-" + m_pin.bundleID; }
    AccessibleState accessibleState() const override;

private:
    bool isLifted() const override { return m_isLifted; }
    void paint(Canvas&) const override;

    BarMetrics m_metrics;
    PinData m_pin;
    bool m_isLifted = false;
    bool m_hasFilesOver = false;
};

}
