#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Platform/ScreenCapture.h"
#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// One window in a popup: its title, its picture, and a button that closes it.
class ThumbnailCard final : public ButtonView {
public:
    ThumbnailCard(const Palette&, Size pictureSize);

    static Size sizeFor(Size picture, std::size_t titleLines = 1);
    /// A card's title has this much room beside a picture of this width.
    static double titleWidth(double pictureWidth);
    /// What it is measured by.
    static TextStyle titleStyle();

    const ChipData& chip() const { return m_chip; }
    void setChip(const ChipData& chip) { set(m_chip, chip); }
    void setPicture(std::optional<WindowPicture>);
    /// The title in several lines; empty: it stands in one.
    void setTitleLines(const std::vector<std::string>&);
    void setRightToLeft(bool);
    Rect closeButtonFrame() const;

    std::function<void(bool isHovered)> onHovered;
    std::function<void()> onCloseTapped;
    /// Wants a menu beside that place, in the root view's coordinates.
    std::function<void(WindowID, const Rect&)> onMenuRequested;

    void pointerEntered() override;
    void pointerExited() override;
    std::string accessibleID() const override;
    AccessibleState accessibleState() const override;
    bool performAccessibleAction(std::size_t) override;
    void showContextMenu() override;
    void showContextMenuAt(Point) override;

private:
    void paint(Canvas&) const override;
    void layout() override;
    Rect pictureFrame() const;
    Rect titleFrame() const;
    double headerHeight() const;
    void paintTitle(Canvas&) const;
    void paintPicture(Canvas&) const;
    Rect iconFrame() const;
    Rect mirrored(Rect) const;

    Size m_pictureSize;
    ChipData m_chip;
    std::vector<std::string> m_titleLines;
    std::optional<WindowPicture> m_picture;
    bool m_isRightToLeft = false;
    ButtonView* m_closeButton;
};

}
