#include "Quorvel/Views/ChipView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Platform/Text.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/ItemMarks.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct ChipViewStyle {
    static constexpr double minimizedOpacity = 0.5;
    static constexpr double leastTitleWidth
        = 2.8; ///< of the text's size: some letters and an ellipsis
    static constexpr double focusMarkHeight = 2;
    static constexpr double focusMarkWidth = 0.4; ///< share of the chip's width
    static constexpr double edgeWidth = 1;
    static constexpr double countHeight = 0.52; ///< share of the chip's height
    static constexpr double newsSize = 0.3; ///< share of the icon's size
    static constexpr double newsEdge = 1.5; ///< between the dot and what it lies on
};

/// What both kinds of item have under the same name.
template <typename Member> decltype(auto) fieldOf(const DisplayItem& item, Member member)
{
    return std::visit([&](auto& data) -> decltype(auto) { return member(data); }, item);
}

bool isMinimized(const DisplayItem& item)
{
    return fieldOf(item, [](auto& data) { return data.isMinimized; });
}

/// Text sizes follow the chip's height, as the rest of the metrics do.
double titleSize(const BarMetrics& metrics)
{
    return metrics.chipHeight * 0.45;
}

}

double ChipView::fullWidth(const BarMetrics& metrics)
{
    return iconWidth(metrics) + metrics.iconTextSpacing + metrics.titleMaxWidth;
}

double ChipView::iconWidth(const BarMetrics& metrics)
{
    return 2 * metrics.chipHorizontalPadding + metrics.iconSize;
}

double ChipView::leastTitledWidth() const
{
    double count = countWidth();
    return iconWidth(metrics()) + metrics().iconTextSpacing
        + (count > 0 ? count + metrics().iconTextSpacing : 0)
        + titleSize(metrics()) * ChipViewStyle::leastTitleWidth;
}

std::string ChipView::bundleID() const
{
    return std::visit([](auto& data) { return data.bundleIdentifier; }, m_item).value_or("");
}

void ChipView::setItem(const DisplayItem& item)
{
    if (item == m_item)
        return;
    m_item = item;
    invalidate();
}

void ChipView::setPulse(double strength)
{
    if (std::exchange(m_pulse, strength) != strength && wantsAttention(m_item))
        invalidate();
}

// MARK: The pointer

void ChipView::pointerEntered()
{
    RowItem::pointerEntered();
    if (onHover)
        onHover(*this, true);
}

void ChipView::pointerExited()
{
    RowItem::pointerExited();
    if (onHover)
        onHover(*this, false);
}

// MARK: For screen readers and the keyboard

AccessibleState ChipView::accessibleState() const
{
    auto* group = std::get_if<GroupedChipData>(&m_item);
    AccessibleState state{.role = AccessibleRole::toggleButton,
        .name = fieldOf(m_item, [](auto& data) { return data.appName; }),
        .progress = fieldOf(m_item, [](auto& data) { return data.progress; }),
        .isSelected = isFocused(m_item),
        .hasKeyFocus = hasKeyFocus(),
        .actions = {tr("Activate"), tr("Show Menu"), tr("Close")},
        .menuAction = 1};
    auto* single = std::get_if<ChipData>(&m_item);
    if (single && !single->windowTitle.empty() && single->windowTitle != single->appName)
        state.name += ", " + single->windowTitle;
    if (auto badge = fieldOf(m_item, [](auto& data) { return data.badge; }))
        state.name += ", " + itemMarks::badgeText(*badge);
    if (group)
        state.name += ", "
            + trCount("{} window", "{} windows", static_cast<std::size_t>(group->windowCount));
    if (isMinimized(m_item))
        state.name += ", " + tr("minimised");
    if (isFocused(m_item))
        state.name += ", " + tr("focused");
    if (hasNews(m_item))
        state.name += ", " + tr("new title");
    if (wantsAttention(m_item))
        state.name += ", " + tr("wants attention");
    return state;
}

std::string ChipView::tooltip() const
{
    if (!m_tellsTitle)
        return {};
    TextStyle style;
    style.size = titleSize(metrics());
    auto room = parts().title.width;
    bool isWhole = m_title != Title::none && m_text.measure(title(), style).width <= room;
    return isWhole ? std::string{} : std::string{wholeTitle()};
}

// MARK: What it looks like

std::string_view ChipView::wholeTitle() const
{
    auto* group = std::get_if<GroupedChipData>(&m_item);
    auto* single = std::get_if<ChipData>(&m_item);
    auto& window = group ? group->displayTitle : single->windowTitle;
    return window.empty() ? fieldOf(m_item, [](auto& data) -> auto& { return data.appName; })
                          : window;
}

std::string_view ChipView::title() const
{
    if (m_title == Title::window)
        return wholeTitle();
    return fieldOf(m_item, [](auto& data) -> auto& { return data.appName; });
}

std::string ChipView::count() const
{
    auto* group = std::get_if<GroupedChipData>(&m_item);
    return group ? std::to_string(group->windowCount) : std::string{};
}

double ChipView::countHeight() const
{
    return metrics().chipHeight * ChipViewStyle::countHeight;
}

/// 0 for a single window.
double ChipView::countWidth() const
{
    auto text = count();
    return text.empty() ? 0 : itemMarks::pillWidth(m_text, text, countHeight());
}

Rect ChipView::badgeRect(const Rect& icon) const
{
    auto& badge = fieldOf(m_item, [](auto& data) -> auto& { return data.badge; });
    if (!badge)
        return {};
    return itemMarks::badgeRect(m_text, *badge, icon, bounds().width, metrics());
}

/// On the icon's lower leading corner: the others have the badge, or the count of a group.
Rect ChipView::newsRect(const Rect& icon) const
{
    if (!hasNews(m_item))
        return {};
    double side = std::max(5.0, std::round(metrics().iconSize * ChipViewStyle::newsSize));
    return {std::max(0.0, icon.x - side / 3), icon.maxY() - side * 2 / 3, side, side};
}

ChipView::Parts ChipView::parts() const
{
    Parts parts;
    auto face = parts.face = this->face();
    Size icon{metrics().iconSize, metrics().iconSize};
    double padding = metrics().chipHorizontalPadding;
    parts.icon = Rect{padding, face.y, icon.width, face.height}.centred(icon);

    double pill = countWidth();
    double pillHeight = countHeight();
    double left = parts.icon.maxX() + metrics().iconTextSpacing;
    double right = face.width - padding;
    if (pill > 0)
        right -= pill + metrics().iconTextSpacing;
    if (m_title != Title::none && m_hasRoomForTitle && !isOverTarget()) {
        parts.title = {left, face.y, std::max(0.0, right - left), face.height};
        parts.count = {
            face.width - padding - pill, face.y + (face.height - pillHeight) / 2, pill, pillHeight};
    } else {
        parts.icon = face.centred(icon);
        // On the icon's lower corner, as far out as the chip allows.
        parts.count = {std::min(parts.icon.maxX() + pill / 3, face.width) - pill,
            face.maxY() - pillHeight, pill, pillHeight};
    }
    if (pill == 0)
        parts.count = {};
    parts.badge = badgeRect(parts.icon);
    parts.news = newsRect(parts.icon);
    if (isRightToLeft()) {
        for (auto* part : {&parts.icon, &parts.title, &parts.count, &parts.badge, &parts.news})
            part->x = face.width - part->maxX();
    }
    double mark = face.width * ChipViewStyle::focusMarkWidth;
    parts.focusMark = {(face.width - mark) / 2, face.maxY() - ChipViewStyle::focusMarkHeight, mark,
        ChipViewStyle::focusMarkHeight};
    return parts;
}

void ChipView::paintGround(Canvas& canvas, const Parts& layout) const
{
    auto& colors = palette();
    double radius = metrics().chipCornerRadius;
    bool isFocusShown = isFocused(m_item);
    auto fill = isPressed() ? colors.pressedFill : isLit() ? colors.hoveredFill : colors.fill;
    if (isFocusShown && !isPressed())
        fill = isLit() ? colors.focusedHoveredFill : colors.focusedFill;
    canvas.fillRounded(layout.face, radius, fill);
    itemMarks::paintProgress(canvas, layout.face, radius,
        fieldOf(m_item, [](auto& data) { return data.progress; }), isRightToLeft(), colors);
    if (wantsAttention(m_item))
        itemMarks::paintAttention(canvas, layout.face, radius, m_pulse, colors);
    if (isFocusShown || isLit() || colors.hasEdges)
        canvas.strokeRounded(layout.face, radius, ChipViewStyle::edgeWidth, colors.edge);
}

/// A colour that leaves no room for quieter text.
bool ChipView::hasWash() const
{
    return wantsAttention(m_item)
        || fieldOf(m_item, [](auto& data) { return data.progress.has_value(); });
}

void ChipView::paintItem(Canvas& canvas) const
{
    auto& colors = palette();
    auto layout = parts();
    paintGround(canvas, layout);
    bool isDimmed = isMinimized(m_item);
    if (isDimmed)
        canvas.beginOpacity(ChipViewStyle::minimizedOpacity);
    canvas.drawImage(fieldOf(m_item, [](auto& data) -> auto& { return data.icon; }), layout.icon);
    if (isDimmed)
        canvas.endOpacity();
    if (!layout.title.isEmpty()) {
        canvas.drawText(title(), layout.title,
            {.size = titleSize(metrics()),
                .weight = FontWeight::regular,
                .color = isDimmed && !hasWash() ? colors.quietText : colors.text});
    }
    if (!layout.count.isEmpty())
        itemMarks::paintPill(canvas, layout.count, count(), colors.countFill, colors.text);
    if (!layout.badge.isEmpty()) {
        auto& badge = fieldOf(m_item, [](auto& data) -> auto& { return data.badge; });
        itemMarks::paintPill(canvas, layout.badge, *badge, colors.badge, colors.badgeText);
    }
    if (!layout.news.isEmpty()) {
        auto edge = layout.news.inset(-ChipViewStyle::newsEdge, -ChipViewStyle::newsEdge);
        canvas.fillRounded(edge, edge.height / 2, colors.ground);
        canvas.fillRounded(layout.news, layout.news.height / 2, colors.accent);
    }
    if (isFocused(m_item))
        canvas.fillRounded(layout.focusMark, ChipViewStyle::focusMarkHeight / 2, colors.accent);
    paintRing(canvas);
}

}
