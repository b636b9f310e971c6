#include "Settings/Rows/ToggleRow.h"

namespace quorvel::settings {

ToggleRow::ToggleRow(const SettingsRow& description, const RowOutlets& outlets)
    : m_switch(GTK_SWITCH(gtk_switch_new()))
{
    setControl(GTK_WIDGET(m_switch));
    const auto change = [id = description.id, &outlets](SignalArguments arguments) {
        outlets.change({SettingsChange::Set{id, g_value_get_boolean(&arguments[1]) != 0}});
        return true; // the state itself follows the bar
    };
    m_pressed = SignalHandler::answered(m_switch, "state-set", change);
}

void ToggleRow::show(const SettingsRow& description)
{
    ActionRow::show(description);
    const bool isOn = std::get<SettingsToggle>(description.control).value;
    m_pressed.mutedFor([&] {
        gtk_switch_set_active(m_switch, isOn);
        gtk_switch_set_state(m_switch, isOn);
    });
}

}
