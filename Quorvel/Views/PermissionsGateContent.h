#pragma once

#include <functional>
#include <string>

#include "Quorvel/Core/LaunchPermissionsState.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Views/Kit/MeasuredView.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

class PermissionRequirementRow;
class PermissionsGateFooter;
class PermissionsGateSection;
class ScrollView;
class Text;

/// All that is in the window which asks for the permissions. Main thread.
class PermissionsGateContent final : public View {
public:
    static constexpr double kWidth = 584;

    /// Text and dispatch outlive it. The bundle identifier is the one that the system knows the
    /// program by; empty: it has none.
    PermissionsGateContent(const Text&, const std::string& bundleIdentifier, Dispatch&);
    ~PermissionsGateContent() override;

    std::function<void()> onContinue;
    std::function<void()> onQuit;

    PermissionRequirementRow& accessibilityRow() { return *m_accessibility; }
    PermissionRequirementRow& screenRecordingRow() { return *m_screenRecording; }
    void setState(const LaunchPermissionsState&);
    void setAppearance(const Appearance&);
    void flashScroller();
    /// With less height, all but the buttons at the end scrolls.
    Size idealSize() const;

    /// The button for the next step.
    View* preferredKeyView() override;
    bool keyPressed(const KeyEvent&) override;
    bool takesPointer() const override { return true; }
    bool isAccessible() const override { return true; }
    bool takesKeyboard() const override { return false; }
    std::string accessibleID() const override { return "permissions"; }
    AccessibleState accessibleState() const override;

private:
    bool isColumn() const override { return true; }
    void layout() override;
    void paint(Canvas&) const override;
    double footerRoom(double width) const;
    void addRequirements(const Text&);
    void addNotes(const Text&, const std::string& bundleIdentifier);

    Palette m_palette; ///< the views below point at it
    ScrollView* m_scroll = nullptr;
    PermissionsGateSection* m_required = nullptr;
    PermissionRequirementRow* m_accessibility = nullptr;
    PermissionRequirementRow* m_screenRecording = nullptr;
    PermissionsGateSection* m_notes = nullptr;
    PermissionsGateFooter* m_footer = nullptr;
};

}
