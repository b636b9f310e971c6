#pragma once

#include <functional>

#include <gtk/gtk.h>

#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/SettingsDescription.h"
#include "Settings/Toolkit/ActiveWindow.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// While it lives, each key that is pressed in the window belongs to it, those too that the window
/// manager or another program waits for. Main thread.
class ShortcutRecording {
public:
    /// X11 and Wayland number the keys as the kernel does, from here on.
    static constexpr guint kFirstHardwareCode = 8;

    /// The recording may end within.
    struct Events {
        std::function<void(SettingsShortcut::Keys)> recorded;
        std::function<void()> cancelled; ///< by Esc, or the window is no longer in use
    };

    ShortcutRecording(GtkWindow*, Events);
    ShortcutRecording(const ShortcutRecording&) = delete;
    ShortcutRecording& operator=(const ShortcutRecording&) = delete;
    ~ShortcutRecording();

private:
    void keyPressed(guint hardwareCode, GdkModifierType);
    void inhibitShortcuts();
    GdkToplevel* toplevel() const;

    xdg::GObjectHandle<GtkWindow> m_window;
    Events m_events;
    GtkEventController* m_keys; ///< of the window
    SignalHandler m_pressed;
    SignalHandler m_focused;
    SignalHandler m_released; ///< the system took its shortcuts back
    ActiveWindowWatch m_activeWindow;
};

}
