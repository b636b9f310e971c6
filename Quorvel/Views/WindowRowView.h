#pragma once

#include <functional>
#include <optional>
#include <string>

#include "Quorvel/Core/WindowFinder.h"
#include "Quorvel/Platform/ScreenCapture.h"
#include "Quorvel/Views/SelectableRowView.h"

namespace quorvel {

/// A window in the list of all windows: its picture, or its application's icon while there is none,
/// its title, and below it the application and the space. Main thread.
class WindowRowView final : public SelectableRowView {
public:
    static constexpr double kHeight = 56; ///< points
    /// The room for a picture, in points.
    static constexpr Size kPicture{72, 45};

    explicit WindowRowView(const Palette& palette) : SelectableRowView(palette) { }

    const FoundWindow& window() const { return m_window; }
    void setWindow(const FoundWindow&, std::string spaceName, std::optional<AccessiblePosition>);
    void setPicture(std::optional<WindowPicture>);
    void setRightToLeft(bool);

    std::function<void(WindowID)> onTapped;
    std::function<void(WindowID)> onCloseRequested;
    /// Beside this rectangle, in the root's coordinates.
    std::function<void(WindowID, const Rect& anchor)> onMenu;

    bool takesPointer() const override { return true; }
    void pointerPressed(const PointerPress&) override { setPressed(true); }
    void released(PointerButton, bool isInside) override;
    void showContextMenu() override;
    void showContextMenuAt(Point) override;

    bool isAccessible() const override { return true; }
    std::string accessibleID() const override;
    AccessibleState accessibleState() const override;
    bool performAccessibleAction(std::size_t) override;

private:
    void selectionDidChange() override { invalidate(); }
    void paint(Canvas&) const override;
    void paintPicture(Canvas&, const Rect& room) const;
    const std::string& title() const;
    /// The application and the space, as far as they say more than the title.
    std::string detail() const;
    Rect placed(Rect) const;

    FoundWindow m_window;
    std::string m_spaceName;
    std::optional<AccessiblePosition> m_position;
    std::optional<WindowPicture> m_picture;
    bool m_isRightToLeft = false;
};

}
