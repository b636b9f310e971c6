#pragma once

#include <memory>
#include <string>
#include <vector>

#include <adwaita.h>

#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/SettingsDescription.h"
#include "Settings/Rows/RowView.h"

namespace quorvel::settings {

/// One page of the window. What changes within a row is changed in place; only where rows come or
/// go are the groups made anew, with the focus and the place where they were. Main thread.
class PageView {
public:
    /// The outlets outlive it.
    explicit PageView(const RowOutlets& outlets);
    PageView(const PageView&) = delete;
    PageView& operator=(const PageView&) = delete;

    GtkWidget* widget() const { return m_page.get(); }
    /// False if it would have to replace a row that the user is busy with: to be asked again.
    bool show(const SettingsPage&);
    /// Ends what the user is doing with a row.
    void endUse();

private:
    struct ShownRow {
        std::string id;
        std::unique_ptr<RowView> view;
    };
    struct ShownGroup {
        AdwPreferencesGroup* widget; ///< of the page
        std::vector<ShownRow> rows;
    };

    static std::vector<std::string> structureOf(const SettingsPage&);
    bool isInUse() const;
    void rebuild(const SettingsPage&);
    void addGroup(const SettingsGroup&);
    const ShownRow* rowAround(GtkWidget*) const;
    void focusRow(const std::string& id);

    const RowOutlets& m_outlets;
    xdg::GObjectHandle<GtkWidget> m_page;
    std::vector<std::string> m_structure;
    std::vector<ShownGroup> m_groups;
};

}
