#include "Settings/Toolkit/ShortcutRecording.h"

#include <utility>

#include "Hosts/Linux/Keys/KeyTable.h"
#include "Quorvel/Core/KeyboardShortcut.h"
#include "Quorvel/Core/ShortcutRecorder.h"
#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel::settings {

namespace {

std::uint64_t modifierFlags(GdkModifierType state)
{
    std::uint64_t flags = 0;
    if (state & GDK_SHIFT_MASK)
        flags |= KeyModifier::shift;
    if (state & GDK_CONTROL_MASK)
        flags |= KeyModifier::control;
    if (state & GDK_ALT_MASK)
        flags |= KeyModifier::option;
    if (state & (GDK_SUPER_MASK | GDK_META_MASK))
        flags |= KeyModifier::command;
    return flags;
}

}

ShortcutRecording::ShortcutRecording(GtkWindow* window, Events events)
    : m_window(static_cast<GtkWindow*>(g_object_ref(window)))
    , m_events(std::move(events))
    , m_keys(gtk_event_controller_key_new())
    , m_activeWindow(window, [this] {
        const auto cancelled = m_events.cancelled; // this may be gone before it returns
        cancelled();
    })
{
    gtk_event_controller_set_propagation_phase(m_keys, GTK_PHASE_CAPTURE);
    gtk_widget_add_controller(GTK_WIDGET(window), m_keys);
    m_pressed = SignalHandler::answered(m_keys, "key-pressed", [this](SignalArguments arguments) {
        keyPressed(g_value_get_uint(&arguments[2]),
            static_cast<GdkModifierType>(g_value_get_flags(&arguments[3])));
        return true;
    });
    // Whoever has the keyboard at the moment may refuse it.
    m_focused = SignalHandler{window, "notify::is-active", [this] { inhibitShortcuts(); }};
    if (auto* surface = toplevel())
        m_released
            = SignalHandler{surface, "notify::shortcuts-inhibited", [this] { inhibitShortcuts(); }};
    inhibitShortcuts();
}

ShortcutRecording::~ShortcutRecording()
{
    m_released = {};
    if (toplevel())
        gdk_toplevel_restore_system_shortcuts(toplevel());
    gtk_widget_remove_controller(GTK_WIDGET(m_window.get()), m_keys);
}

/// As long as the window is in use and the system's shortcuts are not its own yet.
void ShortcutRecording::inhibitShortcuts()
{
    auto* surface = toplevel();
    gboolean isInhibited = false;
    if (surface)
        g_object_get(surface, "shortcuts-inhibited", &isInhibited, nullptr);
    if (surface && !isInhibited && gtk_window_is_active(m_window.get()))
        gdk_toplevel_inhibit_system_shortcuts(surface, nullptr);
}

GdkToplevel* ShortcutRecording::toplevel() const
{
    auto* surface = gtk_native_get_surface(GTK_NATIVE(m_window.get()));
    return surface ? GDK_TOPLEVEL(surface) : nullptr;
}

void ShortcutRecording::keyPressed(guint hardwareCode, GdkModifierType state)
{
    const auto keyCode
        = xdg::macKeyCodeOf(static_cast<xdg::DeviceCode>(hardwareCode - kFirstHardwareCode));
    const auto flags = modifierFlags(state);
    const auto events = m_events; // this may be gone before they return
    switch (keyCode ? recordingStep(*keyCode, flags) : RecordingStep::ignored) {
    case RecordingStep::ignored:
        break;
    case RecordingStep::cancelled:
        events.cancelled();
        break;
    case RecordingStep::recorded:
        events.recorded({*keyCode, hotkeyModifiersFrom(flags)});
        break;
    }
}

}
