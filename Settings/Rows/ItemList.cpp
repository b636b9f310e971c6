#include "Settings/Rows/ItemList.h"

#include <algorithm>

#include "Settings/Rows/ActionRow.h"

namespace quorvel::settings {

namespace {

constexpr char kPlace[] = "quorvel-place"; // of a row, where the sorting finds it

std::size_t placeOf(gpointer row)
{
    return GPOINTER_TO_SIZE(g_object_get_data(static_cast<GObject*>(row), kPlace));
}

int comparePlaces(GtkListBoxRow* one, GtkListBoxRow* other, gpointer)
{
    return placeOf(one) < placeOf(other) ? -1 : 1;
}

}

ItemList::ItemList(const SettingsRow& description, const RowOutlets& outlets)
    : RowView(gtk_list_box_new())
    , m_id(description.id)
    , m_outlets(outlets)
    , m_box(GTK_LIST_BOX(widget()))
    , m_empty(GTK_LABEL(gtk_label_new(nullptr)))
{
    gtk_widget_add_css_class(widget(), "boxed-list");
    gtk_list_box_set_selection_mode(m_box, GTK_SELECTION_NONE);
    gtk_list_box_set_sort_func(m_box, comparePlaces, nullptr, nullptr);
    gtk_label_set_wrap(m_empty, true);
    gtk_widget_add_css_class(GTK_WIDGET(m_empty), "dim-label");
    gtk_widget_add_css_class(GTK_WIDGET(m_empty), "quorvel-empty");
    gtk_list_box_set_placeholder(m_box, GTK_WIDGET(m_empty));
    acceptDrops();
}

void ItemList::acceptDrops()
{
    auto* motion = gtk_drop_controller_motion_new();
    gtk_widget_add_controller(widget(), motion);
    m_handlers.emplace_back(motion, "motion",
        [this](SignalArguments arguments) { highlightAt(g_value_get_double(&arguments[2])); });
    m_handlers.emplace_back(motion, "leave", [this] { gtk_list_box_drag_unhighlight_row(m_box); });
    auto* target = gtk_drop_target_new(ADW_TYPE_ACTION_ROW, GDK_ACTION_MOVE);
    gtk_widget_add_controller(widget(), GTK_EVENT_CONTROLLER(target));
    m_handlers.push_back(SignalHandler::answered(target, "drop", [this](SignalArguments arguments) {
        const auto* value = static_cast<const GValue*>(g_value_get_boxed(&arguments[1]));
        return drop(GTK_WIDGET(g_value_get_object(value)), g_value_get_double(&arguments[3]));
    }));
}

void ItemList::show(const SettingsRow& description)
{
    gtk_widget_set_sensitive(widget(), description.isEnabled);
    setAccessibleName(widget(), description.title);
    gtk_label_set_text(m_empty, description.help.c_str());
    const auto& list = std::get<SettingsList>(description.control);
    if (list == m_list)
        return;
    m_list = list;
    dropGone();
    showItems();
}

void ItemList::dropGone()
{
    for (auto row = m_rows.begin(); row != m_rows.end();) {
        if (std::ranges::find(m_list.items, row->first, &SettingsList::Item::id)
            != m_list.items.end()) {
            ++row;
            continue;
        }
        auto* gone = row->second->widget();
        if (row->second->hasFocus())
            gtk_widget_child_focus(widget(), GTK_DIR_DOWN);
        gtk_list_box_remove(m_box, gone);
        row = m_rows.erase(row);
    }
}

void ItemList::showItems()
{
    for (std::size_t place = 0; place < m_list.items.size(); ++place) {
        const auto& item = m_list.items[place];
        if (!m_rows.contains(item.id))
            addRow(item);
        auto& row = *m_rows.at(item.id);
        g_object_set_data(G_OBJECT(row.widget()), kPlace, GSIZE_TO_POINTER(place));
        row.show(item, abilitiesAt(place));
    }
    gtk_list_box_invalidate_sort(m_box);
}

void ItemList::addRow(const SettingsList::Item& item)
{
    auto row = std::make_unique<ItemRow>(
        ItemRow::Actions{[this, id = item.id](ItemRow::Step step) { moveBy(id, step); },
            [this, id = item.id] { m_outlets.change({SettingsChange::Remove{m_id, id}}); }});
    g_object_set_data(G_OBJECT(row->widget()), kPlace, GSIZE_TO_POINTER(m_list.items.size()));
    gtk_list_box_append(m_box, row->widget());
    m_rows.emplace(item.id, std::move(row));
}

ItemRow::Abilities ItemList::abilitiesAt(std::size_t place) const
{
    const bool isMovable = m_list.isMovable && m_list.items.size() > 1;
    return {isMovable, isMovable && place > 0, isMovable && place + 1 < m_list.items.size(),
        m_list.isRemovable};
}

void ItemList::moveBy(const std::string& item, ItemRow::Step step)
{
    const auto place = placeOf(m_rows.at(item)->widget());
    const auto to = step == ItemRow::Step::up ? place - 1 : place + 1;
    m_outlets.change({SettingsChange::Move{m_id, item, to}});
}

void ItemList::highlightAt(double y)
{
    if (auto* row = gtk_list_box_get_row_at_y(m_box, static_cast<int>(y)))
        gtk_list_box_drag_highlight_row(m_box, row);
}

bool ItemList::drop(GtkWidget* dragged, double y)
{
    gtk_list_box_drag_unhighlight_row(m_box);
    const auto* target = gtk_list_box_get_row_at_y(m_box, static_cast<int>(y));
    const auto found = std::ranges::find_if(
        m_rows, [&](const auto& entry) { return entry.second->widget() == dragged; });
    if (!target || found == m_rows.end() || !m_list.isMovable)
        return false;
    const auto to = GPOINTER_TO_SIZE(g_object_get_data(G_OBJECT(target), kPlace));
    m_outlets.change({SettingsChange::Move{m_id, found->first, to}});
    return true;
}

}
