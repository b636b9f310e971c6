#include "Settings/Rows/LinkRow.h"

#include "Quorvel/Platform/Translation.h"

namespace quorvel::settings {

LinkRow::LinkRow(const SettingsRow&, const RowOutlets& outlets)
    : m_outlets(outlets)
    , m_button(GTK_BUTTON(gtk_button_new()))
    , m_content(ADW_BUTTON_CONTENT(adw_button_content_new()))
{
    adw_button_content_set_icon_name(m_content, "adw-external-link-symbolic");
    gtk_button_set_child(m_button, GTK_WIDGET(m_content));
    setControl(GTK_WIDGET(m_button));
    m_clicked = SignalHandler{m_button, "clicked", [this] { open(); }};
}

void LinkRow::show(const SettingsRow& description)
{
    ActionRow::show(description);
    const auto& link = std::get<SettingsLink>(description.control);
    m_url = link.url;
    adw_button_content_set_label(m_content, link.label.c_str());
    setAccessibleName(GTK_WIDGET(m_button), link.label);
}

void LinkRow::open()
{
    const auto done = [](GObject* window, GAsyncResult* result, gpointer self) {
        GError* error = nullptr;
        const bool isOpen = gtk_show_uri_full_finish(GTK_WINDOW(window), result, &error);
        const bool isGone = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
        g_clear_error(&error);
        if (!isOpen && !isGone)
            static_cast<LinkRow*>(self)->m_outlets.tell(tr("It could not be opened."));
    };
    gtk_show_uri_full(GTK_WINDOW(gtk_widget_get_root(widget())), m_url.c_str(), GDK_CURRENT_TIME,
        m_opening.get(), done, this);
}

}
