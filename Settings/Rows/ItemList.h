#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Settings/Rows/ItemRow.h"
#include "Settings/Rows/RowView.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// Things in an order, in a frame of their own. A thing keeps its row, and the row the focus,
/// wherever it moves.
class ItemList final : public RowView {
public:
    ItemList(const SettingsRow&, const RowOutlets&);

    void show(const SettingsRow&) override;

private:
    void acceptDrops();
    void showItems();
    void addRow(const SettingsList::Item&);
    void dropGone();
    ItemRow::Abilities abilitiesAt(std::size_t place) const;
    void moveBy(const std::string& item, ItemRow::Step);
    void highlightAt(double y);
    bool drop(GtkWidget* dragged, double y);

    const std::string m_id;
    const RowOutlets& m_outlets;
    GtkListBox* m_box; ///< of the widget
    GtkLabel* m_empty; ///< what is said instead
    SettingsList m_list;
    std::map<std::string, std::unique_ptr<ItemRow>> m_rows;
    std::vector<SignalHandler> m_handlers;
};

}
