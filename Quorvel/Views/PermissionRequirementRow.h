#pragma once

#include <functional>
#include <string>

#include "Quorvel/Views/Kit/MeasuredView.h"

namespace quorvel {

class LabelView;
class PushButton;
class StatusBadge;
class Text;
struct Palette;

/// A permission: what it is for, whether it is granted, and how to grant it. Main thread.
class PermissionRequirementRow final : public MeasuredView {
public:
    struct Requirement {
        Symbol icon{};
        std::string title;
        std::string description;
        std::string helpText; ///< where the user finds it
    };
    /// Text and palette outlive it.
    PermissionRequirementRow(const Text&, const Palette&, Requirement);

    std::function<void()> requestAction;
    std::function<void()> openSettingsAction;

    void setGranted(bool);
    bool isGranted() const { return m_isGranted; }
    PushButton& requestButton() { return *m_request; }

    double heightFor(double width) const override;
    void appearanceDidChange(bool isRightToLeft) override;

    bool isAccessible() const override { return true; }
    bool takesKeyboard() const override { return false; } // its buttons do
    std::string accessibleID() const override { return m_requirement.title; }
    AccessibleState accessibleState() const override;

private:
    struct Layout {
        Rect tile;
        Rect title;
        Rect badge;
        Rect description;
        Rect help;
        Rect request;
        Rect openSettings;
        double height = 0;
    };

    bool isColumn() const override { return true; }
    void layout() override;
    void paint(Canvas&) const override;
    Layout layoutFor(double width) const;

    const Palette& m_palette;
    const Requirement m_requirement;
    bool m_isGranted = false;
    bool m_isRightToLeft = false;
    Rect m_tile;
    LabelView* m_title;
    StatusBadge* m_badge;
    LabelView* m_description;
    LabelView* m_help;
    PushButton* m_request;
    PushButton* m_openSettings;
};

}
