#include "Quorvel/Core/ShortcutRecorder.h"

#include "Quorvel/Core/HotkeyManager.h"
#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel {

RecordingStep recordingStep(std::uint32_t keyCode, std::uint64_t modifierFlags)
{
    if (keyCode == static_cast<std::uint32_t>(KeyCode::escape))
        return RecordingStep::cancelled;
    if (!isKeyOfShortcut(keyCode) || hotkeyModifiersFrom(modifierFlags) == 0)
        return RecordingStep::ignored;
    return RecordingStep::recorded;
}

void ShortcutRecorder::start()
{
    m_suspension = m_manager.suspend();
    m_isRecording.set(true);
}

void ShortcutRecorder::stop()
{
    m_suspension = {};
    m_isRecording.set(false);
}

bool ShortcutRecorder::keyPressed(std::uint32_t keyCode, std::uint64_t modifierFlags)
{
    if (!m_isRecording.value())
        return false;
    auto step = recordingStep(keyCode, modifierFlags);
    if (step == RecordingStep::recorded)
        m_manager.recordShortcut(keyCode, modifierFlags);
    if (step != RecordingStep::ignored)
        stop();
    return true;
}

}
