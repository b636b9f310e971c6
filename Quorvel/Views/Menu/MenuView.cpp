#include "Quorvel/Views/Menu/MenuView.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

/// Where menus are low, strips must not take all of it.
constexpr double kStripShare = 0.2;

}

class MenuView::Viewport final : public View {
public:
    using View::addChild;

private:
    bool clipsChildren() const override { return true; }
};

/// A triangle on a ground that covers the row below it.
class MenuView::Strip final : public View {
public:
    Strip(int side, const Palette& palette) : m_side(side), m_palette(palette) { }

private:
    void paint(Canvas& canvas) const override
    {
        canvas.fill(bounds(), m_palette.menuGround);
        auto [x, y] = bounds().centre();
        canvas.fillPolygon(
            {{x - 5, y - 2.5 * m_side}, {x + 5, y - 2.5 * m_side}, {x, y + 2.5 * m_side}},
            m_palette.text);
    }

    const int m_side;
    const Palette& m_palette;
};

MenuView::MenuView(
    const Menu& menu, MenuKeyTexts keys, const Text& text, const Appearance& appearance)
    : m_menu(menu)
    , m_keys(std::move(keys))
    , m_look(MenuLook::of(appearance))
    , m_layout(menu, m_keys, text)
    , m_viewport(&addChild(std::make_unique<Viewport>()))
    , m_strips{&addChild(std::make_unique<Strip>(-1, m_look.palette)),
          &addChild(std::make_unique<Strip>(1, m_look.palette))}
{
    for (Row row = 0; row < menu.size(); ++row) {
        m_rows.push_back(&m_viewport->addChild(
            std::make_unique<MenuRow>(menu[row], m_keys[row], row, m_layout, m_look)));
        m_rows.back()->onChosen = [this, row] {
            if (onChosen)
                onChosen(row);
        };
    }
}

void MenuView::setAppearance(const Appearance& appearance)
{
    m_look = MenuLook::of(appearance);
    invalidate();
}

AccessibleState MenuView::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::menu;
    state.name = tr("Menu");
    return state;
}

double MenuView::viewportHeight() const
{
    return std::max(0.0, bounds().height - 2 * MenuMetrics::padding);
}

double MenuView::mostOffset() const
{
    return std::max(0.0, m_layout.size().height - bounds().height);
}

void MenuView::layout()
{
    m_offset = std::clamp(m_offset, 0.0, mostOffset());
    m_viewport->setFrame({0, MenuMetrics::padding, bounds().width, viewportHeight()});
    double width = std::max(0.0, bounds().width - 2 * MenuMetrics::padding);
    for (Row row = 0; row < m_rows.size(); ++row) {
        auto& place = m_layout.rows()[row];
        m_rows[row]->setFrame(
            {place.x, place.y - MenuMetrics::padding - m_offset, width, place.height});
    }
    for (int side : {-1, 1})
        m_strips[side > 0]->setFrame(strip(side));
}

void MenuView::paint(Canvas& canvas) const
{
    auto& colors = m_look.palette;
    canvas.fillRounded(bounds(), MenuMetrics::radius, colors.menuGround);
    canvas.strokeRounded(bounds(), MenuMetrics::radius, 1, colors.menuEdge);
}

std::optional<MenuView::Row> MenuView::rowAt(Point at) const
{
    if (!m_viewport->frame().contains(at) || stripAt(at) != 0)
        return std::nullopt;
    return m_layout.rowAt(at.y + m_offset);
}

Rect MenuView::rowFrame(Row row) const
{
    return m_rows[row]->frameInRoot().intersected(m_viewport->frameInRoot());
}

void MenuView::highlight(std::optional<Row> row)
{
    if (row == m_highlighted)
        return;
    if (auto before = std::exchange(m_highlighted, row))
        m_rows[*before]->setHighlighted(false);
    if (row)
        m_rows[*row]->setHighlighted(true);
}

bool MenuView::scroll(double distance)
{
    double offset = std::clamp(m_offset + distance, 0.0, mostOffset());
    if (std::exchange(m_offset, offset) == offset)
        return false;
    layout();
    return true;
}

void MenuView::revealRow(Row row)
{
    auto place = m_rows[row]->frame();
    auto inset = [this](int side) { return hasMore(side) ? strip(side).height : 0; };
    if (place.y < inset(-1))
        scroll(place.y - inset(-1));
    else if (place.maxY() > viewportHeight() - inset(1))
        scroll(place.maxY() - viewportHeight() + inset(1));
}

void MenuView::centreRow(Row row)
{
    scroll(m_rows[row]->frame().centre().y - viewportHeight() / 2);
}

bool MenuView::hasMore(int side) const
{
    return side < 0 ? m_offset > 0 : m_offset < mostOffset();
}

/// Inside the edge line; empty where all is in sight.
Rect MenuView::strip(int side) const
{
    if (!hasMore(side))
        return {};
    double height = std::min(MenuMetrics::stripHeight, viewportHeight() * kStripShare);
    double y = side < 0 ? MenuMetrics::padding : bounds().height - MenuMetrics::padding - height;
    return {1, y, std::max(0.0, bounds().width - 2), height};
}

int MenuView::stripAt(Point at) const
{
    for (int side : {-1, 1}) {
        auto frame = strip(side);
        // Down to the edge of the menu: that is where a hand ends up.
        if (side < 0)
            frame = {frame.x, 0, frame.width, frame.maxY()};
        else
            frame.height = bounds().height - frame.y;
        if (hasMore(side) && frame.contains(at))
            return side;
    }
    return 0;
}

}
