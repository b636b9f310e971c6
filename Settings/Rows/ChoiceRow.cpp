#include "Settings/Rows/ChoiceRow.h"

#include <algorithm>

namespace quorvel::settings {

ChoiceRow::ChoiceRow(const SettingsRow& description, const RowOutlets& outlets)
    : ActionRow(adw_combo_row_new())
{
    const auto change = [this, id = description.id, &outlets] {
        const auto index = adw_combo_row_get_selected(comboRow());
        if (index < m_options.size())
            outlets.change({SettingsChange::Set{id, m_options[index].value}});
    };
    m_selected = SignalHandler{comboRow(), "notify::selected", change};
}

void ChoiceRow::show(const SettingsRow& description)
{
    ActionRow::show(description);
    const auto& choice = std::get<SettingsChoice>(description.control);
    m_selected.mutedFor([&] { showOptions(choice); });
    // The name of a combo row is its title; a screen reader finds the value nowhere else.
    auto* chosen = static_cast<GtkStringObject*>(adw_combo_row_get_selected_item(comboRow()));
    std::string value = chosen ? gtk_string_object_get_string(chosen) : "";
    if (!description.help.empty())
        value += ". " + description.help;
    gtk_accessible_update_property(
        GTK_ACCESSIBLE(widget()), GTK_ACCESSIBLE_PROPERTY_DESCRIPTION, value.c_str(), -1);
}

void ChoiceRow::showOptions(const SettingsChoice& choice)
{
    if (choice.options != m_options) {
        m_options = choice.options;
        const xdg::GObjectHandle<GtkStringList> titles{gtk_string_list_new(nullptr)};
        for (const auto& option : m_options)
            gtk_string_list_append(titles.get(), option.title.c_str());
        adw_combo_row_set_model(comboRow(), G_LIST_MODEL(titles.get()));
    }
    const auto found = std::ranges::find(m_options, choice.value, &SettingsChoice::Option::value);
    const auto index = static_cast<guint>(found - m_options.begin());
    adw_combo_row_set_selected(
        comboRow(), found == m_options.end() ? GTK_INVALID_LIST_POSITION : index);
}

}
