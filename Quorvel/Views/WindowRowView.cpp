#include "Quorvel/Views/WindowRowView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Mirrored.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct WindowRowViewStyle {
    static constexpr double inset = 8;
    static constexpr double gap = 10; ///< between picture and texts
    static constexpr double pictureRadius = 4;
    static constexpr double largeIcon = 32; ///< where there is no picture
    static constexpr double smallIcon = 20; ///< in the corner of a picture
    static constexpr double overhang = 3; ///< of the small icon over the picture's edges
    static constexpr double minimizedOpacity = 0.6;
    static constexpr double titleSize = 13;
    static constexpr double titleTop = 10;
    static constexpr double titleHeight = 18;
    static constexpr double detailSize = 11;
    static constexpr double detailHeight = 16;
};

}

void WindowRowView::setWindow(
    const FoundWindow& window, std::string spaceName, std::optional<AccessiblePosition> position)
{
    if (window.chip.id != m_window.chip.id)
        rowWillChange();
    m_position = position;
    if (window == m_window && spaceName == m_spaceName)
        return;
    m_window = window;
    m_spaceName = std::move(spaceName);
    invalidate();
}

void WindowRowView::setPicture(std::optional<WindowPicture> picture)
{
    bool isSame = picture.has_value() == m_picture.has_value()
        && (!picture || picture->image == m_picture->image);
    if (isSame)
        return;
    m_picture = std::move(picture);
    invalidate();
}

void WindowRowView::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) != isRightToLeft)
        invalidate();
}

// MARK: What it looks like

const std::string& WindowRowView::title() const
{
    auto& chip = m_window.chip;
    return chip.windowTitle.empty() ? chip.appName : chip.windowTitle;
}

std::string WindowRowView::detail() const
{
    auto& chip = m_window.chip;
    std::string text = chip.windowTitle.empty() ? "" : chip.appName;
    for (auto& part : {m_spaceName, chip.isMinimized ? tr("Minimised") : std::string{}}) {
        if (part.empty())
            continue;
        if (!text.empty())
            text += " \u00B7 ";
        text += part;
    }
    return text;
}

Rect WindowRowView::placed(Rect rect) const
{
    return m_isRightToLeft ? mirrored(rect, bounds().width) : rect;
}

void WindowRowView::paint(Canvas& canvas) const
{
    SelectableRowView::paint(canvas);
    using Style = WindowRowViewStyle;
    paintPicture(canvas,
        {Style::inset, std::round((kHeight - kPicture.height) / 2), kPicture.width,
            kPicture.height});
    double left = Style::inset + kPicture.width + Style::gap;
    double width = std::max(0.0, bounds().width - left - Style::inset);
    bool isLit = looksSelected();
    auto lines = detail();
    double top = lines.empty() ? std::round((kHeight - Style::titleHeight) / 2) : Style::titleTop;
    canvas.drawText(title(), placed({left, top, width, Style::titleHeight}),
        {.size = Style::titleSize, .color = isLit ? palette().highlightedText : palette().text});
    if (!lines.empty())
        canvas.drawText(lines, placed({left, top + Style::titleHeight, width, Style::detailHeight}),
            {.size = Style::detailSize,
                .color = isLit ? palette().highlightedText : palette().quietText});
}

void WindowRowView::paintPicture(Canvas& canvas, const Rect& room) const
{
    using Style = WindowRowViewStyle;
    auto& icon = m_window.chip.icon;
    bool isDim = m_window.chip.isMinimized;
    if (isDim)
        canvas.beginOpacity(Style::minimizedOpacity);
    if (!m_picture || !(m_picture->size.width > 0) || !(m_picture->size.height > 0)) {
        if (icon)
            canvas.drawImage(icon, placed(room).centred({Style::largeIcon, Style::largeIcon}));
    } else {
        double factor = std::min(
            {1.0, room.width / m_picture->size.width, room.height / m_picture->size.height});
        auto picture = placed(room).centred(
            {m_picture->size.width * factor, m_picture->size.height * factor});
        canvas.save();
        canvas.clipRounded(picture, Style::pictureRadius);
        canvas.drawImage(m_picture->image, picture);
        canvas.restore();
        canvas.strokeRounded(picture, Style::pictureRadius, 1, palette().line);
        double x = m_isRightToLeft ? picture.x - Style::overhang
                                   : picture.maxX() + Style::overhang - Style::smallIcon;
        if (icon)
            canvas.drawImage(icon,
                {x, picture.maxY() + Style::overhang - Style::smallIcon, Style::smallIcon,
                    Style::smallIcon});
    }
    if (isDim)
        canvas.endOpacity();
}

// MARK: The pointer

void WindowRowView::released(PointerButton button, bool isInside)
{
    bool wasPressed = isPressed();
    setPressed(false);
    auto& clicked = button == PointerButton::middle ? onCloseRequested : onTapped;
    if (wasPressed && isInside && clicked)
        clicked(m_window.chip.id);
}

void WindowRowView::showContextMenuAt(Point at)
{
    if (onMenu)
        onMenu(m_window.chip.id, {at.x, at.y, 1, 1});
}

void WindowRowView::showContextMenu()
{
    if (onMenu)
        onMenu(m_window.chip.id, frameInRoot());
}

// MARK: For assistive programs

std::string WindowRowView::accessibleID() const
{
    return displayItemID(m_window.chip.id);
}

AccessibleState WindowRowView::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::listItem;
    state.name = title();
    auto& chip = m_window.chip;
    auto say = [&](const std::string& more) {
        if (!more.empty())
            state.name += ", " + more;
    };
    if (!chip.windowTitle.empty())
        say(chip.appName);
    say(m_spaceName);
    if (chip.isMinimized)
        say(tr("minimised"));
    if (chip.wantsAttention)
        say(tr("wants attention"));
    state.isSelected = isSelected();
    state.actions = {tr("Activate"), tr("Close"), tr("Show Menu")};
    state.menuAction = 2;
    state.position = m_position;
    return state;
}

bool WindowRowView::performAccessibleAction(std::size_t action)
{
    auto window = m_window.chip.id;
    if (action == 0 && onTapped)
        onTapped(window);
    else if (action == 1 && onCloseRequested)
        onCloseRequested(window);
    else if (action == 2)
        showContextMenu();
    return action <= 2;
}

}
