#pragma once

#include <optional>
#include <string>

#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/SettingsDescription.h"

namespace quorvel {

/// What a settings window shows, and whom it tells what its user does. Main thread.
class SettingsSource {
public:
    virtual ~SettingsSource() = default;

    virtual const Published<SettingsDescription>& description() const = 0;
    /// Applies the change at once. What does not hold is refused; the description shows what does.
    virtual std::optional<SettingsRefusal> apply(const SettingsChange&) = 0;
    /// For as long as the answer is kept, the program's own shortcuts do not act, so that their
    /// keys reach the recorder.
    [[nodiscard]] virtual Subscription holdShortcuts() = 0;
};

/// The window with the settings, which the host makes of its system's own controls. Main thread.
class SettingsWindow {
public:
    virtual ~SettingsWindow() = default;

    /// Shows the window, or raises the one that is there. A host whose window is a program of its
    /// own starts it: the program asks over the control channel what to show. The source outlives
    /// this.
    virtual void show(SettingsSource&) = 0;

    /// It cannot be shown, which has been reported on standard error by then.
    Signal<> didFail;
};

}
