#include "Settings/PageView.h"

#include <utility>

namespace quorvel::settings {

namespace {

/// The texts of a group are markup.
std::string escaped(const std::string& text)
{
    return xdg::GText{g_markup_escape_text(text.c_str(), -1)}.get();
}

void showHeading(AdwPreferencesGroup* group, const SettingsGroup& description)
{
    adw_preferences_group_set_title(group, escaped(description.title).c_str());
    adw_preferences_group_set_description(group, escaped(description.help).c_str());
}

/// The arrows lead out of a frame of rows into the next one.
gboolean leaveFrame(GtkWidget* frame, GtkDirectionType direction, gpointer)
{
    if (direction != GTK_DIR_UP && direction != GTK_DIR_DOWN)
        return false;
    auto* root = GTK_WIDGET(gtk_widget_get_root(frame));
    return root
        && gtk_widget_child_focus(
            root, direction == GTK_DIR_UP ? GTK_DIR_TAB_BACKWARD : GTK_DIR_TAB_FORWARD);
}

GtkWidget* makeFrame()
{
    auto* frame = gtk_list_box_new();
    gtk_list_box_set_selection_mode(GTK_LIST_BOX(frame), GTK_SELECTION_NONE);
    gtk_widget_add_css_class(frame, "boxed-list");
    return frame;
}

void addFrame(AdwPreferencesGroup* group, GtkWidget* frame)
{
    adw_preferences_group_add(group, frame);
    g_signal_connect(frame, "keynav-failed", G_CALLBACK(leaveFrame), nullptr);
}

/// A list alone in its group needs no title but the group's.
void addListTitle(AdwPreferencesGroup* group, const std::string& title)
{
    auto* label = gtk_label_new(title.c_str());
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_label_set_wrap(GTK_LABEL(label), true);
    gtk_widget_add_css_class(label, "heading");
    adw_preferences_group_add(group, label);
}

GtkWidget* focusOf(GtkWidget* page)
{
    auto* root = gtk_widget_get_root(page);
    return root ? gtk_root_get_focus(root) : nullptr;
}

}

PageView::PageView(const RowOutlets& outlets)
    : m_outlets(outlets)
    , m_page(GTK_WIDGET(g_object_ref_sink(adw_preferences_page_new())))
{
}

std::vector<std::string> PageView::structureOf(const SettingsPage& page)
{
    std::vector<std::string> structure;
    for (const auto& group : page.groups) {
        structure.push_back("group " + group.id);
        for (const auto& row : group.rows)
            structure.push_back(std::to_string(row.control.index()) + ' ' + row.id);
    }
    return structure;
}

bool PageView::show(const SettingsPage& page)
{
    auto structure = structureOf(page);
    if (structure != m_structure) {
        if (isInUse())
            return false;
        rebuild(page);
        m_structure = std::move(structure);
        return true;
    }
    for (std::size_t index = 0; index < page.groups.size(); ++index) {
        const auto& group = page.groups[index];
        auto& view = m_groups[index];
        showHeading(view.widget, group);
        for (std::size_t row = 0; row < group.rows.size(); ++row)
            view.rows[row].view->show(group.rows[row]);
    }
    return true;
}

bool PageView::isInUse() const
{
    for (const auto& group : m_groups) {
        for (const auto& row : group.rows) {
            if (row.view->isInUse())
                return true;
        }
    }
    auto* focus = focusOf(widget());
    auto* menu = focus ? gtk_widget_get_ancestor(focus, GTK_TYPE_POPOVER) : nullptr;
    return menu && gtk_widget_is_ancestor(menu, widget());
}

void PageView::endUse()
{
    for (const auto& group : m_groups) {
        for (const auto& row : group.rows)
            row.view->endUse();
    }
}

void PageView::rebuild(const SettingsPage& page)
{
    auto* focus = focusOf(widget());
    const auto* focused = focus ? rowAround(focus) : nullptr;
    const auto id = focused ? focused->id : std::string{};
    for (const auto& group : m_groups)
        adw_preferences_page_remove(ADW_PREFERENCES_PAGE(widget()), group.widget);
    m_groups.clear();
    for (const auto& group : page.groups)
        addGroup(group);
    if (focused)
        focusRow(id);
}

void PageView::addGroup(const SettingsGroup& description)
{
    auto* group = ADW_PREFERENCES_GROUP(adw_preferences_group_new());
    adw_preferences_page_add(ADW_PREFERENCES_PAGE(widget()), group);
    showHeading(group, description);
    auto& rows = m_groups.emplace_back(ShownGroup{group, {}}).rows;
    GtkWidget* frame = nullptr;
    for (const auto& row : description.rows) {
        auto* widget
            = rows.emplace_back(ShownRow{row.id, RowView::make(row, m_outlets)}).view->widget();
        if (GTK_IS_LIST_BOX(widget)) {
            if (description.rows.size() > 1)
                addListTitle(group, row.title);
            addFrame(group, widget);
            frame = nullptr;
            continue;
        }
        if (!frame)
            addFrame(group, frame = makeFrame());
        gtk_list_box_append(GTK_LIST_BOX(frame), widget);
    }
}

const PageView::ShownRow* PageView::rowAround(GtkWidget* part) const
{
    for (const auto& group : m_groups) {
        for (const auto& row : group.rows) {
            if (part == row.view->widget() || gtk_widget_is_ancestor(part, row.view->widget()))
                return &row;
        }
    }
    return nullptr;
}

void PageView::focusRow(const std::string& id)
{
    for (const auto& group : m_groups) {
        for (const auto& row : group.rows) {
            if (row.id == id)
                gtk_widget_child_focus(row.view->widget(), GTK_DIR_TAB_FORWARD);
        }
    }
}

}
