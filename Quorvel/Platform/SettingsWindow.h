#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/SettingsDescription.h"

namespace quorvel {

/// What a settings window shows, and where it reports what its user does. Main thread.
class SettingsSource {
public:
    virtual ~SettingsSource() = default;

    virtual const Published<SettingsDescription>& description() const = 0;
    /// Applies the change at once, or refuses it; the description shows what is then in effect.
    virtual std::optional<SettingsRefusal> apply(const SettingsChange&) = 0;

    // A window in this process calls these with the keys that are pressed while it records.
    // Meanwhile the program's own shortcuts do not act.

    /// The row of the shortcut that is being recorded; empty if none is.
    virtual const Published<std::string>& recordingRow() const = 0;
    /// Recording of another row ends; an empty one ends it too.
    virtual void setRecordingRow(const std::string&) = 0;
    /// A virtual key code of the Mac, and flags of `KeyModifier`. True: the key is consumed.
    virtual bool keyPressed(std::uint32_t keyCode, std::uint64_t modifierFlags) = 0;
};

/// The window with the settings, which the host makes of its system's own controls. Main thread.
class SettingsWindow {
public:
    virtual ~SettingsWindow() = default;

    /// Shows the window, or raises the one that is there. A host whose window is a program of its
    /// own starts it: the program asks over the control channel what to show. The source lives
    /// until `close`. False if it is plain that the window cannot be shown.
    virtual bool show(SettingsSource&) = 0;
    /// Shows one in the place of a window in another process that does not answer.
    virtual bool replace(SettingsSource& source) { return show(source); }
    /// Closes a window of this process, and forgets the source.
    virtual void close() = 0;

    /// It could not be shown, which has been reported on standard error by then.
    Signal<> didFail;
};

}
