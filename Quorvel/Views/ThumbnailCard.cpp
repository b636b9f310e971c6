#include "Quorvel/Views/ThumbnailCard.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct ThumbnailCardStyle {
    static constexpr double padding = 8;
    static constexpr double headerHeight = 24; ///< with one line
    static constexpr double lineHeight = 16; ///< of each further one
    static constexpr double gap = 6; ///< between header and picture
    static constexpr double iconSize = 16;
    static constexpr double titleSize = 12;
    static constexpr double radius = 8;
    static constexpr double pictureRadius = 5;
    static constexpr double closeSize = 20;
    static constexpr double largeIcon = 48; ///< where there is no picture
    static constexpr double minimizedOpacity = 0.6;
    static constexpr double focusEdge = 2;

    static double header(std::size_t titleLines)
    {
        return headerHeight
            + static_cast<double>(std::max<std::size_t>(titleLines, 1) - 1) * lineHeight;
    }
};

class CloseButton final : public ButtonView {
public:
    using ButtonView::ButtonView;

    std::string accessibleID() const override { return "close"; }
    AccessibleState accessibleState() const override
    {
        return buttonState(tr("Close"), tr("Close"));
    }

private:
    void paint(Canvas& canvas) const override
    {
        bool isLit = isHovered() || isPressed();
        if (isLit)
            canvas.fillRounded(bounds(), 5, isPressed() ? palette().badgePressed : palette().badge);
        auto ink = isLit ? palette().badgeText : palette().text;
        canvas.drawSymbol(Symbol::close, bounds().centred({10, 10}), ink);
    }
};

}

ThumbnailCard::ThumbnailCard(const Palette& palette, Size pictureSize)
    : ButtonView(palette)
    , m_pictureSize(pictureSize)
    , m_closeButton(&addChild(std::make_unique<CloseButton>(palette)))
{
    m_closeButton->onTapped = [this] {
        if (onCloseTapped)
            onCloseTapped();
    };
}

Size ThumbnailCard::sizeFor(Size picture, std::size_t titleLines)
{
    return {picture.width + 2 * ThumbnailCardStyle::padding,
        picture.height + 2 * ThumbnailCardStyle::padding + ThumbnailCardStyle::header(titleLines)
            + ThumbnailCardStyle::gap};
}

double ThumbnailCard::titleWidth(double pictureWidth)
{
    return pictureWidth - ThumbnailCardStyle::iconSize - ThumbnailCardStyle::closeSize
        - 2 * ThumbnailCardStyle::gap;
}

TextStyle ThumbnailCard::titleStyle()
{
    TextStyle style;
    style.size = ThumbnailCardStyle::titleSize;
    style.weight = FontWeight::medium;
    return style;
}

void ThumbnailCard::setTitleLines(const std::vector<std::string>& lines)
{
    set(m_titleLines, lines);
}

double ThumbnailCard::headerHeight() const
{
    return ThumbnailCardStyle::header(m_titleLines.size());
}

void ThumbnailCard::setPicture(std::optional<WindowPicture> picture)
{
    const auto before = pictureFrame();
    m_picture = std::move(picture);
    const auto now = pictureFrame();
    invalidate(before);
    if (now != before)
        invalidate(now);
}

void ThumbnailCard::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) != isRightToLeft)
        layout();
}

void ThumbnailCard::pointerEntered()
{
    ButtonView::pointerEntered();
    if (onHovered)
        onHovered(true);
}

void ThumbnailCard::pointerExited()
{
    ButtonView::pointerExited();
    if (onHovered)
        onHovered(false);
}

void ThumbnailCard::showContextMenu()
{
    if (onMenuRequested)
        onMenuRequested(m_chip.id, frameInRoot());
}

void ThumbnailCard::showContextMenuAt(Point pointer)
{
    if (onMenuRequested)
        onMenuRequested(m_chip.id, Rect::from(pointer, {1, 1}));
}

std::string ThumbnailCard::accessibleID() const
{
    return displayItemID(m_chip.id);
}

AccessibleState ThumbnailCard::accessibleState() const
{
    auto state = buttonState(
        m_chip.windowTitle.empty() ? m_chip.appName : m_chip.windowTitle, tr("Activate"));
    if (m_chip.wantsAttention)
        state.name += ", " + tr("wants attention");
    state.isSelected = m_chip.isFocused;
    state.actions.push_back(tr("Close"));
    return state;
}

bool ThumbnailCard::performAccessibleAction(std::size_t action)
{
    if (action != 1)
        return ButtonView::performAccessibleAction(action);
    if (onCloseTapped)
        onCloseTapped();
    return true;
}

Rect ThumbnailCard::mirrored(Rect rect) const
{
    if (m_isRightToLeft)
        rect.x = bounds().width - rect.maxX();
    return rect;
}

Rect ThumbnailCard::iconFrame() const
{
    return mirrored(Rect{ThumbnailCardStyle::padding, ThumbnailCardStyle::padding,
        ThumbnailCardStyle::iconSize, ThumbnailCardStyle::headerHeight}
            .centred({ThumbnailCardStyle::iconSize, ThumbnailCardStyle::iconSize}));
}

Rect ThumbnailCard::titleFrame() const
{
    double left
        = ThumbnailCardStyle::padding + ThumbnailCardStyle::iconSize + ThumbnailCardStyle::gap;
    double right = bounds().width - ThumbnailCardStyle::padding - ThumbnailCardStyle::closeSize
        - ThumbnailCardStyle::gap;
    return mirrored({left, ThumbnailCardStyle::padding, std::max(0.0, right - left),
        ThumbnailCardStyle::headerHeight});
}

Rect ThumbnailCard::closeButtonFrame() const
{
    return m_closeButton->frameInRoot();
}

void ThumbnailCard::layout()
{
    Rect slot{bounds().width - ThumbnailCardStyle::padding - ThumbnailCardStyle::closeSize,
        ThumbnailCardStyle::padding, ThumbnailCardStyle::closeSize,
        ThumbnailCardStyle::headerHeight};
    m_closeButton->setFrame(
        mirrored(slot.centred({ThumbnailCardStyle::closeSize, ThumbnailCardStyle::closeSize})));
    invalidate();
}

/// As large as it fits, in the window's own shape.
Rect ThumbnailCard::pictureFrame() const
{
    Rect room{ThumbnailCardStyle::padding,
        ThumbnailCardStyle::padding + headerHeight() + ThumbnailCardStyle::gap, m_pictureSize.width,
        m_pictureSize.height};
    if (!m_picture || m_picture->size.isEmpty())
        return room;
    auto& size = m_picture->size;
    double factor = std::min(room.width / size.width, room.height / size.height);
    return room.centred({size.width * factor, size.height * factor});
}

void ThumbnailCard::paint(Canvas& canvas) const
{
    auto& colors = palette();
    if (m_chip.isFocused)
        canvas.fillRounded(bounds(), ThumbnailCardStyle::radius, colors.cardFill);
    if (m_chip.wantsAttention)
        canvas.fillRounded(bounds(), ThumbnailCardStyle::radius, colors.attention);
    paintFace(canvas, bounds(), ThumbnailCardStyle::radius);
    canvas.drawImage(m_chip.icon, iconFrame());
    paintTitle(canvas);
    paintPicture(canvas);
}

void ThumbnailCard::paintTitle(Canvas& canvas) const
{
    auto style = titleStyle();
    style.color = palette().text;
    auto line = titleFrame();
    if (m_titleLines.empty())
        canvas.drawText(
            m_chip.windowTitle.empty() ? m_chip.appName : m_chip.windowTitle, line, style);
    for (auto& text : m_titleLines) {
        canvas.drawText(text, line, style);
        line = line.translated(0, ThumbnailCardStyle::lineHeight);
    }
}

void ThumbnailCard::paintPicture(Canvas& canvas) const
{
    auto& colors = palette();
    auto frame = pictureFrame();
    if (!m_picture || !m_picture->image) {
        canvas.fillRounded(frame, ThumbnailCardStyle::pictureRadius, colors.cardFill);
        double size = std::min(ThumbnailCardStyle::largeIcon, frame.height * 0.6);
        canvas.drawImage(m_chip.icon, frame.centred({size, size}));
        return;
    }
    if (m_chip.isMinimized)
        canvas.beginOpacity(ThumbnailCardStyle::minimizedOpacity);
    canvas.save();
    canvas.clipRounded(frame, ThumbnailCardStyle::pictureRadius);
    canvas.drawImage(m_picture->image, frame);
    canvas.restore();
    if (m_chip.isMinimized)
        canvas.endOpacity();
    canvas.strokeRounded(frame, ThumbnailCardStyle::pictureRadius, 1, colors.popupEdge);
    if (m_chip.isFocused)
        canvas.strokeRounded(
            frame, ThumbnailCardStyle::pictureRadius, ThumbnailCardStyle::focusEdge, colors.accent);
    else if (m_chip.wantsAttention)
        canvas.strokeRounded(frame, ThumbnailCardStyle::pictureRadius,
            ThumbnailCardStyle::focusEdge, colors.attentionMark);
}

}
