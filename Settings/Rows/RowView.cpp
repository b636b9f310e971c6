#include "Settings/Rows/RowView.h"

#include "Settings/Rows/ButtonRow.h"
#include "Settings/Rows/ChoiceRow.h"
#include "Settings/Rows/ItemList.h"
#include "Settings/Rows/LinkRow.h"
#include "Settings/Rows/ShortcutRow.h"
#include "Settings/Rows/TextRow.h"
#include "Settings/Rows/ToggleRow.h"

namespace quorvel::settings {

namespace {

struct Maker {
    const SettingsRow& row;
    const RowOutlets& outlets;

    using View = std::unique_ptr<RowView>;

    View operator()(const SettingsToggle&) { return std::make_unique<ToggleRow>(row, outlets); }
    View operator()(const SettingsChoice&) { return std::make_unique<ChoiceRow>(row, outlets); }
    View operator()(const SettingsShortcut&) { return std::make_unique<ShortcutRow>(row, outlets); }
    View operator()(const SettingsButton&) { return std::make_unique<ButtonRow>(row, outlets); }
    View operator()(const SettingsText&) { return std::make_unique<TextRow>(row); }
    View operator()(const SettingsLink&) { return std::make_unique<LinkRow>(row, outlets); }
    View operator()(const SettingsList&) { return std::make_unique<ItemList>(row, outlets); }
};

}

std::unique_ptr<RowView> RowView::make(const SettingsRow& row, const RowOutlets& outlets)
{
    auto view = std::visit(Maker{row, outlets}, row.control);
    view->show(row);
    return view;
}

}
