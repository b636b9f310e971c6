#include "Settings/Rows/ButtonRow.h"

namespace quorvel::settings {

ButtonRow::ButtonRow(const SettingsRow& description, const RowOutlets& outlets)
    : m_button(GTK_BUTTON(gtk_button_new()))
{
    setControl(GTK_WIDGET(m_button));
    m_clicked = SignalHandler{m_button, "clicked",
        [id = description.id, &outlets] { outlets.change({SettingsChange::Press{id}}); }};
}

void ButtonRow::show(const SettingsRow& description)
{
    ActionRow::show(description);
    const auto& label = std::get<SettingsButton>(description.control).label;
    gtk_button_set_label(m_button, label.c_str());
    setAccessibleName(GTK_WIDGET(m_button), label);
}

}
