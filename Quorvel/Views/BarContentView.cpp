#include "Quorvel/Views/BarContentView.h"

#include "Quorvel/Views/BarBackground.h"
#include "Quorvel/Views/ChipMenu.h"
#include "Quorvel/Views/ChipsRow.h"
#include "Quorvel/Views/MenuButton.h"

namespace quorvel {

namespace {

struct Style {
    static constexpr double dividerHeight = 0.7; ///< share of the menu button's height
    static constexpr double dividerOpacity = 0.3;
    static constexpr double dividerWidth = 1;
    static constexpr double edgeHeight = 1;
    static constexpr double edgeOpacity = 0.12;

    static constexpr Color ink(bool isDark) { return Color::grey(isDark ? 1 : 0); }
};

}

BarContentView::BarContentView(Inputs inputs) : m_inputs(std::move(inputs))
{
    m_menuButton = &addChild(std::make_unique<MenuButton>(m_inputs.metrics));
    m_menuButton->onTapped = [this] {
        if (onMenuTapped)
            onMenuTapped();
    };
    m_row
        = &addChild(std::make_unique<ChipsRow>(m_inputs.metrics, m_inputs.text, m_inputs.dispatch));
    m_row->onChipClick
        = [this](const ChipView& chip, ChipView::Click click) { chipClicked(chip, click); };
    // Which windows lie on one screen may change without any chip changing.
    m_items = m_inputs.screenIndex
        ? m_inputs.viewModel.didRefresh.subscribe([this] { itemsDidChange(); })
        : m_inputs.viewModel.displayItemsBySpace.subscribe([this](auto&) { itemsDidChange(); });
    m_appearance = m_inputs.appearance.subscribe([this](auto&) { appearanceDidChange(); });
    appearanceDidChange();
    itemsDidChange();
}

BarContentView::~BarContentView() = default;

void BarContentView::itemsDidChange()
{
    m_row->setItems(m_inputs.viewModel.displayItems(m_inputs.spaceID, m_inputs.screenIndex));
}

void BarContentView::appearanceDidChange()
{
    bool isDark = m_inputs.appearance.value().isDark;
    m_menuButton->setDark(isDark);
    m_row->setDark(isDark);
    m_row->setReducesMotion(m_inputs.appearance.value().reduceMotion);
    layout();
    invalidate();
}

void BarContentView::layout()
{
    auto& metrics = m_inputs.metrics;
    auto whole = bounds();
    // Up to the edges, so that the corner of the screen belongs to the button.
    Rect button{0, 0, metrics.menuButtonWidth + metrics.barHorizontalPadding, whole.height};
    double dividerHeight = metrics.menuButtonHeight * Style::dividerHeight;
    Rect divider{
        button.maxX(), (whole.height - dividerHeight) / 2, Style::dividerWidth, dividerHeight};
    double left = divider.maxX() + metrics.scrollHorizontalPadding;
    Rect row{
        left, 0, std::max(0.0, whole.width - metrics.scrollHorizontalPadding - left), whole.height};
    bool isMirrored = m_inputs.appearance.value().isRightToLeft;
    auto place = [&](Rect rect) {
        if (isMirrored)
            rect.x = whole.width - rect.maxX();
        return rect;
    };
    m_menuButton->setFrame(place(button));
    m_divider = place(divider);
    m_row->setRightToLeft(isMirrored);
    m_row->setFrame(place(row));
}

void BarContentView::paint(Canvas& canvas) const
{
    bool isDark = m_inputs.appearance.value().isDark;
    if (m_inputs.isOpaque)
        canvas.fill(bounds(), opaqueBarColor(isDark));
    auto ink = Style::ink(isDark);
    canvas.fill({0, 0, bounds().width, Style::edgeHeight}, ink.withAlpha(Style::edgeOpacity));
    canvas.fill(m_divider, ink.withAlpha(Style::dividerOpacity));
}

Rect BarContentView::menuButtonFrame() const
{
    return m_menuButton->frameInRoot();
}

std::vector<std::pair<std::string, Rect>> BarContentView::chipFrames() const
{
    return m_row->chipFrames();
}

void BarContentView::onNextTurn(std::function<void(BarViewModel&)> action)
{
    // The view may be made anew before that.
    m_inputs.dispatch.main().async(
        [weak = m_inputs.viewModel.weakReference(), action = std::move(action)] {
            if (auto* viewModel = weak.get())
                action(*viewModel);
        });
}

void BarContentView::chipClicked(const ChipView& chip, ChipView::Click click)
{
    auto* group = std::get_if<GroupedChipData>(&chip.item());
    auto* single = std::get_if<ChipData>(&chip.item());
    if (click == ChipView::Click::secondary) {
        showMenu(chip);
    } else if (click == ChipView::Click::middle) {
        auto id = single ? single->id : group->windowIDs.front();
        onNextTurn([id](BarViewModel& viewModel) { viewModel.closeWindow(id); });
    } else if (single) {
        handlePrimaryChipTap(single->id, single->isFocused);
    } else {
        handleGroupedChipTap(*group);
    }
}

void BarContentView::showMenu(const ChipView& chip)
{
    if (!onChipMenuRequested)
        return;
    onChipMenuRequested(
        chipMenu(chip.item(), m_inputs.viewModel, m_inputs.spaceID), chip.frameInRoot());
}

void BarContentView::handlePrimaryChipTap(WindowID id, bool isFocused)
{
    if (isFocused)
        onNextTurn([id](BarViewModel& viewModel) { viewModel.minimizeWindow(id); });
    else
        activateWindowDeferred(id);
}

void BarContentView::handleGroupedChipTap(const GroupedChipData& group)
{
    activateWindowDeferred(m_inputs.viewModel.nextWindow(m_inputs.spaceID, group));
}

void BarContentView::activateWindowDeferred(WindowID id)
{
    onNextTurn([id](BarViewModel& viewModel) {
        viewModel.activateWindow(id, BarViewModel::FocusBeforeActivation::no);
    });
}

}
