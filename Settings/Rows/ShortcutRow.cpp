#include "Settings/Rows/ShortcutRow.h"

#include "Hosts/Linux/Keys/KeyTable.h"
#include "Hosts/Linux/Keys/ShortcutText.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel::settings {

ShortcutRow::ShortcutRow(const SettingsRow& description, const RowOutlets& outlets)
    : m_outlets(outlets)
    , m_description(description)
    , m_warning(gtk_image_new_from_icon_name("dialog-warning-symbolic"))
    , m_button(GTK_BUTTON(gtk_button_new()))
    , m_clear(gtk_button_new_from_icon_name("edit-clear-symbolic"))
    , m_layout(gtk_widget_get_display(widget()), [this] { refresh(); })
{
    gtk_widget_add_css_class(m_warning, "warning");
    adw_action_row_add_suffix(row(), m_warning);
    setControl(GTK_WIDGET(m_button));
    gtk_widget_set_valign(m_clear, GTK_ALIGN_CENTER);
    gtk_widget_add_css_class(m_clear, "flat");
    const auto clear = tr("Clear the shortcut");
    gtk_widget_set_tooltip_text(m_clear, clear.c_str());
    setAccessibleName(m_clear, clear);
    adw_action_row_add_suffix(row(), m_clear);

    m_clicked = SignalHandler{m_button, "clicked", [this] { toggleRecording(); }};
    m_cleared = SignalHandler{m_clear, "clicked", [this] { record(std::nullopt); }};
    auto* focus = gtk_event_controller_focus_new();
    gtk_widget_add_controller(GTK_WIDGET(m_button), focus);
    m_focusLeft = SignalHandler{focus, "leave", [this] { endUse(); }};
}

void ShortcutRow::show(const SettingsRow& description)
{
    ActionRow::show(description);
    m_description = description;
    if (!description.isEnabled)
        endUse();
    refresh();
}

std::string ShortcutRow::valueText() const
{
    const auto& keys = std::get<SettingsShortcut>(m_description.control).value;
    if (!keys)
        return tr("Record…");
    const auto device = xdg::deviceCodeOf(keys->keyCode);
    const auto character = device
        ? m_layout.characterOf(static_cast<guint>(*device) + ShortcutRecording::kFirstHardwareCode)
        : std::string{};
    return xdg::shortcutText(keys->keyCode, keys->modifiers, character);
}

void ShortcutRow::refresh()
{
    const auto& shortcut = std::get<SettingsShortcut>(m_description.control);
    const auto text = m_recording ? tr("Press keys…") : valueText();
    const auto& help = shortcut.status.empty() ? m_description.help : shortcut.status;
    gtk_button_set_label(m_button, text.c_str());
    setAccessibleName(GTK_WIDGET(m_button), text);
    gtk_widget_set_tooltip_text(GTK_WIDGET(m_button), shortcut.recordHelp.c_str());
    setHelp(m_recording ? shortcut.recordHelp : help);
    gtk_widget_set_visible(m_warning, !m_recording && !shortcut.status.empty());
    gtk_widget_set_visible(m_clear, !m_recording && shortcut.value.has_value());
}

void ShortcutRow::toggleRecording()
{
    if (m_recording)
        endUse();
    else
        startRecording();
}

void ShortcutRow::startRecording()
{
    m_outlets.setRecording(true);
    gtk_widget_grab_focus(GTK_WIDGET(m_button));
    auto* window = GTK_WINDOW(gtk_widget_get_root(widget()));
    m_recording = std::make_unique<ShortcutRecording>(window,
        ShortcutRecording::Events{
            [this](SettingsShortcut::Keys keys) { record(keys); }, [this] { endUse(); }});
    refresh();
}

void ShortcutRow::stopRecording()
{
    if (!m_recording)
        return;
    m_recording.reset();
    m_outlets.setRecording(false);
}

void ShortcutRow::endUse()
{
    if (!m_recording)
        return;
    stopRecording();
    refresh();
}

void ShortcutRow::record(std::optional<SettingsShortcut::Keys> keys)
{
    m_outlets.change({SettingsChange::Record{keys, m_description.id}});
    endUse();
}

}
