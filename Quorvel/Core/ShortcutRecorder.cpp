#include "Quorvel/Core/ShortcutRecorder.h"

#include "Quorvel/Core/HotkeyManager.h"
#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel {

namespace {

constexpr std::uint32_t kFirstModifierKey = 54;
constexpr std::uint32_t kLastModifierKey = 63;

}

RecordingStep recordingStep(std::uint32_t keyCode, std::uint64_t modifierFlags)
{
    if (keyCode == static_cast<std::uint32_t>(KeyCode::escape))
        return RecordingStep::cancelled;
    bool isModifier = keyCode >= kFirstModifierKey && keyCode <= kLastModifierKey;
    if (isModifier || hotkeyModifiersFrom(modifierFlags) == 0)
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
