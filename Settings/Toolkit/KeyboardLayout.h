#pragma once

#include <functional>
#include <string>

#include <gtk/gtk.h>

#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// What the keyboard's layout types: of several, the one that is in use. Main thread.
class KeyboardLayout {
public:
    /// Tells, in a later turn, when keys may type something else than before.
    KeyboardLayout(GdkDisplay*, std::function<void()> onChange);
    ~KeyboardLayout();
    KeyboardLayout(const KeyboardLayout&) = delete;
    KeyboardLayout& operator=(const KeyboardLayout&) = delete;

    /// With the key alone, in UTF-8; empty if nothing.
    std::string characterOf(guint hardwareCode) const;

private:
    void tellLater();

    GdkDisplay* const m_display;
    const std::function<void()> m_onChange;
    int m_group = 0; ///< of the layouts, the one that is in use
    guint m_telling = 0; ///< 0, or a source of the main loop
    SignalHandler m_event;
};

}
