#include "Settings/SettingsWindow.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "Hosts/Linux/Loop/FdSource.h"
#include "Quorvel/Platform/Translation.h"
#include "Settings/Toolkit/Raise.h"

namespace quorvel::settings {

using namespace std::chrono_literals;

SettingsWindow::SettingsWindow(GtkApplication* application)
    : m_loop(xdg::hostLoop())
    , m_frame(application)
    , m_outlets{[this](const SettingsChange& change) { m_bar.send(change); },
          [this](bool isRecording) { setRecording(isRecording); },
          [this](const std::string& text) { m_frame.tell(text); }}
    , m_bar(m_loop,
          {[this](const SettingsNews& news) {
               std::visit([this](const auto& what) { receive(what); }, news);
           },
              [this] { lose(WindowFrame::Absence::notRunning); },
              [this] { lose(WindowFrame::Absence::silent); }})
{
    // What changes without a word, or a bar that hangs, shows when the user comes back.
    m_activated = SignalHandler{m_frame.window(), "notify::is-active", [this] {
                                    if (gtk_window_is_active(m_frame.window()))
                                        m_bar.send(SettingsQuestion{});
                                }};
    // What keeps a page from being shown anew is a recording, or ends with a move of the focus.
    m_focusMoved
        = SignalHandler{m_frame.window(), "notify::focus-widget", [this] { catchUpLater(); }};
    m_destroyed = SignalHandler{m_frame.window(), "destroy", [this] { endUse(); }};
}

/// News that come from now on would reach parts of the window that are gone.
void SettingsWindow::endUse()
{
    m_isOpen = false;
    m_bar.end();
    m_focusMoved = {};
    m_activated = {};
    m_later = {};
}

void SettingsWindow::setRecording(bool isRecording)
{
    m_bar.send(SettingsRecording{isRecording});
    if (!isRecording)
        catchUpLater();
}

/// Not at once: what made the page wait may still be at work.
void SettingsWindow::catchUpLater()
{
    if (m_isBehind && m_isOpen)
        m_later = m_loop.after(0ms, [this] { showPages(); });
}

void SettingsWindow::present()
{
    raise(m_frame.window());
}

void SettingsWindow::receive(const SettingsPresent&)
{
    present();
    m_bar.send(SettingsQuestion{}); // it waits for an answer
}

void SettingsWindow::receive(const SettingsDescription& description)
{
    const bool wasConnected = std::exchange(m_isConnected, true);
    m_description = description;
    showPages();
    if (wasConnected)
        return;
    m_frame.showPages();
    auto* focus = m_focusWhenLost.get();
    if (focus && gtk_widget_get_root(focus) == GTK_ROOT(m_frame.window()))
        gtk_widget_grab_focus(focus);
    m_focusWhenLost.reset();
}

void SettingsWindow::receive(const SettingsRefusal& refusal)
{
    showPages(); // with what holds
    m_frame.tell(refusal.reason.empty() ? tr("This cannot be changed now.") : refusal.reason);
}

void SettingsWindow::lose(WindowFrame::Absence absence)
{
    if (m_isConnected) {
        if (auto* focus = gtk_root_get_focus(GTK_ROOT(m_frame.window())))
            m_focusWhenLost.reset(static_cast<GtkWidget*>(g_object_ref(focus)));
        for (const auto& page : m_pages)
            page.view->endUse();
    }
    // Row by row, since a screen reader is told of each thing by itself that it cannot be used.
    for (auto& page : m_description.pages) {
        for (auto& group : page.groups) {
            for (auto& row : group.rows)
                row.isEnabled = false;
        }
    }
    m_isConnected = false;
    showPages();
    m_frame.showAbsence(absence);
}

void SettingsWindow::showPages()
{
    const auto isShown
        = [](const SettingsPage& page, const ShownPage& shown) { return page.id == shown.id; };
    if (!std::ranges::equal(m_description.pages, m_pages, isShown))
        replacePages();
    m_isBehind = false;
    for (std::size_t index = 0; index < m_pages.size(); ++index) {
        const auto& page = m_description.pages[index];
        auto& view = *m_pages[index].view;
        auto* entry = adw_view_stack_get_page(m_frame.stack(), view.widget());
        adw_view_stack_page_set_title(entry, page.title.c_str());
        adw_view_stack_page_set_icon_name(entry, page.icon.c_str());
        m_isBehind |= !view.show(page);
    }
    m_frame.nameThePage();
}

/// Pages come and go with the platform's abilities, hardly ever while the window is open.
void SettingsWindow::replacePages()
{
    const char* name = adw_view_stack_get_visible_child_name(m_frame.stack());
    const std::string visible = name ? name : "";
    for (const auto& page : m_pages)
        adw_view_stack_remove(m_frame.stack(), page.view->widget());
    m_pages.clear();
    for (const auto& page : m_description.pages) {
        auto& shown
            = m_pages.emplace_back(ShownPage{page.id, std::make_unique<PageView>(m_outlets)});
        adw_view_stack_add_named(m_frame.stack(), shown.view->widget(), page.id.c_str());
        if (page.id == visible)
            adw_view_stack_set_visible_child(m_frame.stack(), shown.view->widget());
    }
}

}
