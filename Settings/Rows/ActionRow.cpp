#include "Settings/Rows/ActionRow.h"

namespace quorvel::settings {

ActionRow::ActionRow(GtkWidget* row) : RowView(row)
{
    adw_preferences_row_set_use_markup(ADW_PREFERENCES_ROW(row), false);
}

void ActionRow::show(const SettingsRow& description)
{
    adw_preferences_row_set_title(ADW_PREFERENCES_ROW(row()), description.title.c_str());
    setHelp(description.help);
    gtk_widget_set_sensitive(widget(), description.isEnabled);
    if (m_control)
        gtk_widget_set_sensitive(m_control, description.isEnabled); // for screen readers
}

void ActionRow::setControl(GtkWidget* control)
{
    m_control = control;
    gtk_widget_set_valign(control, GTK_ALIGN_CENTER);
    adw_action_row_add_suffix(row(), control);
    adw_action_row_set_activatable_widget(row(), control);
}

void ActionRow::setHelp(const std::string& help)
{
    adw_action_row_set_subtitle(row(), help.c_str());
    if (m_control)
        gtk_accessible_update_property(
            GTK_ACCESSIBLE(m_control), GTK_ACCESSIBLE_PROPERTY_DESCRIPTION, help.c_str(), -1);
}

void setAccessibleName(GtkWidget* widget, const std::string& name)
{
    gtk_accessible_update_property(
        GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_LABEL, name.c_str(), -1);
}

}
