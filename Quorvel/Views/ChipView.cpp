#include "Quorvel/Views/ChipView.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

namespace {

struct Style {
    Color text;
    Color fill;
    Color hoveredFill;
    Color pressedFill;
    Color focusedFill;
    Color focusedHoveredFill;
    Color edge;
    Color focusMark;
    Color countFill;
    Color countText;
    Color progress;
    Color attention;

    static constexpr double minimizedOpacity = 0.5;
    static constexpr double leastTitleWidth
        = 2.8; ///< of the text's size: some letters and an ellipsis
    static constexpr double focusMarkHeight = 2;
    static constexpr double focusMarkWidth = 0.4; ///< share of the chip's width
    static constexpr double edgeWidth = 1;
    static constexpr double countHeight = 0.52; ///< share of the chip's height
    static constexpr double badgeHeight = 0.62; ///< share of the icon's size
    static constexpr double badgeOverhang = 0.3; ///< share of the badge's height
    static constexpr double badgeMaximumWidth = 2.4; ///< of the badge's height
    static constexpr double pillTextSize = 0.76; ///< share of the pill's height
    static constexpr double pillPadding = 0.3; ///< share of the pill's height
    static constexpr double attentionRest = 0.25; ///< strength at the weakest of a pulse
    static constexpr Color badge{0.88, 0.19, 0.18};
    static constexpr Color badgeText = Color::grey(1);

    static const Style& of(bool isDark);
};

constexpr Color kAccent{0.30, 0.60, 1.0};
constexpr Color kAccentOnLight{0.05, 0.42, 0.87};
constexpr Color kAttention{1.0, 0.58, 0.08};

const Style& Style::of(bool isDark)
{
    static constexpr Style dark{
        .text = Color::grey(0.93),
        .fill = Color::grey(1, 0.055),
        .hoveredFill = Color::grey(1, 0.115),
        .pressedFill = Color::grey(1, 0.075),
        .focusedFill = Color::grey(1, 0.19),
        .focusedHoveredFill = Color::grey(1, 0.24),
        .edge = Color::grey(1, 0.09),
        .focusMark = kAccent,
        .countFill = Color::grey(1, 0.16),
        .countText = Color::grey(0.93),
        .progress = kAccent.withAlpha(0.32),
        .attention = kAttention.withAlpha(0.55),
    };
    static constexpr Style light{
        .text = Color::grey(0.1),
        .fill = Color::grey(0, 0.045),
        .hoveredFill = Color::grey(0, 0.09),
        .pressedFill = Color::grey(0, 0.13),
        .focusedFill = Color::grey(1, 0.95),
        .focusedHoveredFill = Color::grey(1, 1),
        .edge = Color::grey(0, 0.10),
        .focusMark = kAccentOnLight,
        .countFill = Color::grey(0, 0.10),
        .countText = Color::grey(0.1),
        .progress = kAccentOnLight.withAlpha(0.22),
        .attention = kAttention.withAlpha(0.6),
    };
    return isDark ? dark : light;
}

/// What both kinds of item have under the same name.
template <typename Member> decltype(auto) fieldOf(const DisplayItem& item, Member member)
{
    return std::visit([&](auto& data) -> decltype(auto) { return member(data); }, item);
}

bool isMinimized(const DisplayItem& item)
{
    return fieldOf(item, [](auto& data) { return data.isMinimized; });
}

/// As it is read out. What is no number says that there is something, not how much.
std::string badgeText(const std::string& badge)
{
    bool hasNumber = std::ranges::any_of(badge, [](char c) { return c >= '0' && c <= '9'; });
    return hasNumber ? badge + " unread" : "unread";
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
    return iconWidth(m_metrics) + m_metrics.iconTextSpacing
        + (count > 0 ? count + m_metrics.iconTextSpacing : 0)
        + titleSize(m_metrics) * Style::leastTitleWidth;
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

void ChipView::setDark(bool isDark)
{
    set(m_isDark, isDark);
}

void ChipView::setAccent(const std::optional<Color>& accent)
{
    set(m_accent, accent);
}

void ChipView::setRightToLeft(bool isRightToLeft)
{
    set(m_isRightToLeft, isRightToLeft);
}

// MARK: The pointer

void ChipView::pointerEntered()
{
    set(m_isHovered, true);
    if (onHover)
        onHover(*this, true);
}

void ChipView::pointerExited()
{
    set(m_isHovered, false);
    if (onHover)
        onHover(*this, false);
}

void ChipView::pressed(PointerButton button)
{
    drag.pressed(button);
    set(m_isPressed, true);
}

void ChipView::dragged(const DragMove& move)
{
    if (drag.dragged(move))
        set(m_isPressed, false);
}

void ChipView::pressCancelled()
{
    set(m_isPressed, false);
    drag.cancelled();
}

void ChipView::released(PointerButton button, bool isInside)
{
    set(m_isPressed, false);
    if (drag.released() || !isInside || !onClick)
        return;
    if (button == PointerButton::primary)
        onClick(*this, Click::primary);
    else if (button == PointerButton::middle)
        onClick(*this, Click::middle);
}

void ChipView::filesEntered()
{
    set(m_hasFilesOver, true);
    if (onFilesOver)
        onFilesOver(*this, true);
}

void ChipView::filesExited()
{
    set(m_hasFilesOver, false);
    if (onFilesOver)
        onFilesOver(*this, false);
}

// MARK: For screen readers and the keyboard

AccessibleState ChipView::accessibleState() const
{
    auto* group = std::get_if<GroupedChipData>(&m_item);
    AccessibleState state{.role = AccessibleRole::toggleButton,
        .name = fieldOf(m_item, [](auto& data) { return data.appName; }),
        .progress = fieldOf(m_item, [](auto& data) { return data.progress; }),
        .isSelected = isFocused(m_item),
        .hasKeyFocus = m_hasKeyFocus,
        .actions = {"Activate", "Show Menu", "Close"},
        .menuAction = 1};
    auto* single = std::get_if<ChipData>(&m_item);
    if (single && !single->windowTitle.empty() && single->windowTitle != single->appName)
        state.name += ", " + single->windowTitle;
    if (auto badge = fieldOf(m_item, [](auto& data) { return data.badge; }))
        state.name += ", " + badgeText(*badge);
    if (group)
        state.name += ", " + std::to_string(group->windowCount) + " windows";
    if (isMinimized(m_item))
        state.name += ", minimised";
    if (isFocused(m_item))
        state.name += ", focused";
    if (wantsAttention(m_item))
        state.name += ", wants attention";
    return state;
}

bool ChipView::performAccessibleAction(std::size_t action)
{
    static constexpr Click clicks[] = {Click::primary, Click::secondary, Click::middle};
    if (action >= std::size(clicks) || !onClick)
        return false;
    onClick(*this, clicks[action]);
    return true;
}

void ChipView::showContextMenu()
{
    performAccessibleAction(1);
}

// MARK: What it looks like

std::string_view ChipView::title() const
{
    auto* group = std::get_if<GroupedChipData>(&m_item);
    auto* single = std::get_if<ChipData>(&m_item);
    auto& window = group ? group->displayTitle : single->windowTitle;
    auto& application = group ? group->appName : single->appName;
    return m_title == Title::window && !window.empty() ? window : application;
}

std::string ChipView::count() const
{
    auto* group = std::get_if<GroupedChipData>(&m_item);
    return group ? std::to_string(group->windowCount) : std::string{};
}

double ChipView::pillWidth(std::string_view text, double height) const
{
    TextStyle style{.size = height * Style::pillTextSize,
        .weight = FontWeight::semibold,
        .color = Style::badgeText};
    return std::max(height, m_text.measure(text, style).width + 2 * Style::pillPadding * height);
}

double ChipView::countHeight() const
{
    return m_metrics.chipHeight * Style::countHeight;
}

/// 0 for a single window.
double ChipView::countWidth() const
{
    auto text = count();
    return text.empty() ? 0 : pillWidth(text, countHeight());
}

Rect ChipView::badgeRect(const Rect& icon) const
{
    auto& badge = fieldOf(
        m_item, [](auto& data) -> auto& { return data.badge; });
    if (!badge)
        return {};
    double height = m_metrics.iconSize * Style::badgeHeight;
    double overhang = height * Style::badgeOverhang;
    double width = std::min(pillWidth(*badge, height), height * Style::badgeMaximumWidth);
    // Never past the chip: beyond it lies the next one.
    double x = std::min(icon.maxX() + overhang - width, bounds().width - width);
    return {std::max(0.0, x), icon.y - overhang, width, height};
}

ChipView::Parts ChipView::parts() const
{
    Parts parts;
    auto face = bounds().centred({bounds().width, m_metrics.chipHeight});
    parts.face = face;
    Size icon{m_metrics.iconSize, m_metrics.iconSize};
    double padding = m_metrics.chipHorizontalPadding;
    parts.icon = Rect{padding, face.y, icon.width, face.height}.centred(icon);

    double pill = countWidth();
    double pillHeight = countHeight();
    double left = parts.icon.maxX() + m_metrics.iconTextSpacing;
    double right = face.width - padding;
    if (pill > 0)
        right -= pill + m_metrics.iconTextSpacing;
    if (m_title != Title::none && m_hasRoomForTitle) {
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
    if (m_isRightToLeft) {
        for (auto* part : {&parts.icon, &parts.title, &parts.count, &parts.badge})
            part->x = face.width - part->maxX();
    }
    double mark = face.width * Style::focusMarkWidth;
    parts.focusMark = {(face.width - mark) / 2, face.maxY() - Style::focusMarkHeight, mark,
        Style::focusMarkHeight};
    return parts;
}

void ChipView::paintFace(Canvas& canvas, const Parts& layout) const
{
    auto& style = Style::of(m_isDark);
    bool isFocusShown = isFocused(m_item);
    auto fill = m_isPressed ? style.pressedFill : m_isHovered ? style.hoveredFill : style.fill;
    if (isFocusShown && !m_isPressed)
        fill = m_isHovered ? style.focusedHoveredFill : style.focusedFill;
    canvas.fillRounded(layout.face, m_metrics.chipCornerRadius, fill);
    paintProgress(canvas, layout);
    if (wantsAttention(m_item)) {
        double strength = Style::attentionRest + (1 - Style::attentionRest) * m_pulse;
        canvas.fillRounded(layout.face, m_metrics.chipCornerRadius,
            style.attention.withAlpha(style.attention.alpha * strength));
    }
    if (isFocusShown || m_isHovered)
        canvas.strokeRounded(layout.face, m_metrics.chipCornerRadius, Style::edgeWidth, style.edge);
}

void ChipView::paintProgress(Canvas& canvas, const Parts& layout) const
{
    auto progress = fieldOf(m_item, [](auto& data) { return data.progress; });
    if (!progress)
        return;
    auto done = layout.face;
    done.width *= std::clamp(*progress, 0.0, 1.0);
    if (m_isRightToLeft)
        done.x = layout.face.maxX() - done.width;
    canvas.save();
    canvas.clip(done);
    auto color = Style::of(m_isDark).progress;
    if (m_accent)
        color = m_accent->withAlpha(color.alpha);
    canvas.fillRounded(layout.face, m_metrics.chipCornerRadius, color);
    canvas.restore();
}

void ChipView::paintPill(Canvas& canvas, const Rect& rect, std::string_view text, const Color& fill,
    const Color& ink) const
{
    canvas.fillRounded(rect, rect.height / 2, fill);
    canvas.drawText(text, rect,
        {.size = rect.height * Style::pillTextSize,
            .weight = FontWeight::semibold,
            .color = ink,
            .alignment = TextAlignment::centre});
}

void ChipView::paint(Canvas& canvas) const
{
    if (!m_isLifted)
        return paintChip(canvas);
    canvas.save();
    canvas.magnify(kLiftedScale, bounds().centre());
    canvas.beginOpacity(kLiftedOpacity);
    paintChip(canvas);
    canvas.endOpacity();
    canvas.restore();
}

void ChipView::paintChip(Canvas& canvas) const
{
    auto& style = Style::of(m_isDark);
    auto layout = parts();
    paintFace(canvas, layout);
    bool isDimmed = isMinimized(m_item);
    if (isDimmed)
        canvas.beginOpacity(Style::minimizedOpacity);
    canvas.drawImage(fieldOf(
                         m_item, [](auto& data) -> auto& { return data.icon; }),
        layout.icon);
    if (!layout.title.isEmpty()) {
        canvas.drawText(title(), layout.title,
            {.size = titleSize(m_metrics), .weight = FontWeight::regular, .color = style.text});
    }
    if (isDimmed)
        canvas.endOpacity();
    if (!layout.count.isEmpty())
        paintPill(canvas, layout.count, count(), style.countFill, style.countText);
    if (!layout.badge.isEmpty()) {
        auto& badge = fieldOf(
            m_item, [](auto& data) -> auto& { return data.badge; });
        paintPill(canvas, layout.badge, *badge, Style::badge, Style::badgeText);
    }
    if (isFocused(m_item))
        canvas.fillRounded(
            layout.focusMark, Style::focusMarkHeight / 2, m_accent.value_or(style.focusMark));
    if (m_hasKeyFocus || m_hasFilesOver)
        paintKeyFocus(canvas, layout.face, m_metrics.chipCornerRadius, m_isDark);
}

}
