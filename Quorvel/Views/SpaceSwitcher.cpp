#include "Quorvel/Views/SpaceSwitcher.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/SpaceCell.h"

namespace quorvel {

namespace {

struct SpaceSwitcherStyle {
    static constexpr double cellWidth = 0.88; ///< of the chip's height
    static constexpr double listButtonWidth = 0.62; ///< of the chip's height
    static constexpr double symbolSize = 0.36; ///< of the chip's height
    static constexpr double spacing = 2;
};

/// Opens the list of spaces.
class SpaceListButton final : public ButtonView {
public:
    SpaceListButton(const Palette& palette, const BarMetrics& metrics)
        : ButtonView(palette)
        , m_metrics(metrics)
    {
    }

    std::string accessibleID() const override { return "space-list"; }
    AccessibleState accessibleState() const override { return menuButtonState(tr("Desktops")); }
    std::string tooltip() const override { return accessibleState().name; }

private:
    void paint(Canvas& canvas) const override
    {
        auto face = bounds().centred({bounds().width, m_metrics.chipHeight * 0.82});
        paintFace(canvas, face, 5);
        double size = m_metrics.chipHeight * SpaceSwitcherStyle::symbolSize;
        canvas.drawSymbol(Symbol::chevronUp, face.centred({size, size}), palette().text);
    }

    BarMetrics m_metrics;
};

}

SpaceSwitcher::SpaceSwitcher(const Palette& palette, const BarMetrics& metrics)
    : m_palette(palette)
    , m_metrics(metrics)
    , m_listButton(&addChild(std::make_unique<SpaceListButton>(palette, metrics)))
{
    m_listButton->onTapped = m_listButton->onSecondaryTapped = [this] {
        if (onListRequested)
            onListRequested();
    };
}

SpaceSwitcher::~SpaceSwitcher() = default;

void SpaceSwitcher::setSpaces(const std::vector<SpaceCellData>& spaces)
{
    if (std::exchange(m_spaces, spaces) == spaces)
        return;
    while (m_cells.size() > spaces.size()) {
        removeChild(*m_cells.back());
        m_cells.pop_back();
    }
    while (m_cells.size() < spaces.size()) {
        auto& cell = addChild(std::make_unique<SpaceCell>(m_palette, m_metrics));
        cell.onTapped = [this, &cell] {
            if (onSpaceSwitchRequested)
                onSpaceSwitchRequested(cell.data().id);
        };
        cell.onSecondaryTapped = [this] {
            if (onListRequested)
                onListRequested();
        };
        m_cells.push_back(&cell);
    }
    for (std::size_t index = 0; index < spaces.size(); ++index)
        m_cells[index]->setData(spaces[index]);
    layout();
}

void SpaceSwitcher::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) != isRightToLeft)
        layout();
}

double SpaceSwitcher::cellWidth() const
{
    return std::round(m_metrics.chipHeight * SpaceSwitcherStyle::cellWidth);
}

double SpaceSwitcher::listButtonWidth() const
{
    return std::round(m_metrics.chipHeight * SpaceSwitcherStyle::listButtonWidth);
}

double SpaceSwitcher::wantedWidth(double available) const
{
    if (m_spaces.size() < 2)
        return 0;
    double all = listButtonWidth()
        + static_cast<double>(m_spaces.size()) * (cellWidth() + SpaceSwitcherStyle::spacing);
    return all <= available ? all : listButtonWidth() + cellWidth() + SpaceSwitcherStyle::spacing;
}

bool SpaceSwitcher::showsAll(double width) const
{
    return width
        >= static_cast<double>(m_spaces.size()) * (cellWidth() + SpaceSwitcherStyle::spacing);
}

void SpaceSwitcher::layout()
{
    bool isShown = m_spaces.size() > 1;
    bool areAllShown = showsAll(bounds().width);
    double x = 0;
    auto place = [&](View& view, double width) {
        view.setFrame({m_isRightToLeft ? bounds().width - x - width : x, 0, width,
            width > 0 ? bounds().height : 0});
        x += width > 0 ? width + SpaceSwitcherStyle::spacing : 0;
    };
    for (auto* cell : m_cells)
        place(*cell, isShown && (areAllShown || cell->data().isCurrent) ? cellWidth() : 0);
    place(*m_listButton, isShown ? listButtonWidth() : 0);
    if (auto* host_ = host())
        host_->viewsDidMove();
}

void SpaceSwitcher::setDropTarget(std::optional<SpaceID> space)
{
    for (auto* cell : m_cells)
        cell->setDropTarget(cell->data().id == space);
}

const SpaceCellData* SpaceSwitcher::spaceAt(Point inRoot) const
{
    for (auto* cell : m_cells) {
        if (cell->frameInRoot().contains(inRoot))
            return &cell->data();
    }
    return nullptr;
}

std::vector<std::pair<SpaceID, Rect>> SpaceSwitcher::cellFrames() const
{
    std::vector<std::pair<SpaceID, Rect>> frames;
    for (auto* cell : m_cells) {
        if (!cell->frame().isEmpty())
            frames.emplace_back(cell->data().id, cell->frameInRoot());
    }
    return frames;
}

Rect SpaceSwitcher::listButtonFrame() const
{
    return m_listButton->frameInRoot();
}

}
