#include "Settings/Rows/TextRow.h"

namespace quorvel::settings {

TextRow::TextRow(const SettingsRow&) : m_value(GTK_LABEL(gtk_label_new(nullptr)))
{
    gtk_label_set_selectable(m_value, true);
    gtk_label_set_ellipsize(m_value, PANGO_ELLIPSIZE_END);
    gtk_widget_set_valign(GTK_WIDGET(m_value), GTK_ALIGN_CENTER);
    gtk_widget_add_css_class(GTK_WIDGET(m_value), "dim-label");
    adw_action_row_add_suffix(row(), GTK_WIDGET(m_value));
}

void TextRow::show(const SettingsRow& description)
{
    ActionRow::show(description);
    gtk_label_set_text(m_value, std::get<SettingsText>(description.control).value.c_str());
}

}
