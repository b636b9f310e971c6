#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Quorvel/Core/LauncherPanel.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/AppListCoordinator.h"
#include "Quorvel/Views/AppListTableView.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

class AppLauncherPlaceholder;
class AppLauncherSearchField;
class BarBackground;
class LabelView;

/// What is on the launcher's panel: its title, the search field, and below it the list or what
/// stands in for it. Main thread.
class AppLauncherContent final : public View {
public:
    /// All of it outlives the view.
    struct Inputs {
        const Platform& platform;
        PanelSurface& surface;
        AppLauncher& appLauncher;
        PinStore& pinStore;
        const UserSettings& settings;
    };

    explicit AppLauncherContent(const Inputs&);
    ~AppLauncherContent() override;

    std::function<void(const AppInfo&)> onLaunch;
    /// Opens a menu beside the rectangle, in the view's coordinates.
    std::function<void(Menu, const Rect& anchor)> onMenuRequested;
    std::function<void(const AppInfo&, const ApplicationAction&)> onActionChosen;
    /// Keys that no view has used. True: this one is used.
    std::function<bool(const KeyEvent&)> onKey;

    void moveSelection(int side) { coordinator().moveSelection(side); }
    void moveSelectionByPage(int side) { coordinator().moveSelectionByPage(side); }
    void openSelected() { coordinator().openSelected(); }
    void showMenuOfSelected();
    /// False if there is no query.
    bool clearQuery();
    /// The key types text, which belongs to the field wherever the keyboard is.
    bool takeTyping(const KeyEvent&);
    void flashScroller();

    /// A row with an application that is at least partly in sight.
    struct RowPlace {
        std::string id;
        AppListSection section{};
        bool isSelected = false;
        Rect frame; ///< the visible part; points from the top left of the panel
    };
    std::vector<RowPlace> rowPlaces() const;
    Rect fieldFrame() const;
    Rect clearButtonFrame() const;
    const std::string& query() const;

    /// Anywhere on the panel.
    bool scrolled(const ScrollEvent& event) override { return m_table->list().scrolled(event); }
    View* preferredKeyView() override;
    bool keyPressed(const KeyEvent& event) override { return onKey && onKey(event); }
    TextInputClient* textInput() override;
    bool takesPointer() const override { return true; }
    bool isAccessible() const override { return true; }
    bool takesKeyboard() const override { return false; }
    std::string accessibleID() const override { return "launcher"; }
    AccessibleState accessibleState() const override;

private:
    using Change = AppListTableView::Coordinator::Change;

    bool isColumn() const override { return true; }
    void layout() override;
    void paint(Canvas&) const override;
    AppListTableView::Coordinator& coordinator() { return m_table->coordinator(); }
    void connect();
    void subscribe();
    void updateItems(Change);
    void appearanceDidChange();

    const Inputs m_inputs;
    Palette m_palette; ///< the views below point at it
    bool m_isListShown = false; ///< else the placeholder is
    BarBackground* m_background = nullptr;
    LabelView* m_title = nullptr;
    AppLauncherSearchField* m_searchField = nullptr;
    AppListTableView* m_table = nullptr;
    AppLauncherPlaceholder* m_placeholder = nullptr;
    std::vector<Subscription> m_subscriptions;
};

}
