#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Quorvel/Views/AppListCoordinator.h"
#include "Quorvel/Views/AppListTableView.h"
#include "Quorvel/Views/SearchPanelContent.h"

namespace quorvel {

/// What is on the launcher's panel. Main thread.
class AppLauncherContent final : public SearchPanelContent {
public:
    /// All of it outlives the view.
    AppLauncherContent(const Inputs&, AppLauncher&, PinStore&);
    ~AppLauncherContent() override;

    std::function<void(const AppInfo&)> onLaunch;
    std::function<void(const AppInfo&, const ApplicationAction&)> onActionChosen;

    void openSelected() override { coordinator().openSelected(); }

    /// A row with an application that is at least partly in sight.
    struct RowPlace {
        std::string id;
        AppListSection section{};
        bool isSelected = false;
        Rect frame; ///< the visible part; points from the top left of the panel
    };
    std::vector<RowPlace> rowPlaces() const;
    const std::string& query() const override;

    std::string accessibleID() const override { return "launcher"; }

private:
    using Change = AppListTableView::Coordinator::Change;

    AppListTableView::Coordinator& coordinator() { return m_table->coordinator(); }
    void queryDidChange(const std::string&) override;
    void directionDidChange(bool isRightToLeft) override;
    void connect();
    void subscribe();
    void updateItems(Change);

    AppLauncher& m_appLauncher;
    PinStore& m_pinStore;
    AppListTableView* m_table = nullptr;
};

}
