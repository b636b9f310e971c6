#pragma once

#include <cstdint>

#include "Quorvel/Platform/Published.h"

namespace quorvel {

class HotkeyManager;

/// What a key means to a recorder of shortcuts.
enum class RecordingStep {
    ignored, ///< a modifier alone, or a key without one: recording goes on
    cancelled,
    recorded,
};

/// Key codes are the Mac's, the flags of `KeyModifier`.
RecordingStep recordingStep(std::uint32_t keyCode, std::uint64_t modifierFlags);

/// Records the global shortcut from keys of one window. While it does, no shortcut of the program's
/// own is registered, else it could not be pressed. Main thread.
class ShortcutRecorder {
public:
    /// The manager outlives it.
    explicit ShortcutRecorder(HotkeyManager& manager) : m_manager(manager) { }

    const Published<bool>& isRecording() const { return m_isRecording; }
    void start();
    void stop();
    /// True: the key is consumed, as every key is while it records.
    bool keyPressed(std::uint32_t keyCode, std::uint64_t modifierFlags);

private:
    HotkeyManager& m_manager;
    Published<bool> m_isRecording;
    Subscription m_suspension;
};

}
