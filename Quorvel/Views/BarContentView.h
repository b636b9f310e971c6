#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Views/ChipView.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

class ChipsRow;
class MenuButton;

/// The content of one bar: menu button, divider, the chips of its space. Main thread.
class BarContentView final : public View {
public:
    struct Inputs {
        BarViewModel& viewModel;
        Dispatch& dispatch;
        const Text& text;
        const Published<Appearance>& appearance;
        SpaceID spaceID{};
        /// Absent while one bar stands for every screen.
        std::optional<std::size_t> screenIndex;
        BarMetrics metrics;
        /// Nothing shows through, so the background must be painted.
        bool isOpaque = true;
    };

    explicit BarContentView(Inputs);
    ~BarContentView() override;

    std::function<void()> onMenuTapped;
    /// Opens a menu beside a chip (points of the bar, origin top left).
    std::function<void(Menu, const Rect&)> onChipMenuRequested;

    /// In points of the bar, origin top left.
    Rect menuButtonFrame() const;
    /// By chip identifier, in the order of the row.
    std::vector<std::pair<std::string, Rect>> chipFrames() const;

    void handlePrimaryChipTap(WindowID, bool isFocused);
    /// Another application's group: its representative. The focused group: its next window.
    void handleGroupedChipTap(const GroupedChipData&);

private:
    void paint(Canvas&) const override;
    void layout() override;
    void itemsDidChange();
    void appearanceDidChange();
    void chipClicked(const ChipView&, ChipView::Click);
    void showMenu(const ChipView&);
    void activateWindowDeferred(WindowID);
    /// Runs on the next turn of the main loop, unless the model has gone by then.
    void onNextTurn(std::function<void(BarViewModel&)>);

    Inputs m_inputs;
    MenuButton* m_menuButton = nullptr;
    ChipsRow* m_row = nullptr;
    Rect m_divider;
    Subscription m_items;
    Subscription m_appearance;
};

}
