#include "Settings/WindowFrame.h"

#include "Quorvel/Platform/Translation.h"
#include "Settings/Toolkit/Markup.h"

namespace quorvel::settings {

namespace {

// In pixels at scale 1.
constexpr int kWidth = 720;
constexpr int kHeight = 640;
constexpr int kSmallestWidth = 320;
constexpr int kSmallestHeight = 240;

constexpr char kPages[] = "pages";
constexpr char kAbsence[] = "absence";
constexpr char kNothing[] = "nothing"; // nobody knows yet

struct AbsenceTexts {
    std::string title;
    std::string help;
};

AbsenceTexts textsOf(WindowFrame::Absence absence)
{
    if (absence == WindowFrame::Absence::silent)
        return {
            tr("Quorvel does not answer"), tr("The settings can be changed as soon as it does.")};
    return {tr("Quorvel is not running"), tr("The settings can be changed as soon as it is.")};
}

void addKey(GtkEventController* keys, const char* trigger, GtkShortcutAction* action)
{
    gtk_shortcut_controller_add_shortcut(GTK_SHORTCUT_CONTROLLER(keys),
        gtk_shortcut_new(gtk_shortcut_trigger_parse_string(trigger), action));
}

/// False at the end of the row.
gboolean showNeighbour(AdwViewStack* stack, int step)
{
    const xdg::GObjectHandle<GtkSelectionModel> pages{adw_view_stack_get_pages(stack)};
    const auto count = static_cast<int>(g_list_model_get_n_items(G_LIST_MODEL(pages.get())));
    for (int place = 0; place < count; ++place) {
        const int next = place + step;
        if (!gtk_selection_model_is_selected(pages.get(), static_cast<guint>(place)))
            continue;
        return next >= 0 && next < count
            && gtk_selection_model_select_item(pages.get(), static_cast<guint>(next), true);
    }
    return false;
}

}

WindowFrame::WindowFrame(GtkApplication* application)
    : m_window(GTK_WINDOW(adw_application_window_new(application)))
    , m_stack(ADW_VIEW_STACK(adw_view_stack_new()))
{
    gtk_window_set_title(m_window, tr("Quorvel Settings").c_str());
    gtk_window_set_icon_name(m_window, "preferences-system");
    gtk_window_set_default_size(m_window, kWidth, kHeight);
    gtk_widget_set_size_request(GTK_WIDGET(m_window), kSmallestWidth, kSmallestHeight);
    auto* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    for (auto* part : {makeHeader(), makeNote(), makeBody()})
        gtk_box_append(GTK_BOX(box), part);
    adw_application_window_set_content(ADW_APPLICATION_WINDOW(m_window), box);
    addKeys();
}

GtkWidget* WindowFrame::makeHeader()
{
    m_title.reset(ADW_VIEW_SWITCHER_TITLE(g_object_ref_sink(adw_view_switcher_title_new())));
    adw_view_switcher_title_set_stack(m_title.get(), m_stack);
    adw_view_switcher_title_set_view_switcher_enabled(m_title.get(), false);
    nameThePage();
    m_pageTurned = SignalHandler{m_stack, "notify::visible-child", [this] { nameThePage(); }};
    auto* header = adw_header_bar_new();
    adw_header_bar_set_centering_policy(ADW_HEADER_BAR(header), ADW_CENTERING_POLICY_LOOSE);
    adw_header_bar_set_title_widget(ADW_HEADER_BAR(header), GTK_WIDGET(m_title.get()));
    return header;
}

GtkWidget* WindowFrame::makeNote()
{
    m_noteText = GTK_LABEL(gtk_label_new(nullptr));
    gtk_label_set_wrap(m_noteText, true);
    gtk_label_set_justify(m_noteText, GTK_JUSTIFY_CENTER);
    gtk_widget_set_hexpand(GTK_WIDGET(m_noteText), true);
    m_note = GTK_WIDGET(g_object_new(
        GTK_TYPE_BOX, "accessible-role", GTK_ACCESSIBLE_ROLE_ALERT, "visible", false, nullptr));
    gtk_widget_add_css_class(m_note, "quorvel-note");
    gtk_box_append(GTK_BOX(m_note), GTK_WIDGET(m_noteText));
    return m_note;
}

GtkWidget* WindowFrame::makeAbsencePage()
{
    m_absence = ADW_STATUS_PAGE(adw_status_page_new());
    adw_status_page_set_icon_name(m_absence, "dialog-information-symbolic");
    return GTK_WIDGET(m_absence);
}

GtkWidget* WindowFrame::makeBody()
{
    auto* switcher = adw_view_switcher_bar_new();
    adw_view_switcher_bar_set_stack(ADW_VIEW_SWITCHER_BAR(switcher), m_stack);
    g_object_bind_property(
        m_title.get(), "title-visible", switcher, "reveal", G_BINDING_SYNC_CREATE);
    gtk_widget_set_vexpand(GTK_WIDGET(m_stack), true);
    m_toasts = ADW_TOAST_OVERLAY(adw_toast_overlay_new());
    adw_toast_overlay_set_child(m_toasts, GTK_WIDGET(m_stack));
    auto* pages = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_append(GTK_BOX(pages), GTK_WIDGET(m_toasts));
    gtk_box_append(GTK_BOX(pages), switcher);
    m_body = GTK_STACK(gtk_stack_new());
    gtk_stack_add_named(m_body, gtk_box_new(GTK_ORIENTATION_VERTICAL, 0), kNothing);
    gtk_stack_add_named(m_body, makeAbsencePage(), kAbsence);
    gtk_stack_add_named(m_body, pages, kPages);
    return GTK_WIDGET(m_body);
}

void WindowFrame::addKeys()
{
    // An open menu takes Escape first, but no list is to scroll instead of turning the page.
    auto* closing = gtk_shortcut_controller_new();
    for (const auto* trigger : {"<Control>w", "<Control>q", "Escape"})
        addKey(closing, trigger, gtk_named_action_new("window.close"));
    gtk_widget_add_controller(GTK_WIDGET(m_window), closing);

    auto* turning = gtk_shortcut_controller_new();
    gtk_event_controller_set_propagation_phase(turning, GTK_PHASE_CAPTURE);
    const GtkShortcutFunc next = [](GtkWidget*, GVariant*, gpointer stack) {
        return showNeighbour(ADW_VIEW_STACK(stack), 1);
    };
    const GtkShortcutFunc previous = [](GtkWidget*, GVariant*, gpointer stack) {
        return showNeighbour(ADW_VIEW_STACK(stack), -1);
    };
    addKey(turning, "<Control>Page_Down", gtk_callback_action_new(next, m_stack, nullptr));
    addKey(turning, "<Control>Page_Up", gtk_callback_action_new(previous, m_stack, nullptr));
    gtk_widget_add_controller(GTK_WIDGET(m_window), turning);
}

void WindowFrame::nameThePage()
{
    const char* window = gtk_window_get_title(m_window);
    auto* child = adw_view_stack_get_visible_child(m_stack);
    auto* page = child ? adw_view_stack_get_page(m_stack, child) : nullptr;
    const char* title = page ? adw_view_stack_page_get_title(page) : nullptr;
    adw_view_switcher_title_set_title(m_title.get(), title ? title : window);
    adw_view_switcher_title_set_subtitle(m_title.get(), title ? window : nullptr);
}

void WindowFrame::showPages()
{
    gtk_widget_set_visible(m_note, false);
    adw_view_switcher_title_set_view_switcher_enabled(m_title.get(), true);
    gtk_stack_set_visible_child_name(m_body, kPages);
}

void WindowFrame::showAbsence(Absence absence)
{
    const auto [title, help] = textsOf(absence);
    gtk_label_set_text(m_noteText, (title + ". " + help).c_str());
    adw_status_page_set_title(m_absence, escapedMarkup(title).c_str());
    adw_status_page_set_description(m_absence, escapedMarkup(help).c_str());
    if (!adw_view_stack_get_visible_child(m_stack)) {
        gtk_stack_set_visible_child_name(m_body, kAbsence);
        return;
    }
    gtk_widget_set_visible(m_note, true);
}

void WindowFrame::tell(const std::string& text)
{
    if (m_toast)
        adw_toast_dismiss(m_toast.get());
    m_toast.reset(static_cast<AdwToast*>(g_object_ref(adw_toast_new(escapedMarkup(text).c_str()))));
    adw_toast_overlay_add_toast(m_toasts, m_toast.get());
}

}
