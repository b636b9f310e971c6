#include "Quorvel/Views/TooltipPanel.h"

#include <algorithm>
#include <cmath>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Text.h"
#include "Quorvel/Views/Kit/WrappedText.h"

namespace quorvel {

namespace {

struct TooltipPanelStyle {
    static constexpr double fontSize = 12;
    static constexpr double lineHeight = 16;
    static constexpr double maximumWidth = 360; ///< of the text
    static constexpr std::size_t mostLines = 8;
    static constexpr double insetX = 9;
    static constexpr double insetY = 6;
    static constexpr double radius = 7;
    static constexpr double gap = 5; ///< from the bar
    static constexpr double screenMargin = 6;

    static TextStyle text(const Color& color = {})
    {
        TextStyle style;
        style.size = fontSize;
        style.color = color;
        return style;
    }
};

Size sizeFor(const Text& text, const std::vector<std::string>& lines)
{
    double width = 0;
    for (auto& line : lines)
        width = std::max(width, text.measure(line, TooltipPanelStyle::text()).width);
    return {
        std::ceil(std::min(width, TooltipPanelStyle::maximumWidth)) + 2 * TooltipPanelStyle::insetX,
        static_cast<double>(lines.size()) * TooltipPanelStyle::lineHeight
            + 2 * TooltipPanelStyle::insetY};
}

Rect placeOver(const Rect& view, const Rect& bar, Size size, const Rect& screen)
{
    auto room = screen.inset(TooltipPanelStyle::screenMargin, 0);
    double width = std::min(size.width, room.width);
    double x = std::clamp(view.centre().x - width / 2, room.x, room.maxX() - width);
    return {std::round(x), bar.maxY() + TooltipPanelStyle::gap, width, size.height};
}

}

TooltipPanel::TooltipPanel(const Platform& platform, const Screen& screen, const std::string& text,
    const Rect& view, const Rect& bar)
    : m_palette(Palette::of(platform.application.appearance().value()))
    , m_lines(wrappedLines(platform.text, text, TooltipPanelStyle::text(),
          TooltipPanelStyle::maximumWidth, TooltipPanelStyle::mostLines))
    , m_frame(placeOver(view, bar, sizeFor(platform.text, m_lines), screen.frame))
    , m_surface(platform.surfaces.createPanel({.display = screen.number.value_or(DisplayNumber{}),
                                                  .title = "Quorvel",
                                                  .kind = PanelKind::popup},
          *this))
{
    m_surface->setOpacity(1);
    m_surface->setFrame(m_frame);
    m_surface->orderFront();
}

void TooltipPanel::paint(Canvas& canvas, const Rect&)
{
    auto bounds = Rect::from({}, m_frame.size());
    canvas.fillRounded(bounds, TooltipPanelStyle::radius, m_palette.popupGround);
    canvas.strokeRounded(bounds, TooltipPanelStyle::radius, 1, m_palette.popupEdge);
    auto line = bounds.inset(TooltipPanelStyle::insetX, TooltipPanelStyle::insetY);
    line.height = TooltipPanelStyle::lineHeight;
    for (auto& text : m_lines) {
        canvas.drawText(text, line, TooltipPanelStyle::text(m_palette.text));
        line = line.translated(0, line.height);
    }
}

}
