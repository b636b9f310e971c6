#pragma once

#include <functional>
#include <optional>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Platform/ScreenCapture.h"
#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// One window in a popup: its title, its picture, and a button that closes it.
class ThumbnailCard final : public ButtonView {
public:
    ThumbnailCard(const Palette&, Size pictureSize);

    static Size sizeFor(Size picture);

    const ChipData& chip() const { return m_chip; }
    void setChip(const ChipData& chip) { set(m_chip, chip); }
    void setPicture(std::optional<WindowPicture>);
    void setRightToLeft(bool);
    Rect closeButtonFrame() const;

    std::function<void(WindowID)> onCloseTapped;
    std::function<void(WindowID)> onMiddleTapped;

    std::string accessibleID() const override;
    AccessibleState accessibleState() const override;
    bool performAccessibleAction(std::size_t) override;

private:
    void clicked(PointerButton) override;
    void paint(Canvas&) const override;
    void layout() override;
    Rect pictureFrame() const;
    Rect titleFrame() const;
    Rect iconFrame() const;
    Rect mirrored(Rect) const;

    Size m_pictureSize;
    ChipData m_chip;
    std::optional<WindowPicture> m_picture;
    bool m_isRightToLeft = false;
    ButtonView* m_closeButton;
};

}
